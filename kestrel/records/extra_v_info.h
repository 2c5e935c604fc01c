#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/record_types.h>
#include <cstdint>
#include <optional>
#include <string>

namespace kestrel {

/// Free information linked to a contact, a company, a task, an appointment and a user, each by primary key.
struct ExtraVInfo {
    static constexpr auto recordName = recordNameOf<ExtraVInfo>;
    static constexpr auto entityName = entityNameOf<ExtraVInfo>;

    ReadOnly<ObjectID<ExtraVInfo>, ExtraVInfo> extraVInfoID;
    /// Key of the contact.
    std::int64_t contactID{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// What is known, as a text.
    std::optional<std::string> info{};
    /// Key of the company.
    std::int64_t organizationID{};
    /// Key of the task.
    std::int64_t taskID{};
    /// Key of the appointment.
    std::int64_t timeblockID{};
    /// Key of the user.
    std::int64_t userID{};

    [[nodiscard]] const ObjectID<ExtraVInfo>& objectID() const noexcept { return extraVInfoID.get(); }
    [[nodiscard]] const ObjectID<ExtraVInfo>& id() const noexcept { return extraVInfoID.get(); }
    friend bool operator==(const ExtraVInfo&, const ExtraVInfo&) = default;
};
extern template struct Codec<ExtraVInfo>;

}  // namespace kestrel
