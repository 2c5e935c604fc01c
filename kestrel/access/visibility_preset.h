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

/// A named visibility that records can be given.
struct VisibilityPreset {
    static constexpr auto recordName = recordNameOf<VisibilityPreset>;
    static constexpr auto entityName = entityNameOf<VisibilityPreset>;

    ReadOnly<ObjectID<VisibilityPreset>, VisibilityPreset> visibilityPresetID;
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// What users call the visibility.
    std::optional<std::string> name{};
    /// Stored only.
    std::int64_t noReadAccess{};
    /// Stored only.
    std::int64_t noWriteAccess{};

    [[nodiscard]] const ObjectID<VisibilityPreset>& objectID() const noexcept { return visibilityPresetID.get(); }
    [[nodiscard]] const ObjectID<VisibilityPreset>& id() const noexcept { return visibilityPresetID.get(); }
    friend bool operator==(const VisibilityPreset&, const VisibilityPreset&) = default;
};
extern template struct Codec<VisibilityPreset>;

}  // namespace kestrel
