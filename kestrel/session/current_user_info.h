#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kestrel {

/// The signed-in user as the interface shows it.
struct CurrentUserInfo {
    std::optional<std::string> username{};
    std::optional<std::int64_t> companyID{};
    std::optional<std::string> companyName{};

    friend bool operator==(const CurrentUserInfo&, const CurrentUserInfo&) = default;
};

}  // namespace kestrel
