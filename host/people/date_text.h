#pragma once

#include <kestrel/foundation/date.h>
#include <kestrel/records/partial_date.h>
#include <optional>
#include <string_view>

/// Dates as address cards write them.
namespace kestrel::host {

/// A day of a year or of any year: "1980-03-22", "19800322", "--0412", "--04-12", each also with a time behind it.
/// Absent for anything else, days that do not exist included.
[[nodiscard]] std::optional<PartialDate> partialDateOf(std::string_view text);

/// A moment: "20121012T210525Z", "2012-10-12T21:05:25Z", with an offset or, in UTC, without; or a day, which is
/// midnight UTC. Absent for anything else.
[[nodiscard]] std::optional<Date> momentOf(std::string_view text);

}  // namespace kestrel::host
