#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>

#include <optional>
#include <string>

namespace outside {

/// A record type of the host's own: it names itself, and its identifiers are coded like all others.
struct Vehicle {
    static constexpr std::string_view recordName = "Vehicle";
    static constexpr std::string_view entityName = "Vehicle";

    kestrel::ReadOnly<kestrel::ObjectID<Vehicle>, Vehicle> vehicleID;
    std::optional<std::string> plate{};
    std::int64_t seats{};

    [[nodiscard]] const kestrel::ObjectID<Vehicle>& objectID() const { return vehicleID; }
    friend bool operator==(const Vehicle&, const Vehicle&) = default;
};

}  // namespace outside

extern template struct kestrel::Codec<outside::Vehicle>;
