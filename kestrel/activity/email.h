#pragma once

#include <kestrel/access/permissions.h>
#include <kestrel/coding/codec.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/enumeration.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/record_types.h>
#include <kestrel/lookups/category.h>
#include <kestrel/lookups/keyword.h>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestrel {

/// How a message came to be filed.
enum class EmailDMIStatus : std::uint8_t {
    none = 0,     ///< not said
    legacy = 10,  ///< in the way of earlier releases
    draft = 20    ///< as a draft, which was not sent
};

/// A filed e-mail message.
struct Email {
    static constexpr auto recordName = recordNameOf<Email>;
    static constexpr auto entityName = entityNameOf<Email>;

    ReadOnly<ObjectID<Email>, Email> emailID;
    /// Who got a copy unseen by the others. The addressing, here and below, stands as the message carried it.
    std::optional<std::string> bccString{};
    /// Who got a copy.
    std::optional<std::string> ccString{};
    /// When the record was created.
    ReadOnly<std::optional<Date>, Email> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// When the message was filed.
    std::optional<Date> dmiRecordDate{};
    /// The raw value of its EmailDMIStatus; other codes are kept.
    std::int64_t dmiStatusCode{};
    /// The sender: "Ada Lovelace <ada@example.org>".
    std::optional<std::string> fromString{};
    /// The identifier of the message that this one answers.
    std::optional<std::string> inReplyToMessageID{};
    /// When the message says that it was written.
    std::optional<Date> messageDate{};
    /// The message's own identifier.
    std::optional<std::string> messageID{};
    /// When the record was last changed.
    ReadOnly<std::optional<Date>, Email> modifyDate{};
    /// All header lines, as the message carried them.
    std::optional<std::string> rawHeader{};
    /// The title.
    std::optional<std::string> subject{};
    /// Who it was written to.
    std::optional<std::string> toString{};
    /// Who may read and change it.
    Permissions permissions{};
    /// Its category, with the name and colour to show.
    std::optional<Category> category{};
    /// Under which it can be found, each once.
    std::vector<Keyword> keywords{};

    [[nodiscard]] const ObjectID<Email>& objectID() const noexcept { return emailID.get(); }
    [[nodiscard]] const ObjectID<Email>& id() const noexcept { return emailID.get(); }

    /// Absent for a code that is no status.
    [[nodiscard]] std::optional<EmailDMIStatus> dmiStatus() const {
        return fromRawValue<EmailDMIStatus>(dmiStatusCode);
    }
    /// Whether it was filed as a draft.
    [[nodiscard]] bool isDraft() const { return dmiStatus() == EmailDMIStatus::draft; }

    /// The sender's address: what stands between the first "<" and the next ">" or the end, or the whole text where
    /// there is no "<", without the white space around it. Absent without a sender, and when nothing stands behind the
    /// "<".
    [[nodiscard]] std::optional<std::string> fromEmailAddress() const;
    /// The sender's name: what stands before the first "<", without white space and double quotes at both ends. When
    /// that is nothing, the address.
    [[nodiscard]] std::optional<std::string> fromDisplayName() const;

    friend bool operator==(const Email&, const Email&) = default;
};
extern template struct Codec<Email>;

}  // namespace kestrel
