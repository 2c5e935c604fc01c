#pragma once

#include <kestrel/access/permissions.h>
#include <kestrel/coding/codec.h>
#include <kestrel/details/electronic_address.h>
#include <kestrel/details/geo_address.h>
#include <kestrel/details/phone.h>
#include <kestrel/files/image_asset.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/record_types.h>
#include <kestrel/lookups/category.h>
#include <kestrel/lookups/keyword.h>
#include <kestrel/records/contact_priority.h>
#include <kestrel/records/name.h>
#include <kestrel/records/partial_date.h>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kestrel {

struct ContactRole;

/// A person.
struct Contact {
    static constexpr auto recordName = recordNameOf<Contact>;
    static constexpr auto entityName = entityNameOf<Contact>;
    /// What `priority` tells.
    using Priority = ContactPriority;

    ReadOnly<ObjectID<Contact>, Contact> contactID;
    /// Another name that the person goes by.
    std::optional<std::string> alias{};
    /// Day of the month; 0 when not set.
    std::int64_t anniversaryDay{};
    /// 1 to 12; 0 when not set.
    std::int64_t anniversaryMonth{};
    /// 0 when not known.
    std::int64_t anniversaryYear{};
    /// Day of the month; 0 when not set.
    std::int64_t birthDay{};
    /// 1 to 12; 0 when not set.
    std::int64_t birthMonth{};
    /// 0 when not known.
    std::int64_t birthYear{};
    /// When the record was created.
    ReadOnly<std::optional<Date>, Contact> createDate{};
    /// Credentials and letters behind the name.
    std::optional<std::string> creditation{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// What users note about the person.
    std::optional<std::string> details{};
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
    /// The first of the given names.
    std::optional<std::string> firstName{};
    /// What the person likes to do.
    std::optional<std::string> hobbies{};
    /// The contact's picture.
    std::optional<ImageAsset> imageAsset{};
    /// The salutation for letters.
    std::optional<std::string> individualSalutation{};
    /// Whether a user has marked the contact.
    bool isFlagged{};
    /// The family name.
    std::optional<std::string> lastName{};
    /// The given names behind the first.
    std::optional<std::string> middleName{};
    /// When the record was last changed.
    ReadOnly<std::optional<Date>, Contact> modifyDate{};
    /// What friends call the person.
    std::optional<std::string> nickname{};
    /// In front of the name: "Dr."
    std::optional<std::string> prefix{};
    /// How much the contact matters; `inactive` by default.
    ContactPriority priority{};
    /// What the person is to the user, in the user's words.
    std::optional<std::string> relationshipToMe{};
    /// Behind the name: "Jr."
    std::optional<std::string> suffix{};
    /// A line about the person.
    std::optional<std::string> tagline{};
    /// Its category, with the name and colour to show.
    std::optional<Category> category{};
    /// E-mail and web addresses and social profiles, in the user's order.
    std::vector<AnyElectronicAddress> electronicAddresses{};
    /// In the user's order.
    std::vector<GeoAddress> geoAddresses{};
    /// Under which it can be found, each once.
    std::vector<Keyword> keywords{};
    /// In the user's order.
    std::vector<Phone> phones{};
    /// Who may read and change it.
    Permissions permissions{};

    [[nodiscard]] const ObjectID<Contact>& objectID() const noexcept { return contactID.get(); }
    [[nodiscard]] const ObjectID<Contact>& id() const noexcept { return contactID.get(); }
    /// Its seven parts, as one value.
    [[nodiscard]] Name name() const;
    /// Writes all seven parts, the absent ones too.
    void setName(const Name& name);

    /// Present when the day and the month are set; without a year when that is not known.
    [[nodiscard]] std::optional<PartialDate> birthDate() const;
    /// An absent date clears day, month and year.
    void setBirthDate(const std::optional<PartialDate>& date);
    /// Present when the day and the month are set; without a year when that is not known.
    [[nodiscard]] std::optional<PartialDate> anniversaryDate() const;
    /// An absent date clears day, month and year.
    void setAnniversaryDate(const std::optional<PartialDate>& date);

    ///@{
    /// The electronic addresses of one kind, in order. Setting them fills the places of that kind in order; the other
    /// kinds keep theirs. When there are fewer than before the last places fall away; when there are more, the further
    /// ones follow the last place of the kind, or all others where the kind had none.
    [[nodiscard]] std::vector<EmailAddress> emailAddresses() const;
    void setEmailAddresses(std::span<const EmailAddress> addresses);
    [[nodiscard]] std::vector<URLAddress> urlAddresses() const;
    void setURLAddresses(std::span<const URLAddress> addresses);
    [[nodiscard]] std::vector<SocialProfile> socialProfiles() const;
    void setSocialProfiles(std::span<const SocialProfile> profiles);
    ///@}

    ///@{
    /// The default is the first one in the user's order; absent where there is none. Setting it puts the value first;
    /// an entry of the same identifier is taken out before, and the others keep their order. Setting an absent value
    /// changes nothing.
    [[nodiscard]] std::optional<Phone> defaultPhone() const;
    void setDefaultPhone(const std::optional<Phone>& phone);
    [[nodiscard]] std::optional<EmailAddress> defaultEmailAddress() const;
    void setDefaultEmailAddress(const std::optional<EmailAddress>& address);
    [[nodiscard]] std::optional<GeoAddress> defaultGeoAddress() const;
    void setDefaultGeoAddress(const std::optional<GeoAddress>& address);
    ///@}

    // Over a contact's roles (kestrel/relationships/contact_role.h).

    /// The first role that is marked as the default; without one the first role at a company; else null. It points into
    /// `roles`.
    [[nodiscard]] static const ContactRole* defaultRole(std::span<const ContactRole> roles);
    static const ContactRole* defaultRole(std::vector<ContactRole>&& roles) = delete;
    /// The roles with the marks of all roles at companies taken away and, if the role at the index is one at a company,
    /// with that one marked: choosing any other role leaves no company's role marked. Unchanged when the index is out
    /// of range.
    [[nodiscard]] static std::vector<ContactRole> setDefaultRole(std::int64_t index, std::vector<ContactRole> roles);

    friend bool operator==(const Contact&, const Contact&) = default;
};
extern template struct Codec<Contact>;

}  // namespace kestrel
