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

/// A kind of company. The data store calls companies organisations.
struct CompanyType {
    static constexpr auto recordName = recordNameOf<CompanyType>;
    static constexpr auto entityName = entityNameOf<CompanyType>;

    ReadOnly<ObjectID<CompanyType>, CompanyType> companyTypeID;
    /// When the record was created.
    std::optional<Date> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// Whether pick lists offer it.
    bool isActive{true};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// What users call the kind.
    std::optional<std::string> name{};
    /// Position in pick lists.
    std::int64_t order{};

    [[nodiscard]] const ObjectID<CompanyType>& objectID() const noexcept { return companyTypeID.get(); }
    [[nodiscard]] const ObjectID<CompanyType>& id() const noexcept { return companyTypeID.get(); }
    friend bool operator==(const CompanyType&, const CompanyType&) = default;
};
extern template struct Codec<CompanyType>;

/// An industry that companies work in.
struct IndustryType {
    static constexpr auto recordName = recordNameOf<IndustryType>;
    static constexpr auto entityName = entityNameOf<IndustryType>;

    ReadOnly<ObjectID<IndustryType>, IndustryType> industryTypeID;
    /// When the record was created.
    std::optional<Date> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// Whether pick lists offer it.
    bool isActive{true};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// What users call the industry.
    std::optional<std::string> name{};
    /// Position in pick lists.
    std::int64_t order{};

    [[nodiscard]] const ObjectID<IndustryType>& objectID() const noexcept { return industryTypeID.get(); }
    [[nodiscard]] const ObjectID<IndustryType>& id() const noexcept { return industryTypeID.get(); }
    friend bool operator==(const IndustryType&, const IndustryType&) = default;
};
extern template struct Codec<IndustryType>;

/// A region that companies sit in.
struct RegionType {
    static constexpr auto recordName = recordNameOf<RegionType>;
    static constexpr auto entityName = entityNameOf<RegionType>;

    ReadOnly<ObjectID<RegionType>, RegionType> regionTypeID;
    /// When the record was created.
    std::optional<Date> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// Whether pick lists offer it.
    bool isActive{true};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// What users call the region.
    std::optional<std::string> name{};
    /// Position in pick lists.
    std::int64_t order{};

    [[nodiscard]] const ObjectID<RegionType>& objectID() const noexcept { return regionTypeID.get(); }
    [[nodiscard]] const ObjectID<RegionType>& id() const noexcept { return regionTypeID.get(); }
    friend bool operator==(const RegionType&, const RegionType&) = default;
};
extern template struct Codec<RegionType>;

}  // namespace kestrel
