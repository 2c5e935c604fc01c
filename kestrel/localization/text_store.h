#pragma once

#include <kestrel/localization/bundle_location.h>
#include <kestrel/localization/catalogue.h>

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel::localization {

/// The bundle in use, its catalogues as far as they were needed, and the current language. Every member function may
/// be called from any thread; lookups do not wait for one another.
class TextStore {
  public:
    /// The one behind localized() and ResourceBundle. It is never destroyed, so texts can be looked up until the very
    /// end.
    [[nodiscard]] static TextStore& shared();

    TextStore() = default;
    TextStore(const TextStore&) = delete;
    TextStore& operator=(const TextStore&) = delete;

    [[nodiscard]] std::filesystem::path directory();
    void setDirectory(const std::filesystem::path& path);
    [[nodiscard]] std::vector<std::string> languages();
    [[nodiscard]] std::vector<std::string> preferredLanguages();
    void setPreferredLanguages(std::vector<std::string> languages);
    [[nodiscard]] std::string currentLanguage();

    /// The translation into the current language.
    [[nodiscard]] std::optional<std::string> find(std::string_view text);
    /// The translation into one language of the bundle.
    [[nodiscard]] std::optional<std::string> find(std::string_view text, std::string_view language);

  private:
    // These three need the exclusive lock.
    const BundleLocation& bundle();
    const std::vector<std::string>& preferences();
    const Catalogue* catalogue(std::string_view language);

    std::shared_mutex mutex_;
    // Empty as long as the host said nothing.
    std::filesystem::path hostDirectory_;
    // Absent until they are asked for.
    std::optional<std::vector<std::string>> preferred_;
    std::optional<BundleLocation> bundle_;
    // Of the bundle in use. An address stays good until the bundle changes.
    std::map<std::string, Catalogue, std::less<>> catalogues_;
    // Absent until chosen; null if the bundle lacks even the last resort.
    std::optional<const Catalogue*> current_;
};

}  // namespace kestrel::localization
