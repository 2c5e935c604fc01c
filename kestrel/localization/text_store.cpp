#include <kestrel/localization/language_choice.h>
#include <kestrel/localization/resource_bundle.h>
#include <kestrel/localization/text_store.h>

#include <algorithm>
#include <mutex>
#include <system_error>
#include <utility>

namespace kestrel::localization {

namespace {

std::optional<std::string> findIn(const Catalogue* catalogue, std::string_view text) {
    return catalogue == nullptr ? std::nullopt : catalogue->find(text);
}

}  // namespace

TextStore& TextStore::shared() {
    static TextStore& store = *new TextStore;
    return store;
}

std::filesystem::path TextStore::directory() {
    const std::unique_lock lock{mutex_};
    return bundle().directory;
}

void TextStore::setDirectory(const std::filesystem::path& path) {
    std::error_code ignored;
    auto absolute = path.empty() ? path : std::filesystem::absolute(path, ignored);
    const std::unique_lock lock{mutex_};
    hostDirectory_ = std::move(absolute);
    current_.reset();
    catalogues_.clear();
    bundle_.reset();
}

std::vector<std::string> TextStore::languages() {
    const std::unique_lock lock{mutex_};
    return bundle().languages;
}

std::vector<std::string> TextStore::preferredLanguages() {
    const std::unique_lock lock{mutex_};
    return preferences();
}

void TextStore::setPreferredLanguages(std::vector<std::string> languages) {
    if (languages.empty()) languages = environmentLanguages();
    const std::unique_lock lock{mutex_};
    preferred_ = std::move(languages);
    current_.reset();
}

std::string TextStore::currentLanguage() {
    const std::unique_lock lock{mutex_};
    return chooseLanguage(preferences(), bundle().languages, ResourceBundle::developmentLanguage);
}

std::optional<std::string> TextStore::find(std::string_view text) {
    {
        const std::shared_lock lock{mutex_};
        if (current_) return findIn(*current_, text);
    }
    const std::unique_lock lock{mutex_};
    if (!current_) {
        current_ = catalogue(chooseLanguage(preferences(), bundle().languages, ResourceBundle::developmentLanguage));
    }
    return findIn(*current_, text);
}

std::optional<std::string> TextStore::find(std::string_view text, std::string_view language) {
    {
        const std::shared_lock lock{mutex_};
        if (const auto loaded = catalogues_.find(language); loaded != catalogues_.end()) {
            return loaded->second.find(text);
        }
    }
    const std::unique_lock lock{mutex_};
    return findIn(catalogue(language), text);
}

const BundleLocation& TextStore::bundle() {
    if (!bundle_) bundle_ = locateBundle(bundlePlaces(hostDirectory_));
    return *bundle_;
}

const std::vector<std::string>& TextStore::preferences() {
    if (!preferred_) preferred_ = environmentLanguages();
    return *preferred_;
}

const Catalogue* TextStore::catalogue(std::string_view language) {
    if (const auto loaded = catalogues_.find(language); loaded != catalogues_.end()) return &loaded->second;
    const auto& [directory, languages] = bundle();
    if (std::ranges::find(languages, language) == languages.end()) return nullptr;
    return &catalogues_.try_emplace(std::string{language}, cataloguePath(directory, language)).first->second;
}

}  // namespace kestrel::localization
