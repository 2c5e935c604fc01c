#pragma once

#include <cstdint>
#include <string_view>

// What a newcomer has said or seen, as it is remembered in the user's preferences.
namespace kestrel {

/// Whether the user has said to have a Mac.
enum class UserDefaultHasMac : std::uint8_t {
    unknown,  ///< has not said
    yes,      ///< has one
    no        ///< has none
};
/// The name under which that is stored.
inline constexpr std::string_view userDefaultHasMacKey = "SignUp-HasMac";

/// The banner for newcomers. Its name in the store is the host's choice.
enum class UserDefaultGetStartedBanner : std::uint8_t {
    unknown,                    ///< nothing was decided
    show,                       ///< to be shown
    hide,                       ///< not to be shown
    showWithoutAutomaticHiding  ///< to be shown, and not hidden by itself
};

/// The sheet of the first login. Its name in the store is the host's choice.
enum class UserDefaultGetStartedSheetOnFirstLogin : std::uint8_t {
    unknown,  ///< nothing was decided
    show,     ///< to be shown
    hide      ///< not to be shown
};

}  // namespace kestrel
