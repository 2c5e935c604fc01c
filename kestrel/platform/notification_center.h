#pragma once

#include <kestrel/reactive/publisher.h>
#include <memory>
#include <string>
#include <string_view>

namespace kestrel {

/// What a notification can be about. Told apart by identity, not by value.
class NotificationObject {
  public:
    NotificationObject() = default;
    NotificationObject(const NotificationObject&) = delete;
    NotificationObject& operator=(const NotificationObject&) = delete;
    virtual ~NotificationObject() = default;
};

/// Something happened, within this process.
struct Notification {
    /// What happened.
    std::string name{};
    /// What it happened to; null when the notification says nothing about that. Good until `post` returns: not behind
    /// `receiveOn`, and not to be kept.
    const NotificationObject* object{};
};

/// Tells everybody in this process who listens what happened. May be used from any thread; a notification is delivered
/// on the thread that posts it, before `post` returns; a listener hears one at a time.
class NotificationCenter {
  public:
    /// Nobody listens yet.
    NotificationCenter();
    /// Lets go who listens.
    ~NotificationCenter();
    NotificationCenter(const NotificationCenter&) = delete;
    NotificationCenter& operator=(const NotificationCenter&) = delete;

    /// The one that the platform's parts use. Lives as long as the process.
    [[nodiscard]] static NotificationCenter& standard();

    /// Tells those who listen for that name, or for that name and object, before it returns.
    void post(std::string_view name, const NotificationObject* object = nullptr) const;
    /// The notifications of that name from now on, without end; of any object.
    [[nodiscard]] AnyPublisher<Notification> notifications(std::string_view name) const;
    /// Those about that very object. Those without an object are not.
    [[nodiscard]] AnyPublisher<Notification> notifications(std::string_view name,
                                                           const NotificationObject* object) const;

  private:
    struct Subjects;
    std::unique_ptr<Subjects> subjects_;
};

}  // namespace kestrel
