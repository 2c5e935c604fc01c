#pragma once

#include <kestrel/access/permissions.h>
#include <kestrel/coding/codec.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/record_types.h>
#include <kestrel/lookups/keyword.h>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestrel {

/// A filled-in form. It is stored as a set of custom records, which are its fields.
struct Form {
    static constexpr auto recordName = recordNameOf<Form>;
    static constexpr auto entityName = entityNameOf<Form>;

    ReadOnly<ObjectID<Form>, Form> customRecordSetID;
    /// When the record was created.
    ReadOnly<std::optional<Date>, Form> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// When the record was last changed.
    ReadOnly<std::optional<Date>, Form> modifyDate{};
    /// What the form is called.
    std::optional<std::string> name{};
    /// Who may read and change it.
    Permissions permissions{};
    /// Under which it can be found, each once.
    std::vector<Keyword> keywords{};

    [[nodiscard]] const ObjectID<Form>& objectID() const noexcept { return customRecordSetID.get(); }
    [[nodiscard]] const ObjectID<Form>& id() const noexcept { return customRecordSetID.get(); }
    friend bool operator==(const Form&, const Form&) = default;
};
extern template struct Codec<Form>;

}  // namespace kestrel
