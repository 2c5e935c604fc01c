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

struct AnyElectronicAddress;

/// What an electronic address leads to.
enum class ElectronicAddressKind : std::uint8_t {
    email = 0,         ///< a mailbox
    url = 1,           ///< a page on the web
    socialProfile = 2  ///< a profile on a social network
};

/// An electronic address as one of its kind. It shares its identifier, and all that it says, with the entry that it was
/// read from.
template <ElectronicAddressKind viewedKind>
struct ElectronicAddressView {
    using Coded = void;
    /// The kind of all such addresses.
    static constexpr ElectronicAddressKind kind = viewedKind;

    /// Identifies the entry that it was read from.
    ReadOnly<ObjectID<AnyElectronicAddress>, ElectronicAddressView> electronicAddressID;
    /// The e-mail address, the URL, or the name or URL of the profile.
    std::optional<std::string> address{};
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
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// The network of a social profile: "LinkedIn".
    std::optional<std::string> serviceName{};

    [[nodiscard]] const ObjectID<AnyElectronicAddress>& objectID() const noexcept { return electronicAddressID.get(); }
    [[nodiscard]] const ObjectID<AnyElectronicAddress>& id() const noexcept { return electronicAddressID.get(); }
    friend bool operator==(const ElectronicAddressView&, const ElectronicAddressView&) = default;
};

/// "ada@example.org".
using EmailAddress = ElectronicAddressView<ElectronicAddressKind::email>;
extern template struct Codec<EmailAddress>;

/// A web address.
using URLAddress = ElectronicAddressView<ElectronicAddressKind::url>;
extern template struct Codec<URLAddress>;

/// A profile on a social network.
using SocialProfile = ElectronicAddressView<ElectronicAddressKind::socialProfile>;
extern template struct Codec<SocialProfile>;

/// An electronic address of any kind, as it stands in the list of its owner. `email()`, `url()` and `socialProfile()`
/// read it as the type of its kind and are absent for the other kinds; `from` goes the other way.
struct AnyElectronicAddress {
    static constexpr auto recordName = recordNameOf<AnyElectronicAddress>;
    static constexpr auto entityName = entityNameOf<AnyElectronicAddress>;
    /// What `kind` tells.
    using Kind = ElectronicAddressKind;

    ReadOnly<ObjectID<AnyElectronicAddress>, AnyElectronicAddress> electronicAddressID;
    /// The e-mail address, the URL, or the name or URL of the profile.
    std::optional<std::string> address{};
    /// When the record was created.
    std::optional<Date> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// What the address leads to.
    ElectronicAddressKind kind{};
    /// What the user calls it: "Work", "Home".
    std::optional<AnyLabel> label{};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// The network of a social profile.
    std::optional<std::string> serviceName{};

    [[nodiscard]] const ObjectID<AnyElectronicAddress>& objectID() const noexcept { return electronicAddressID.get(); }
    [[nodiscard]] const ObjectID<AnyElectronicAddress>& id() const noexcept { return electronicAddressID.get(); }

    /// The entry that the view was read from, with whatever was changed in the view.
    template <ElectronicAddressKind viewedKind>
    [[nodiscard]] static AnyElectronicAddress from(const ElectronicAddressView<viewedKind>& view);
    /// As an e-mail address; absent when it is of another kind.
    [[nodiscard]] std::optional<EmailAddress> email() const;
    /// As a web address; absent when it is of another kind.
    [[nodiscard]] std::optional<URLAddress> url() const;
    /// As a profile; absent when it is of another kind.
    [[nodiscard]] std::optional<SocialProfile> socialProfile() const;

    friend bool operator==(const AnyElectronicAddress&, const AnyElectronicAddress&) = default;
};
extern template struct Codec<AnyElectronicAddress>;

template <ElectronicAddressKind viewedKind>
AnyElectronicAddress AnyElectronicAddress::from(const ElectronicAddressView<viewedKind>& view) {
    return {.electronicAddressID = view.objectID(),
            .address = view.address,
            .createDate = view.createDate,
            .deletionDate = view.deletionDate,
            .deletionIdentifier = view.deletionIdentifier,
            .deletionUserID = view.deletionUserID,
            .kind = viewedKind,
            .label = view.label,
            .modifyDate = view.modifyDate,
            .serviceName = view.serviceName};
}

}  // namespace kestrel
