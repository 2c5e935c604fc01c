#pragma once

#include <host/store/directory.h>
#include <kestrel/access/permission_checker.h>
#include <kestrel/identity/any_object_id.h>
#include <kestrel/lookups/user.h>
#include <kestrel/reactive/publisher.h>
#include <kestrel/records/contact.h>
#include <kestrel/records/extra_fields_namer.h>
#include <kestrel/runtime/service_protocol.h>
#include <kestrel/session/service_errors.h>
#include <string>

namespace kestrel::host {

/// A record of any type, for looking at.
struct RecordText {
    /// In keyed form.
    std::string json{};
    /// Every member, the absent ones named.
    std::string mirror{};

    friend bool operator==(const RecordText&, const RecordText&) = default;
};

/// What a user may do with a record, with the rules that decided.
struct RecordAccess {
    User user;
    /// What the record says.
    Permissions permissions{};
    AccessDecision read{};
    AccessDecision update{};
    AccessDecision deletion{};
    /// How its visibility is called.
    std::string visibility{};

    friend bool operator==(const RecordAccess&, const RecordAccess&) = default;
};

/// What this host tells of records that no protocol of the library asks for.
class RecordsService : public ServiceProtocol {
  public:
    /// Whoever looks, whatever the record's permissions, and also a deleted one: for finding out what is there.
    [[nodiscard]] virtual AnyPublisher<RecordText, ReadError> fetchRecord(const AnyObjectID& id) = 0;
    /// What the signed-in user may do with it. `unexpectedType` for records that are under no access control.
    [[nodiscard]] virtual AnyPublisher<RecordAccess, ReadError> decideAccess(const AnyObjectID& id) = 0;
    /// What the record is called, with its identifier: "Ada Lovelace (Contact/12)".
    [[nodiscard]] virtual AnyPublisher<std::string, ReadError> fetchTitle(const AnyObjectID& id) = 0;
    /// The contact that a text means, as `contactCalled` says. The locale is that of Name::localized.
    [[nodiscard]] virtual AnyPublisher<ObjectID<Contact>, ReadError> findContact(std::string text,
                                                                                 std::string locale) = 0;
    /// The names that the database gives to the extra fields of contacts.
    [[nodiscard]] virtual AnyPublisher<ExtraFieldsNamer, ReadError> fetchContactFields() = 0;
    /// The users and teams, whoever looks.
    [[nodiscard]] virtual AnyPublisher<Directory, ReadError> fetchDirectory() = 0;
    /// Who is signed in.
    [[nodiscard]] virtual AnyPublisher<User, ReadError> fetchUser() = 0;
};

/// The keys of this host's own protocols. Those of the library are in kestrel::services.
namespace host_services {
inline constexpr ServiceKey<RecordsService> records;
}

}  // namespace kestrel::host
