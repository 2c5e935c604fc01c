#include <host/people/address_uses.h>
#include <host/people/file_text.h>
#include <host/store/record_table.h>
#include <kestrel/invitations/meeting_invite.h>

#include <algorithm>

namespace kestrel::host {
namespace {

void bindRecord(SQLite::Statement& statement, const AnyObjectID& record) {
    statement.reset();
    statement.bind(1, std::string(record.entityName()));
    statement.bind(2, record.primaryKey().value());
}

void becomeInviteOfContact(RecordTable<MeetingInvite>& invites, const ObjectID<MeetingInvite>& id) {
    auto invite = invites.find(id);
    if (!invite || invite->inviteType != MeetingInviteType::external) return;
    invite->inviteType = MeetingInviteType::contact;
    invites.update(*invite);
}

}  // namespace

AddressUses::AddressUses(SQLite::Database& database)
    : database_(&database),
      addresses_(database, "SELECT address FROM \"AddressUse\" WHERE entity = ? AND id = ? ORDER BY address"),
      users_(database, "SELECT entity || '/' || id FROM \"AddressUse\" WHERE address = ? ORDER BY entity, id"),
      add_(database, "INSERT INTO \"AddressUse\"(entity, id, address) VALUES(?, ?, ?)"),
      remove_(database, "DELETE FROM \"AddressUse\" WHERE entity = ? AND id = ?") {}

void AddressUses::set(const Contact& contact) {
    std::vector<std::string> addresses;
    if (!contact.deletionDate) {
        for (const EmailAddress& address : contact.emailAddresses())
            addresses.push_back(address.address.value_or(""));
    }
    (void)set(contact.objectID(), std::move(addresses));
}

bool AddressUses::set(const AnyObjectID& record, std::vector<std::string> addresses) {
    for (std::string& address : addresses)
        address = inLowerCase(trimmed(address));
    std::erase_if(addresses, [](const std::string& address) { return !address.contains('@'); });
    std::ranges::sort(addresses);
    const auto repeated = std::ranges::unique(addresses);
    addresses.erase(repeated.begin(), repeated.end());
    if (addresses == addressesOf(record)) return false;
    changed_.insert(record);
    bindRecord(remove_, record);
    remove_.exec();
    for (const std::string& address : addresses) {
        bindRecord(add_, record);
        add_.bind(3, address);
        add_.exec();
    }
    return true;
}

std::size_t AddressUses::link(RecordLinks& links) {
    RecordTable<MeetingInvite> invites(*database_);
    std::size_t count = 0;
    const auto linkTo = [&](const AnyObjectID& record, const ObjectID<Contact>& contact) {
        const auto invite = record.as<MeetingInvite>();
        if (!links.add(record, invite ? LinkKind::contact : LinkKind::subject, contact)) return;
        ++count;
        if (invite) becomeInviteOfContact(invites, *invite);
    };
    for (const AnyObjectID& record : changed_) {
        const auto contact = record.as<Contact>();
        for (const std::string& address : addressesOf(record)) {
            for (const AnyObjectID& other : usersOf(address)) {
                const auto otherContact = other.as<Contact>();
                if (contact && !otherContact) linkTo(other, *contact);
                if (!contact && otherContact) linkTo(record, *otherContact);
            }
        }
    }
    changed_.clear();
    return count;
}

std::vector<std::string> AddressUses::addressesOf(const AnyObjectID& record) {
    bindRecord(addresses_, record);
    std::vector<std::string> addresses;
    while (addresses_.executeStep())
        addresses.emplace_back(textOf(addresses_.getColumn(0)));
    return addresses;
}

std::vector<AnyObjectID> AddressUses::usersOf(const std::string& address) {
    users_.reset();
    users_.bind(1, address);
    std::vector<AnyObjectID> users;
    while (users_.executeStep()) {
        if (const auto id = AnyObjectID::parse(textOf(users_.getColumn(0)))) users.push_back(*id);
    }
    return users;
}

}  // namespace kestrel::host
