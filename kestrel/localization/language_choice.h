#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kestrel::localization {

/// The languages that the environment asks for, most preferred first, as they stand there: those of LANGUAGE, or else
/// the first of LC_ALL, LC_MESSAGES and LANG that is set. A variable that is set to nothing counts as not set.
[[nodiscard]] std::vector<std::string> environmentLanguages();

/// The language of `available` that serves the preferences best, or `lastResort`.
///
/// Each preference is tried with all it says and then with ever less: "sr_RS.UTF-8@latin" as sr_RS@latin, sr@latin,
/// sr_RS and sr; "zh-Hant-TW" as zh_Hant_TW, zh_Hant and zh. Case does not matter. "C" and "POSIX" choose the last
/// resort.
[[nodiscard]] std::string chooseLanguage(const std::vector<std::string>& preferred,
                                         const std::vector<std::string>& available, std::string_view lastResort);

}  // namespace kestrel::localization
