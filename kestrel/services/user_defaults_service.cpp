#include <kestrel/platform/notification_center.h>
#include <kestrel/services/user_defaults_service.h>
#include <string>

namespace kestrel {

std::optional<DefaultsValue> UserDefaultsService::readStored(std::string_view name, StoredValueReader reader) const {
    return reader(name, *userDefaults_);
}

DefaultsWritten UserDefaultsService::writeStored(std::optional<DefaultsValue> value, std::string_view name) {
    return value ? userDefaults_->set(name, *std::move(value)) : userDefaults_->removeObject(name);
}

DefaultsWritten UserDefaultsService::remove(std::string_view name) {
    return userDefaults_->removeObject(name);
}

AnyPublisher<std::optional<DefaultsValue>> UserDefaultsService::observeStored(std::string_view name,
                                                                              StoredValueType type) {
    using Stored = std::optional<DefaultsValue>;
    const auto read = [store = userDefaults_, key = std::string(name), type] { return type.read(key, *store); };
    // The value at the start is what the first change is compared with; nobody is given it.
    return deferred([read] { return just<Stored>(read()); })
        .append(NotificationCenter::standard()
                    .notifications(userDefaultsDidChangeNotification, userDefaults_.get())
                    .map([read](const Notification&) { return read(); })
                    .removeDuplicates(type.areEqual))
        .removeDuplicates(type.areEqual)
        .dropFirst();
}

}  // namespace kestrel
