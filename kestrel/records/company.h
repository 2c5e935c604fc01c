#pragma once

#include <kestrel/access/permissions.h>
#include <kestrel/coding/codec.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/record_types.h>
#include <kestrel/lookups/category.h>
#include <cstdint>
#include <optional>
#include <string>

namespace kestrel {

/// A company. The data store calls it an organisation.
///
/// Fields that end in ID refer to other records by primary key.
struct Company {
    static constexpr auto recordName = recordNameOf<Company>;
    static constexpr auto entityName = entityNameOf<Company>;

    ReadOnly<ObjectID<Company>, Company> organizationID;
    /// Key of the user it is assigned to.
    std::optional<std::int64_t> assignedToID{};
    /// Key of its category.
    std::optional<std::int64_t> categoryID{};
    /// When the record was created.
    std::optional<Date> createDate{};
    /// Key of the user who created it.
    std::optional<std::int64_t> createdByID{};
    /// The department as cached from a DAV synchronisation server.
    std::optional<std::string> davCachedDepartment{};
    /// The record's identity on that server.
    std::optional<std::string> davIdentifier{};
    /// Key of the note that shows first.
    std::optional<std::int64_t> defaultNoteID{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// Key of the record that holds the company's details text.
    std::optional<std::int64_t> detailsID{};
    /// The record's entity tag on the DAV server.
    std::optional<std::string> eTag{};
    // Free texts and dates whose names each database gives: see ExtraFieldsNames.
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
    std::optional<Date> extraDate1{};
    std::optional<Date> extraDate2{};
    std::optional<Date> extraDate3{};
    std::optional<Date> extraDate4{};
    /// 0 or 1.
    std::int64_t flagged{};
    /// Key of its picture.
    std::optional<std::int64_t> imageDataID{};
    /// Key of the IndustryType that it works in.
    std::optional<std::int64_t> industryTypeID{};
    /// The store's level code.
    std::int64_t level{};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// What the company is called.
    std::optional<std::string> name{};
    /// 0 when not known.
    std::int64_t numberOfEmployees{};
    /// Position among its siblings.
    std::int64_t order{};
    /// The store's packed permission word, kept beside the decoded `permissions` and not interpreted.
    std::int64_t permissionMask{};
    /// Key of the RegionType that it sits in.
    std::optional<std::int64_t> regionTypeID{};
    /// Standard industrial classification.
    std::optional<std::string> sicCode{};
    /// The identifier that the record had where it was imported from.
    std::optional<std::string> sourceImportID{};
    /// A line about it, such as its slogan.
    std::optional<std::string> tagline{};
    /// Under which its shares are traded.
    std::optional<std::string> tickerSymbol{};
    /// Key of its visibility preset.
    std::optional<std::int64_t> visibilityPresetID{};
    /// Its category, with the name and colour to show.
    std::optional<Category> category{};
    /// Who may read and change it.
    Permissions permissions{};

    [[nodiscard]] const ObjectID<Company>& objectID() const noexcept { return organizationID.get(); }
    [[nodiscard]] const ObjectID<Company>& id() const noexcept { return organizationID.get(); }
    friend bool operator==(const Company&, const Company&) = default;
};
extern template struct Codec<Company>;

}  // namespace kestrel
