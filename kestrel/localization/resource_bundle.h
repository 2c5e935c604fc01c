#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

/// The folder of files that the library needs at run time: one catalogue of texts per language.
///
///     com.fenwick.KestrelService.bundle/
///       bundle.conf                                       the marker: identifier, version, languages
///       de/LC_MESSAGES/com.fenwick.KestrelService.mo      one for every language that the marker lists
///
/// The bundle is searched for when it is first needed; the first place that has it counts:
///
///  1. the directory that the host named with `setDirectory`;
///  2. the directory in the environment variable KESTREL_RESOURCES;
///  3. `../share/KestrelService` and `../../share/KestrelService`, seen from the folder of the loaded library and then
///     from that of the executable, so that an installation may be moved as a whole;
///  4. the installation directory that the library was configured with;
///  5. the library's build tree.
///
/// A bundle that is nowhere, or that lacks a catalogue of a language it lists, is a mistake in the installation:
/// fatal(), with one line that names the bundle and the places. No gettext reader reports a missing catalogue, and a
/// program that silently speaks English is found out late.
///
/// Everything here may be called from any thread at any time. A change applies to all lookups that begin after it.
class ResourceBundle {
  public:
    ResourceBundle() = delete;

    /// The name of the folder without ".bundle", and that of each catalogue.
    static constexpr std::string_view identifier = "com.fenwick.KestrelService";

    /// The language in which the texts are written in the sources, and the last resort of every choice.
    static constexpr std::string_view developmentLanguage = "en";

    /// Where the bundle was found: the absolute path of the folder with the marker. Searches if nothing did so
    /// before.
    [[nodiscard]] static std::filesystem::path directory();

    /// Names the bundle's folder, or the folder that holds it, for hosts that link the library statically or arrange
    /// files in their own way. Takes precedence over all other places, even if the bundle was found before. A
    /// relative path counts from the current directory of this moment. The empty path withdraws the host's word.
    static void setDirectory(const std::filesystem::path& path);

    /// The languages that the bundle has, as gettext names them ("de", "pt_BR"), in alphabetical order.
    [[nodiscard]] static std::vector<std::string> languages();

    /// The languages that the user prefers, most preferred first.
    ///
    /// Without a word of the host they come from the environment, read at the first lookup: LANGUAGE, which is a list
    /// separated by colons, or else the first of LC_ALL, LC_MESSAGES and LANG that is set. LANGUAGE counts even if
    /// the locale is "C", and no locale has to be generated on the system.
    [[nodiscard]] static std::vector<std::string> preferredLanguages();

    /// Replaces the preferred languages. Locale names ("de_AT.UTF-8@euro") and BCP 47 tags ("de-AT") are both
    /// understood. The empty list returns to the environment, which is read anew by this call; like every reader of
    /// the environment it must not meet a `setenv` in another thread.
    static void setPreferredLanguages(std::vector<std::string> languages);

    /// The language of the bundle in which texts are looked up now.
    ///
    /// It is the first of the preferred languages that the bundle has, where a region that the bundle lacks gives way
    /// to the plain language: de_AT is served by de. "C" and "POSIX" mean English, and so does a list of which the
    /// bundle has nothing.
    [[nodiscard]] static std::string currentLanguage();

    /// The text in one of the bundle's languages, whatever the current one is, for hosts that speak to several people
    /// at once. Nothing if the bundle does not have the language, or the language not the text.
    [[nodiscard]] static std::optional<std::string> translation(std::string_view text, std::string_view language);
};

}  // namespace kestrel
