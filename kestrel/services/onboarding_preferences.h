#pragma once

#include <cstdint>
#include <string_view>

// What a newcomer has said or seen, as it is remembered in the user's preferences.
namespace kestrel {

enum class UserDefaultHasMac : std::uint8_t { unknown, yes, no };
/// The name under which that is stored.
inline constexpr std::string_view userDefaultHasMacKey = "SignUp-HasMac";

/// The banner for newcomers. Its name in the store is the host's choice.
enum class UserDefaultGetStartedBanner : std::uint8_t { unknown, show, hide, showWithoutAutomaticHiding };

/// The sheet of the first login. Its name in the store is the host's choice.
enum class UserDefaultGetStartedSheetOnFirstLogin : std::uint8_t { unknown, show, hide };

}  // namespace kestrel
