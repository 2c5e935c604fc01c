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

enum class ElectronicAddressKind : std::uint8_t { email = 0, url = 1, socialProfile = 2 };

/// An e-mail address. It shares its identifier with the entry that it was read from.
struct EmailAddress {
    using Coded = void;

    ReadOnly<ObjectID<AnyElectronicAddress>, EmailAddress> electronicAddressID;
    /// Local part and domain: "ada@example.org".
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
    /// Of use for social profiles only, but kept as it is stored.
    std::optional<std::string> serviceName{};

    [[nodiscard]] const ObjectID<AnyElectronicAddress>& objectID() const noexcept { return electronicAddressID.get(); }
    [[nodiscard]] const ObjectID<AnyElectronicAddress>& id() const noexcept { return electronicAddressID.get(); }
    friend bool operator==(const EmailAddress&, const EmailAddress&) = default;
};
extern template struct Codec<EmailAddress>;

/// A web address. It shares its identifier with the entry that it was read from.
struct URLAddress {
    using Coded = void;

    ReadOnly<ObjectID<AnyElectronicAddress>, URLAddress> electronicAddressID;
    /// The URL.
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
    /// Of use for social profiles only, but kept as it is stored.
    std::optional<std::string> serviceName{};

    [[nodiscard]] const ObjectID<AnyElectronicAddress>& objectID() const noexcept { return electronicAddressID.get(); }
    [[nodiscard]] const ObjectID<AnyElectronicAddress>& id() const noexcept { return electronicAddressID.get(); }
    friend bool operator==(const URLAddress&, const URLAddress&) = default;
};
extern template struct Codec<URLAddress>;

/// A profile on a social network. It shares its identifier with the entry that it was read from.
struct SocialProfile {
    using Coded = void;

    ReadOnly<ObjectID<AnyElectronicAddress>, SocialProfile> electronicAddressID;
    /// The user's name on the service, or the URL of the profile.
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
    /// The network: "LinkedIn".
    std::optional<std::string> serviceName{};

    [[nodiscard]] const ObjectID<AnyElectronicAddress>& objectID() const noexcept { return electronicAddressID.get(); }
    [[nodiscard]] const ObjectID<AnyElectronicAddress>& id() const noexcept { return electronicAddressID.get(); }
    friend bool operator==(const SocialProfile&, const SocialProfile&) = default;
};
extern template struct Codec<SocialProfile>;

/// An electronic address of any kind, as it stands in the list of its owner. `email()`, `url()` and `socialProfile()`
/// read it as the type of its kind and are absent for the other kinds; `from` goes the other way.
struct AnyElectronicAddress {
    static constexpr auto recordName = recordNameOf<AnyElectronicAddress>;
    static constexpr auto entityName = entityNameOf<AnyElectronicAddress>;
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
    ElectronicAddressKind kind{};
    /// What the user calls it: "Work", "Home".
    std::optional<AnyLabel> label{};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// The network of a social profile.
    std::optional<std::string> serviceName{};

    [[nodiscard]] const ObjectID<AnyElectronicAddress>& objectID() const noexcept { return electronicAddressID.get(); }
    [[nodiscard]] const ObjectID<AnyElectronicAddress>& id() const noexcept { return electronicAddressID.get(); }

    [[nodiscard]] static AnyElectronicAddress from(const EmailAddress& address);
    [[nodiscard]] static AnyElectronicAddress from(const URLAddress& address);
    [[nodiscard]] static AnyElectronicAddress from(const SocialProfile& profile);
    [[nodiscard]] std::optional<EmailAddress> email() const;
    [[nodiscard]] std::optional<URLAddress> url() const;
    [[nodiscard]] std::optional<SocialProfile> socialProfile() const;

    friend bool operator==(const AnyElectronicAddress&, const AnyElectronicAddress&) = default;
};
extern template struct Codec<AnyElectronicAddress>;

}  // namespace kestrel
