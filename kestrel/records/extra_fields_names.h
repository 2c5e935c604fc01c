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

class ExtraFieldsNamer;

/// The names that a database gives to the extra fields of one record type: each field holds the name of the field that
/// it is called like.
struct ExtraFieldsNames {
    static constexpr auto recordName = recordNameOf<ExtraFieldsNames>;
    static constexpr auto entityName = entityNameOf<ExtraFieldsNames>;

    ReadOnly<ObjectID<ExtraFieldsNames>, ExtraFieldsNames> extraFieldsNamesID;
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    // The names of the texts and of the dates, by number.
    std::optional<std::string> extra1{};
    std::optional<std::string> extra10{};
    std::optional<std::string> extra11{};
    std::optional<std::string> extra12{};
    std::optional<std::string> extra2{};
    std::optional<std::string> extra3{};
    std::optional<std::string> extra4{};
    std::optional<std::string> extra5{};
    std::optional<std::string> extra6{};
    std::optional<std::string> extra7{};
    std::optional<std::string> extra8{};
    std::optional<std::string> extra9{};
    std::optional<std::string> extraDate1{};
    std::optional<std::string> extraDate2{};
    std::optional<std::string> extraDate3{};
    std::optional<std::string> extraDate4{};
    /// Which record type the names apply to.
    std::optional<std::string> typeString{};

    [[nodiscard]] const ObjectID<ExtraFieldsNames>& objectID() const noexcept { return extraFieldsNamesID.get(); }
    [[nodiscard]] const ObjectID<ExtraFieldsNames>& id() const noexcept { return extraFieldsNamesID.get(); }
    /// What names the extra fields of records by these names. Declared here, defined with ExtraFieldsNamer.
    [[nodiscard]] ExtraFieldsNamer namer() const;
    friend bool operator==(const ExtraFieldsNames&, const ExtraFieldsNames&) = default;
};
extern template struct Codec<ExtraFieldsNames>;

}  // namespace kestrel
