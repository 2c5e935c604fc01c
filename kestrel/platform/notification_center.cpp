#include <kestrel/platform/notification_center.h>
#include <kestrel/reactive/pass_through_subject.h>
#include <map>
#include <mutex>
#include <optional>

namespace kestrel {

/// A subject for each name that somebody has listened to. Names are few and stay.
struct NotificationCenter::Subjects {
    mutable std::mutex mutex{};
    std::map<std::string, PassThroughSubject<Notification>, std::less<>> byName{};

    [[nodiscard]] PassThroughSubject<Notification> subject(std::string_view name) {
        const std::scoped_lock lock(mutex);
        const auto found = byName.find(name);
        if (found != byName.end()) return found->second;
        return byName.emplace(name, PassThroughSubject<Notification>()).first->second;
    }
    /// Absent when nobody has ever listened.
    [[nodiscard]] std::optional<PassThroughSubject<Notification>> find(std::string_view name) const {
        const std::scoped_lock lock(mutex);
        const auto found = byName.find(name);
        return found == byName.end() ? std::nullopt : std::optional(found->second);
    }
};

NotificationCenter::NotificationCenter() : subjects_(std::make_unique<Subjects>()) {}
NotificationCenter::~NotificationCenter() = default;

NotificationCenter& NotificationCenter::standard() {
    // Never destroyed: what is destroyed late may still post.
    static auto* const center = new NotificationCenter;
    return *center;
}

void NotificationCenter::post(std::string_view name, const NotificationObject* object) const {
    if (const auto subject = subjects_->find(name)) subject->send({.name = std::string(name), .object = object});
}

AnyPublisher<Notification> NotificationCenter::notifications(std::string_view name) const {
    return subjects_->subject(name).eraseToAnyPublisher();
}

AnyPublisher<Notification> NotificationCenter::notifications(std::string_view name,
                                                             const NotificationObject* object) const {
    return notifications(name).filter(
        [object](const Notification& each) { return each.object != nullptr && each.object == object; });
}

}  // namespace kestrel
