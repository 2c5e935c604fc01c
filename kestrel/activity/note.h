#pragma once

#include <kestrel/access/permissions.h>
#include <kestrel/activity/text_body.h>
#include <kestrel/coding/codec.h>
#include <kestrel/foundation/date.h>
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

/// A note: a title and a text.
struct Note {
    static constexpr auto recordName = recordNameOf<Note>;
    static constexpr auto entityName = entityNameOf<Note>;

    ReadOnly<ObjectID<Note>, Note> noteID;
    /// The text; absent when there is a title alone.
    std::optional<TextBody> body{};
    /// When the record was created.
    ReadOnly<std::optional<Date>, Note> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// When the record was last changed.
    ReadOnly<std::optional<Date>, Note> modifyDate{};
    /// Key of the company that it belongs to.
    std::optional<std::int64_t> organizationID{};
    /// What the note is about.
    std::optional<std::string> title{};
    /// Who may read and change it.
    Permissions permissions{};
    /// Its category, with the name and colour to show.
    std::optional<Category> category{};
    /// Under which it can be found, each once.
    std::vector<Keyword> keywords{};

    [[nodiscard]] const ObjectID<Note>& objectID() const noexcept { return noteID.get(); }
    [[nodiscard]] const ObjectID<Note>& id() const noexcept { return noteID.get(); }

    /// The text of a plain body; absent without a body and for bodies of other forms.
    [[nodiscard]] std::optional<std::string> plainTextBody() const { return body ? body->plain() : std::nullopt; }
    /// The text of an HTML body; absent without a body and for bodies of other forms.
    [[nodiscard]] std::optional<std::string> htmlBody() const { return body ? body->html() : std::nullopt; }

    friend bool operator==(const Note&, const Note&) = default;
};
extern template struct Codec<Note>;

}  // namespace kestrel
