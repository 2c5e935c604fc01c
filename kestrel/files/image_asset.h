#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/data.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/record_types.h>
#include <cstdint>
#include <optional>
#include <string>

namespace kestrel {

/// A picture that belongs to a record.
struct ImageAsset {
    static constexpr auto recordName = recordNameOf<ImageAsset>;
    static constexpr auto entityName = entityNameOf<ImageAsset>;

    ReadOnly<ObjectID<ImageAsset>, ImageAsset> imageAssetID;
    /// When the record was created.
    std::optional<Date> createDate{};
    /// The encoded picture; absent while it is not loaded.
    std::optional<Data> data{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// In pixels; 0 when not known.
    std::int64_t height{};
    /// "image/jpeg".
    std::optional<std::string> mimeType{};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// The name of its file.
    std::optional<std::string> name{};
    /// In pixels; 0 when not known.
    std::int64_t width{};

    [[nodiscard]] const ObjectID<ImageAsset>& objectID() const noexcept { return imageAssetID.get(); }
    [[nodiscard]] const ObjectID<ImageAsset>& id() const noexcept { return imageAssetID.get(); }
    friend bool operator==(const ImageAsset&, const ImageAsset&) = default;
};
extern template struct Codec<ImageAsset>;

}  // namespace kestrel
