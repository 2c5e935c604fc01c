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

/// How far the store has processed a message.
struct EmailMessageStatus {
    static constexpr auto recordName = recordNameOf<EmailMessageStatus>;
    static constexpr auto entityName = entityNameOf<EmailMessageStatus>;

    ReadOnly<ObjectID<EmailMessageStatus>, EmailMessageStatus> emailMessageStatusID;
    /// When the record was created.
    std::optional<Date> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// The identifier of the message that this one answers.
    std::optional<std::string> inReplyToMessageID{};
    /// The message's own identifier.
    std::optional<std::string> messageID{};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// Key of the note that the message became.
    std::optional<std::int64_t> noteID{};
    /// Key of the user for whom it was processed.
    std::optional<std::int64_t> processedByUserID{};
    /// The store's code.
    std::int64_t statusCode{};

    [[nodiscard]] const ObjectID<EmailMessageStatus>& objectID() const noexcept { return emailMessageStatusID.get(); }
    [[nodiscard]] const ObjectID<EmailMessageStatus>& id() const noexcept { return emailMessageStatusID.get(); }
    friend bool operator==(const EmailMessageStatus&, const EmailMessageStatus&) = default;
};
extern template struct Codec<EmailMessageStatus>;

}  // namespace kestrel
