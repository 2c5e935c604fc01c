#pragma once

#include <host/failure.h>
#include <kestrel/coding/json.h>
#include <string>
#include <utility>

namespace kestrel::host {

/// The keyed form of a value. A Failure when it has none: an identifier of a record that is not saved.
template <class T>
[[nodiscard]] std::string coded(const T& value) {
    auto json = encodeJSON(value);
    if (!json) throw Failure(json.error().message());
    return *std::move(json);
}

}  // namespace kestrel::host
