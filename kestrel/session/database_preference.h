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

/// A preference of the whole database, as text. Which ones there are is data of the host's.
struct DatabasePreference {
    static constexpr auto recordName = recordNameOf<DatabasePreference>;
    static constexpr auto entityName = entityNameOf<DatabasePreference>;

    ReadOnly<ObjectID<DatabasePreference>, DatabasePreference> databasePreferenceID;
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// The preference's key.
    std::optional<std::string> name{};
    /// Its value.
    std::optional<std::string> prefValue{};

    [[nodiscard]] const ObjectID<DatabasePreference>& objectID() const noexcept { return databasePreferenceID.get(); }
    [[nodiscard]] const ObjectID<DatabasePreference>& id() const noexcept { return databasePreferenceID.get(); }
    friend bool operator==(const DatabasePreference&, const DatabasePreference&) = default;
};
extern template struct Codec<DatabasePreference>;

}  // namespace kestrel
