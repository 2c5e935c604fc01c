#pragma once

#include <host/terminal/output.h>
#include <cstddef>
#include <optional>
#include <string>

namespace kestrel::host {

/// `kestrel defaults get|set|remove|watch`.
struct DefaultsOptions {
    /// The preference; for `get` and `watch` all of them when empty.
    std::string key{};
    std::string value{};
    /// "string", "integer", "double", "boolean", "date", "url" or "data".
    std::string type{"string"};
    /// The file of preferences; the program's own when empty.
    std::string file{};
    /// For `watch`: to end after so many changes.
    std::optional<std::size_t> count{};
    bool isJSON{};
};

/// Writes a preference, or all of them. A Failure when it is not set.
void getDefaults(const DefaultsOptions& options, Output& output, const Terminal& terminal);
/// Stores a preference. WrongUsage when the value is not of its type.
void setDefaults(const DefaultsOptions& options);
void removeDefaults(const DefaultsOptions& options);
/// Writes each change as it happens, by whomever it is made.
void watchDefaults(const DefaultsOptions& options, Output& output, const Terminal& terminal);

}  // namespace kestrel::host
