#pragma once

#include <kestrel/foundation/data.h>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <variant>

namespace kestrel {

/// The form that every error can be brought into, whatever reported it: where it comes from, a number there, and texts
/// for people in the current language.
struct PlatformError {
    /// What an error carries beside its texts.
    using Value = std::variant<std::string, std::int64_t, double, bool, Data>;

    /// Who counts the codes: "KestrelService.LoginError", "g-io-error-quark", "HTTP".
    std::string domain{};
    /// A number that the domain gives the error; only together with the domain does it say anything.
    std::int64_t code{};
    /// One sentence; never empty for errors of this library.
    std::string localizedDescription{};
    /// What the user can do about it.
    std::optional<std::string> localizedRecoverySuggestion{};
    /// Why it happened.
    std::optional<std::string> localizedFailureReason{};
    /// Further values by their names, which are the domain's choice.
    std::map<std::string, Value, std::less<>> userInfo{};

    friend bool operator==(const PlatformError&, const PlatformError&) = default;
};

}  // namespace kestrel
