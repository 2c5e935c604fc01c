#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/details/label.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/record_types.h>
#include <cstdint>
#include <optional>
#include <string>

namespace kestrel {

/// A postal address. Its place in the list of its owner is its rank: the first one is the default.
struct GeoAddress {
    static constexpr auto recordName = recordNameOf<GeoAddress>;
    static constexpr auto entityName = entityNameOf<GeoAddress>;

    ReadOnly<ObjectID<GeoAddress>, GeoAddress> geoAddressID;
    /// City, town or village.
    std::optional<std::string> city{};
    /// As the user wrote it.
    std::optional<std::string> country{};
    /// Two letters of ISO 3166-1, where known.
    std::optional<std::string> countryCode{};
    /// When the record was created.
    std::optional<Date> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// What the user calls it: "Work", "Home".
    std::optional<AnyLabel> label{};
    /// In degrees, north positive; present together with the longitude.
    std::optional<double> latitude{};
    /// In degrees, east positive.
    std::optional<double> longitude{};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// As it is written in the country.
    std::optional<std::string> postalCode{};
    /// State, province or region.
    std::optional<std::string> state{};
    /// Street and number; several lines where needed.
    std::optional<std::string> street{};

    [[nodiscard]] const ObjectID<GeoAddress>& objectID() const noexcept { return geoAddressID.get(); }
    [[nodiscard]] const ObjectID<GeoAddress>& id() const noexcept { return geoAddressID.get(); }
    friend bool operator==(const GeoAddress&, const GeoAddress&) = default;
};
extern template struct Codec<GeoAddress>;

}  // namespace kestrel
