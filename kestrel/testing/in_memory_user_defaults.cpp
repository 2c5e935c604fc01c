#include <kestrel/testing/in_memory_user_defaults.h>
#include <utility>

namespace kestrel {

std::optional<DefaultsValue> InMemoryUserDefaults::object(std::string_view key) const {
    const std::scoped_lock lock(mutex_);
    const auto found = values_.find(key);
    return found == values_.end() ? std::nullopt : std::optional(found->second);
}

std::expected<void, PlatformError> InMemoryUserDefaults::change(const std::function<bool(Values&)>& apply) {
    {
        const std::scoped_lock lock(mutex_);
        if (failure_) return std::unexpected(*failure_);
        if (!apply(values_)) return {};
    }
    NotificationCenter::standard().post(userDefaultsDidChangeNotification, this);
    return {};
}

std::expected<void, PlatformError> InMemoryUserDefaults::set(std::string_view key, DefaultsValue value) {
    return change([&](Values& values) {
        const auto [place, isNew] = values.try_emplace(std::string(key), value);
        if (!isNew && place->second == value) return false;
        place->second = std::move(value);
        return true;
    });
}

std::expected<void, PlatformError> InMemoryUserDefaults::removeObject(std::string_view key) {
    return change([&](Values& values) { return values.erase(std::string(key)) > 0; });
}

std::vector<std::string> InMemoryUserDefaults::keys() const {
    const std::scoped_lock lock(mutex_);
    std::vector<std::string> keys;
    for (const auto& [key, value] : values_)
        keys.push_back(key);
    return keys;
}

void InMemoryUserDefaults::failWrites(std::optional<PlatformError> error) {
    const std::scoped_lock lock(mutex_);
    failure_ = std::move(error);
}

}  // namespace kestrel
