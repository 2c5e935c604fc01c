#include <kestrel/localization/language_choice.h>

#include <algorithm>
#include <cstdlib>

namespace kestrel::localization {

namespace {

std::string_view environment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string_view{} : std::string_view{value};
}

char lowercase(char c) {
    return 'A' <= c && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool sameName(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, {}, lowercase, lowercase);
}

// The names under which a bundle may have the language, best first.
std::vector<std::string> candidates(std::string_view preference) {
    std::string_view modifier;
    if (const auto at = preference.find('@'); at != std::string_view::npos) {
        modifier = preference.substr(at);
        preference = preference.substr(0, at);
    }
    std::string name{preference.substr(0, preference.find('.'))};
    std::ranges::replace(name, '-', '_');

    std::vector<std::string> names;
    for (; !name.empty(); name.resize(name.contains('_') ? name.rfind('_') : 0))
        names.push_back(name);
    if (modifier.size() > 1) {
        std::vector<std::string> modified = names;
        for (auto& each : modified)
            each.append(modifier);
        names.insert(names.begin(), modified.begin(), modified.end());
    }
    return names;
}

}  // namespace

std::vector<std::string> environmentLanguages() {
    std::vector<std::string> languages;
    for (std::string_view list = environment("LANGUAGE"); !list.empty();) {
        const auto end = std::min(list.find(':'), list.size());
        if (end > 0) languages.emplace_back(list.substr(0, end));
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    if (!languages.empty()) return languages;

    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (const auto value = environment(name); !value.empty()) return {std::string{value}};
    }
    return {};
}

std::string chooseLanguage(const std::vector<std::string>& preferred, const std::vector<std::string>& available,
                           std::string_view lastResort) {
    for (const auto& preference : preferred) {
        for (const auto& name : candidates(preference)) {
            if (name == "C" || name == "POSIX") return std::string{lastResort};
            const auto found = std::ranges::find_if(available, [&](const auto& each) { return sameName(each, name); });
            if (found != available.end()) return *found;
        }
    }
    return std::string{lastResort};
}

}  // namespace kestrel::localization
