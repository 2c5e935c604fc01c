#pragma once

#include <kestrel/access/permissions.h>
#include <kestrel/coding/codec.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/record_types.h>
#include <cstdint>
#include <optional>
#include <string>

namespace kestrel {

/// A link on the web that is filed with records.
struct URLReference {
    static constexpr auto recordName = recordNameOf<URLReference>;
    static constexpr auto entityName = entityNameOf<URLReference>;

    ReadOnly<ObjectID<URLReference>, URLReference> urlReferenceID;
    /// When the record was created.
    std::optional<Date> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// What users call the link.
    std::optional<std::string> name{};
    /// What users say about it.
    std::optional<std::string> note{};
    /// The URL as the user wrote it.
    std::optional<std::string> urlString{};
    /// Who may read and change it.
    Permissions permissions{};

    [[nodiscard]] const ObjectID<URLReference>& objectID() const noexcept { return urlReferenceID.get(); }
    [[nodiscard]] const ObjectID<URLReference>& id() const noexcept { return urlReferenceID.get(); }
    friend bool operator==(const URLReference&, const URLReference&) = default;
};
extern template struct Codec<URLReference>;

}  // namespace kestrel
