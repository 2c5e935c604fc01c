#pragma once

#include <host/failure.h>
#include <cstddef>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel::host {

/// A row of a file of comma-separated values.
struct CSVRow {
    /// The line on which it starts; the header's is 1.
    std::size_t line{};
    std::vector<std::string> fields{};
};

/// What is wrong with a row: "FILE: row N: REASON".
[[nodiscard]] Failure rowFailure(const std::filesystem::path& file, std::size_t line, std::string_view reason);

/// The rows below the header of a file of comma-separated values (RFC 4180) in UTF-8.
///
/// A byte-order mark, lines that end in CR and LF, and empty lines are accepted. Blanks around a field that is not in
/// quotes do not belong to it. Everything else is refused by a Failure that names the file, the row and the reason: a
/// header that is not the expected one, a row with more or fewer fields than it, a quote in the wrong place or never
/// closed, text that is not UTF-8.
[[nodiscard]] std::vector<CSVRow> readCSV(const std::filesystem::path& file, std::span<const std::string_view> header);

}  // namespace kestrel::host
