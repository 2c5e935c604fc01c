#include <kestrel/platform/notification_center.h>
#include <kestrel/reactive/pass_through_subject.h>
#include <map>
#include <mutex>

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
};

NotificationCenter::NotificationCenter() : subjects_(std::make_unique<Subjects>()) {}
NotificationCenter::~NotificationCenter() = default;

NotificationCenter& NotificationCenter::standard() {
    // Never destroyed: what is destroyed late may still post.
    static auto* const center = new NotificationCenter;
    return *center;
}

void NotificationCenter::post(std::string_view name, const NotificationObject* object) const {
    subjects_->subject(name).send({.name = std::string(name), .object = object});
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
