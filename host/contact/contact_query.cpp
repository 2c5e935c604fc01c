#include <fmt/format.h>
#include <host/contact/contact_names.h>
#include <host/contact/contact_query.h>
#include <host/store/find_record.h>
#include <host/terminal/text.h>

#include <algorithm>
#include <charconv>

namespace kestrel::host {
namespace {

/// The key that a text of nothing but digits is.
std::optional<std::int64_t> keyIn(std::string_view text) {
    std::int64_t key = 0;
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), key);
    if (problem != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return key;
}

[[noreturn]] void refuseName(std::string_view text, std::span<const std::string> names) {
    std::vector<std::string> near = nearNames(text, names);
    if (near.empty()) throw Failure(fmt::format("there is no contact \"{}\"", text));
    for (std::string& name : near)
        name = fmt::format("\"{}\"", name);
    throw Failure(fmt::format("there is no contact \"{}\"; did you mean {}?", text, fmt::join(near, " or ")));
}

/// The first record of a type among the targets of links, as far as the user may see it.
template <class Record>
std::optional<Record> firstOf(ReadableRecords& records, const std::vector<AnyObjectID>& targets) {
    for (const AnyObjectID& target : targets) {
        const auto id = target.as<Record>();
        if (!id) continue;
        if (auto record = records.find(*id)) return record;
    }
    return std::nullopt;
}

RoleDestination roleDestination(ReadableRecords& records, const ObjectID<AnyRole>& id) {
    const auto targets = records.links().targets(id, LinkKind::destination);
    if (auto company = firstOf<Company>(records, targets)) return RoleDestination::company(*std::move(company));
    if (auto deal = firstOf<Opportunity>(records, targets)) return RoleDestination::opportunity(*std::move(deal));
    if (auto project = firstOf<Project>(records, targets)) return RoleDestination::project(*std::move(project));
    return RoleDestination::missingDestination();
}

/// The far end of a relationship, which the link of a kind names.
template <class End>
End relationshipEnd(ReadableRecords& records, const ObjectID<AnyRelationship>& id, LinkKind kind, End missing) {
    const auto targets = records.links().targets(id, kind);
    if (auto contact = firstOf<Contact>(records, targets)) return End::contact(*std::move(contact));
    if (auto company = firstOf<Company>(records, targets)) return End::company(*std::move(company));
    return missing;
}

std::optional<UserContact> userOf(ReadableRecords& records, const ObjectID<Contact>& id, LinkKind kind) {
    const auto userID = records.links().target<User>(id, kind);
    if (!userID) return std::nullopt;
    auto user = records.findAny(*userID);
    if (!user) return std::nullopt;
    std::optional<Contact> contact;
    if (const auto contactID = records.links().target<Contact>(*userID, LinkKind::contact)) {
        contact = records.find(*contactID);
    }
    return UserContact::make(*std::move(user), std::move(contact));
}

}  // namespace

ObjectID<Contact> contactCalled(ReadableRecords& records, std::string_view text, std::string_view locale) {
    if (const auto key = keyIn(text)) return *key;
    const std::string prefix = std::string(Contact::entityName) + '/';
    if (text.starts_with(prefix) || AnyObjectID::parse(text)) {
        const AnyObjectID id = identifierOf(text);
        if (const auto contact = id.as<Contact>()) return *contact;
        throw WrongUsage(fmt::format("{} is no contact", id.stringValue()));
    }
    const std::string wanted = foldedCase(text);
    std::vector<ObjectID<Contact>> found;
    records.forEach<Contact>([&](const Contact& contact) {
        // Every spelling has one of these in it; most contacts are told apart by that alone.
        const auto occurs = [&](const std::optional<std::string>& part) {
            return part && !part->empty() && wanted.find(foldedCase(*part)) != std::string::npos;
        };
        const bool mayBe = occurs(contact.lastName) || occurs(contact.firstName) || occurs(contact.nickname) ||
                           occurs(contact.alias) || occurs(contact.middleName) || occurs(contact.prefix) ||
                           occurs(contact.suffix);
        if (!mayBe) return;
        const auto spellings = foldedNames(contact.name(), locale);
        if (std::ranges::find(spellings, wanted) != spellings.end()) found.push_back(contact.objectID());
    });
    if (found.size() == 1) return found.front();
    if (found.empty()) {
        std::vector<std::string> names;
        records.forEach<Contact>(
            [&](const Contact& contact) { names.push_back(shownName(contact.objectID(), contact.name(), locale)); });
        refuseName(text, names);
    }
    std::vector<std::string> identifiers;
    for (const auto& id : found)
        identifiers.push_back(id.stringValue());
    throw Failure(fmt::format("\"{}\" is the name of several contacts: {}", text, listed(identifiers)));
}

ContactRole contactRoleOf(ReadableRecords& records, AnyRole role) {
    auto destination = roleDestination(records, role.objectID());
    auto type = role.roleType.transform(RoleTypeStorage::from);
    return {std::move(role), std::move(destination), std::move(type)};
}

ContactInfo contactInfoOf(ReadableRecords& records, const ObjectID<Contact>& id) {
    Contact contact = records.required(id);
    std::vector<ContactRole> roles;
    for (const auto& roleID : records.links().linked<AnyRole>(LinkKind::source, id)) {
        if (auto role = records.find(roleID)) roles.push_back(contactRoleOf(records, *std::move(role)));
    }
    std::vector<ToRelationship> to;
    for (const auto& relationshipID : records.links().linked<AnyRelationship>(LinkKind::source, id)) {
        auto relationship = records.find(relationshipID);
        if (!relationship) continue;
        to.emplace_back(*std::move(relationship), relationshipEnd(records, relationshipID, LinkKind::destination,
                                                                  RelationshipDestination::missingDestination()));
    }
    std::vector<FromRelationship> from;
    for (const auto& relationshipID : records.links().linked<AnyRelationship>(LinkKind::destination, id)) {
        auto relationship = records.find(relationshipID);
        if (!relationship) continue;
        from.emplace_back(*std::move(relationship), relationshipEnd(records, relationshipID, LinkKind::source,
                                                                    RelationshipSource::missingSource()));
    }
    return ContactInfo::make(std::move(contact), std::move(roles), std::move(to), std::move(from),
                             userOf(records, id, LinkKind::owner), userOf(records, id, LinkKind::creator));
}

ExtraFieldsNamer contactFieldsNamer(ReadableRecords& records) {
    ExtraFieldsNamer namer = ExtraFieldsNamer::empty();
    records.forEach<ExtraFieldsNames>([&](const ExtraFieldsNames& names) {
        if (names.typeString == Contact::recordName) namer = names.namer();
    });
    return namer;
}

}  // namespace kestrel::host
