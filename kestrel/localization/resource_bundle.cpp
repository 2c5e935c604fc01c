#include <kestrel/localization/resource_bundle.h>
#include <kestrel/localization/text_store.h>

#include <utility>

namespace kestrel {

using localization::TextStore;

std::filesystem::path ResourceBundle::directory() {
    return TextStore::shared().directory();
}

void ResourceBundle::setDirectory(const std::filesystem::path& path) {
    TextStore::shared().setDirectory(path);
}

std::vector<std::string> ResourceBundle::languages() {
    return TextStore::shared().languages();
}

std::vector<std::string> ResourceBundle::preferredLanguages() {
    return TextStore::shared().preferredLanguages();
}

void ResourceBundle::setPreferredLanguages(std::vector<std::string> languages) {
    TextStore::shared().setPreferredLanguages(std::move(languages));
}

std::string ResourceBundle::currentLanguage() {
    return TextStore::shared().currentLanguage();
}

std::optional<std::string> ResourceBundle::translation(std::string_view text, std::string_view language) {
    return TextStore::shared().find(text, language);
}

}  // namespace kestrel
