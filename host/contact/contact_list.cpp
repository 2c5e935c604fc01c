#include <fmt/format.h>
#include <host/contact/contact_list.h>
#include <host/contact/contact_names.h>
#include <host/contact/contact_query.h>
#include <host/terminal/coded_json.h>
#include <host/terminal/json_object.h>
#include <host/terminal/table.h>
#include <host/terminal/text.h>
#include <kestrel/relationships/contact_role.h>

#include <algorithm>
#include <tuple>
#include <unordered_set>
#include <utility>

namespace kestrel::host {
namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

std::string digitsOf(std::string_view text) {
    std::string digits;
    std::ranges::copy_if(text, std::back_inserter(digits), isDigit);
    return digits;
}

/// The digits of a text that looks like a phone number; empty for any other text.
std::string phoneDigits(std::string_view text) {
    constexpr std::string_view between = " +-()/.";
    const bool isNumber = std::ranges::all_of(text, [&](char c) { return isDigit(c) || between.contains(c); });
    return isNumber ? digitsOf(text) : "";
}

/// Finds contacts by a text.
class Search {
  public:
    Search(ReadableRecords& records, std::string_view text) : folded_(foldedCase(text)), digits_(phoneDigits(text)) {
        records.forEach<Company>([&](const Company& company) {
            if (company.name && foldedCase(*company.name).contains(folded_)) companies_.push_back(company.objectID());
        });
        for (const auto& company : companies_) {
            for (const auto& roleID : records.links().linked<AnyRole>(LinkKind::destination, company)) {
                if (!records.find(roleID)) continue;
                if (const auto contact = records.links().target<Contact>(roleID, LinkKind::source)) {
                    people_.insert(contact->value().value());
                }
            }
        }
    }

    [[nodiscard]] bool finds(const Contact& contact) const {
        if (people_.contains(contact.objectID().value().value())) return true;
        const auto has = [&](const std::string& text) { return text.contains(folded_); };
        if (std::ranges::any_of(foldedNames(contact.name()), has)) return true;
        const auto hasEmail = [&](const AnyElectronicAddress& address) {
            return address.kind == ElectronicAddressKind::email && !address.deletionDate && address.address &&
                   has(foldedCase(*address.address));
        };
        if (std::ranges::any_of(contact.electronicAddresses, hasEmail)) return true;
        if (digits_.empty()) return false;
        return std::ranges::any_of(contact.phones, [&](const Phone& phone) {
            return !phone.deletionDate && phone.number && digitsOf(*phone.number).contains(digits_);
        });
    }

  private:
    std::string folded_;
    /// Empty when the text is no phone number.
    std::string digits_;
    std::vector<ObjectID<Company>> companies_;
    /// The keys of the contacts with a role at one of them.
    std::unordered_set<std::int64_t> people_;
};

/// A row with what it is sorted by.
struct Candidate {
    ContactRow row;
    std::string family;
    std::string given;
};

Candidate candidateOf(const Contact& contact) {
    Candidate candidate{.row = {.id = contact.objectID(), .name = contact.name()}, .family = "", .given = ""};
    const Name& name = candidate.row.name;
    candidate.family = foldedCase(name.last.value_or(""));
    candidate.given = foldedCase(name.first.value_or(""));
    if (candidate.family.empty()) candidate.family = std::exchange(candidate.given, "");
    if (candidate.family.empty())
        candidate.family = foldedCase(textIn(name.nickname).value_or(name.alias.value_or("")));
    if (const auto address = contact.defaultEmailAddress()) candidate.row.emailAddress = textIn(address->address);
    if (const auto phone = contact.defaultPhone()) candidate.row.phone = textIn(phone->number);
    return candidate;
}

bool isBefore(const Candidate& a, const Candidate& b) {
    const auto key = [](const Candidate& one) { return std::tie(one.family, one.given); };
    if (a.family.empty() != b.family.empty()) return b.family.empty();
    return key(a) != key(b) ? key(a) < key(b) : a.row.id < b.row.id;
}

/// The company of a contact's default role.
std::optional<std::string> defaultCompany(ReadableRecords& records, const ObjectID<Contact>& id) {
    std::vector<ContactRole> roles;
    for (const auto& roleID : records.links().linked<AnyRole>(LinkKind::source, id)) {
        if (auto role = records.find(roleID)) roles.push_back(contactRoleOf(records, *std::move(role)));
    }
    const ContactRole* role = Contact::defaultRole(roles);
    return role != nullptr && role->company() != nullptr ? textIn(role->company()->name) : std::nullopt;
}

}  // namespace

ContactList contactList(ReadableRecords& records, const ContactListQuery& query) {
    std::optional<Search> searched;
    if (query.search) searched.emplace(records, *query.search);
    std::vector<Candidate> candidates;
    records.forEach<Contact>([&](const Contact& contact) {
        if (!searched || searched->finds(contact)) candidates.push_back(candidateOf(contact));
    });
    ContactList list{.rows = {}, .total = candidates.size()};
    const std::size_t count = query.limit == 0 ? candidates.size() : std::min(query.limit, candidates.size());
    const auto end = candidates.begin() + static_cast<std::ptrdiff_t>(count);
    std::ranges::partial_sort(candidates, end, isBefore);
    for (auto candidate = candidates.begin(); candidate != end; ++candidate) {
        list.rows.push_back(std::move(candidate->row));
        list.rows.back().company = defaultCompany(records, list.rows.back().id);
    }
    return list;
}

std::string rendered(const ContactList& list, const std::optional<std::string>& search, const Terminal& terminal) {
    if (list.total == 0) {
        return search ? fmt::format("no contact matches \"{}\"\n", printable(*search)) : "there are no contacts\n";
    }
    Table table(5);
    table.add({"NAME", "IDENTIFIER", "COMPANY", "E-MAIL", "PHONE"}, boldStyle);
    for (const ContactRow& row : list.rows) {
        table.add({sortingName(row.id, row.name), row.id.stringValue(), row.company.value_or("-"),
                   row.emailAddress.value_or("-"), row.phone.value_or("-")});
    }
    std::string text = table.rendered(terminal);
    if (list.total > list.rows.size()) {
        text += fmt::format("… and {} more\n", grouped(static_cast<std::int64_t>(list.total - list.rows.size())));
    }
    return text;
}

std::string listJSON(const ContactList& list) {
    std::vector<std::string> rows;
    for (const ContactRow& row : list.rows) {
        JSONObject json;
        json.addJSON("id", coded(row.id)).add("name", sortingName(row.id, row.name));
        if (row.company) json.add("company", *row.company);
        if (row.emailAddress) json.add("emailAddress", *row.emailAddress);
        if (row.phone) json.add("phone", *row.phone);
        rows.push_back(json.json());
    }
    return JSONObject().add("total", list.total).addJSON("contacts", JSONObject::array(rows)).json();
}

}  // namespace kestrel::host
