#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kestrel {

/// The signed-in user as the interface shows it.
struct CurrentUserInfo {
    /// The name to sign in with.
    std::optional<std::string> username{};
    /// The identifier of the company whose data is used.
    std::optional<std::int64_t> companyID{};
    /// What that company is called.
    std::optional<std::string> companyName{};

    friend bool operator==(const CurrentUserInfo&, const CurrentUserInfo&) = default;
};

}  // namespace kestrel
