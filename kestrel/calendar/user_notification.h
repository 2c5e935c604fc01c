#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/choice.h>
#include <kestrel/foundation/hashing.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/occurrence_ids.h>
#include <cstddef>
#include <functional>
#include <optional>
#include <utility>

namespace kestrel {

/// A record that an alert can concern. Compared and hashed by case and identifier.
class AlertableObjectID
    : public Choice<AlertableObjectID, AppointmentID, ObjectID<Opportunity>, ObjectID<Project>, TaskID> {
  public:
    /// An appointment or an occurrence of one.
    [[nodiscard]] static AlertableObjectID appointment(AppointmentID id) { return AlertableObjectID(std::move(id)); }
    /// A sales deal.
    [[nodiscard]] static AlertableObjectID opportunity(ObjectID<Opportunity> id) { return AlertableObjectID(id); }
    /// A project.
    [[nodiscard]] static AlertableObjectID project(ObjectID<Project> id) { return AlertableObjectID(id); }
    /// A task or an occurrence of one.
    [[nodiscard]] static AlertableObjectID task(TaskID id) { return AlertableObjectID(std::move(id)); }

    [[nodiscard]] std::optional<AppointmentID> appointment() const { return payload<AppointmentID>(); }
    [[nodiscard]] std::optional<ObjectID<Opportunity>> opportunity() const { return payload<ObjectID<Opportunity>>(); }
    [[nodiscard]] std::optional<ObjectID<Project>> project() const { return payload<ObjectID<Project>>(); }
    [[nodiscard]] std::optional<TaskID> task() const { return payload<TaskID>(); }

    /// Combines what equality compares.
    void hash(Hasher& hasher) const {
        hasher.combine(caseIndex());
        match([&](const auto& id) { hashValue(hasher, id); });
    }
    friend bool operator==(const AlertableObjectID&, const AlertableObjectID&) = default;

  private:
    explicit AlertableObjectID(Variant value) : Choice(std::move(value)) {}
};

/// An alert and the record that it concerns.
struct UserNotificationAlert {
    /// Identifies the alert.
    ObjectID<AlertObject> objectID;
    /// What it concerns.
    AlertableObjectID alertableObjectID;

    friend bool operator==(const UserNotificationAlert&, const UserNotificationAlert&) = default;
};

/// The identity of a notification that the application posts: that of an alert. Compared and hashed by both parts.
class KestrelUserNotification : public Choice<KestrelUserNotification, UserNotificationAlert> {
  public:
    /// What an alert concerns.
    using AlertableObjectID = kestrel::AlertableObjectID;
    /// The payload of the case of that name.
    using Alert = UserNotificationAlert;

    /// The notification of that alert.
    [[nodiscard]] static KestrelUserNotification alert(ObjectID<AlertObject> objectID,
                                                       AlertableObjectID alertableObjectID) {
        return KestrelUserNotification(Alert{objectID, std::move(alertableObjectID)});
    }

    [[nodiscard]] std::optional<Alert> alert() const { return payload<Alert>(); }

    /// Combines what equality compares.
    void hash(Hasher& hasher) const {
        hasher.combine(caseIndex());
        match([&](const Alert& alert) {
            hashValue(hasher, alert.objectID);
            alert.alertableObjectID.hash(hasher);
        });
    }
    friend bool operator==(const KestrelUserNotification&, const KestrelUserNotification&) = default;

  private:
    explicit KestrelUserNotification(Variant value) : Choice(std::move(value)) {}
};

}  // namespace kestrel

template <>
struct std::hash<kestrel::AlertableObjectID> {
    using is_avalanching = void;
    [[nodiscard]] std::size_t operator()(const kestrel::AlertableObjectID& id) const {
        kestrel::Hasher hasher;
        id.hash(hasher);
        return static_cast<std::size_t>(hasher.result());
    }
};

template <>
struct std::hash<kestrel::KestrelUserNotification> {
    using is_avalanching = void;
    [[nodiscard]] std::size_t operator()(const kestrel::KestrelUserNotification& notification) const {
        kestrel::Hasher hasher;
        notification.hash(hasher);
        return static_cast<std::size_t>(hasher.result());
    }
};
