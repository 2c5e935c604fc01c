#include <host/board/deal_links.h>
#include <host/contact/contact_names.h>
#include <host/store/record_links.h>
#include <host/store/record_table.h>
#include <host/terminal/day_text.h>
#include <kestrel/relationships/any_role.h>

#include <map>
#include <set>
#include <string_view>
#include <utility>

namespace kestrel::host {
namespace {

template <class Value>
void takeEarlier(std::optional<Value>& value, const std::optional<Value>& other) {
    if (other && (!value || *other < *value)) value = other;
}

/// What comes next by the key of each record that is the subject of something to come, by the record's entity.
class UpcomingItems {
  public:
    using ByKey = std::unordered_map<std::int64_t, Upcoming>;

    UpcomingItems(SQLite::Database& database, const PermissionChecker& checker, const CalendarMoment& at)
        : database_(&database), checker_(&checker), start_(at.calendar.startOfDay(at.now)) {
        gather<Task>([](const Task& task) -> std::optional<Upcoming> {
            if (task.isClosed() || !task.dueDate) return std::nullopt;
            return Upcoming{.task = Upcoming::NextTask{.dueDate = *task.dueDate, .id = task.objectID()}};
        });
        gather<Timeblock>([&](const Timeblock& appointment) -> std::optional<Upcoming> {
            const std::optional<Date> start = shownStart(appointment, at.calendar);
            if (appointment.status == TimeblockStatus::cancelled || !start) return std::nullopt;
            return Upcoming{.appointment = Upcoming::NextAppointment{
                                .startDate = *start, .id = appointment.objectID(), .isAllDay = appointment.isAllDay}};
        });
    }

    [[nodiscard]] ByKey& of(std::string_view entity) { return bySubject_[std::string(entity)]; }

  private:
    template <class Record, class UpcomingOf>
    void gather(UpcomingOf&& upcomingOf) {
        std::unordered_map<std::int64_t, Upcoming> items;
        SQLite::Statement records(*database_,
                                  "SELECT id, record FROM \"" + std::string(entityNameOf<Record>) + "\" ORDER BY id");
        while (records.executeStep()) {
            const std::int64_t key = records.getColumn(0).getInt64();
            const auto record = decodeStored<Record>(*database_, key, textOf(records.getColumn(1)));
            if (record.deletionDate || !checker_->canRead(record)) continue;
            const std::optional<Upcoming> item = upcomingOf(record);
            if (item && dateOf(*item) >= start_) items.emplace(key, *item);
        }
        if (items.empty()) return;
        SQLite::Statement links(*database_,
                                "SELECT id, targetEntity, targetID FROM \"RecordLink\" "
                                "WHERE entity = ? AND kind = 'subject' ORDER BY id");
        links.bind(1, std::string(entityNameOf<Record>));
        while (links.executeStep()) {
            const auto item = items.find(links.getColumn(0).getInt64());
            if (item == items.end()) continue;
            bySubject_[std::string(textOf(links.getColumn(1)))][links.getColumn(2).getInt64()].merge(item->second);
        }
    }
    static Date dateOf(const Upcoming& item) { return item.task ? item.task->dueDate : item.appointment->startDate; }

    SQLite::Database* database_;
    const PermissionChecker* checker_;
    Date start_;
    std::map<std::string, ByKey> bySubject_;
};

/// The contacts that the user may read, each looked up once.
class People {
  public:
    People(SQLite::Database& database, const PermissionChecker& checker) : contacts_(database), checker_(&checker) {}

    /// The contact's name; null for one who is deleted or not to be read.
    const std::string* nameOf(std::int64_t key) {
        const auto [known, isNew] = names_.try_emplace(key);
        if (isNew) {
            const auto contact = contacts_.find(key);
            if (contact && !contact->deletionDate && checker_->canRead(*contact)) known->second = shownName(*contact);
        }
        return known->second ? &*known->second : nullptr;
    }

  private:
    RecordTable<Contact> contacts_;
    const PermissionChecker* checker_;
    std::unordered_map<std::int64_t, std::optional<std::string>> names_;
};

/// A role's ends, by their keys.
struct RoleEnds {
    std::int64_t role;
    std::int64_t contact;
    std::string destinationEntity;
    std::int64_t destination;
};

/// Calls `visit` with the ends of every role, in the order of the roles. The table's key has both links of a role
/// beside each other, the destination first.
template <class Visitor>
void forEachRole(SQLite::Database& database, Visitor&& visit) {
    SQLite::Statement links(database,
                            "SELECT id, kind, targetEntity, targetID FROM \"RecordLink\" "
                            "WHERE entity = 'Role' ORDER BY entity, id, kind, targetEntity, targetID");
    std::vector<RoleEnds> destinations;
    while (links.executeStep()) {
        const std::int64_t role = links.getColumn(0).getInt64();
        if (!destinations.empty() && destinations.front().role != role) destinations.clear();
        const std::string_view kind = textOf(links.getColumn(1));
        if (kind == caseName(LinkKind::destination)) {
            destinations.push_back({.role = role,
                                    .contact = 0,
                                    .destinationEntity = std::string(textOf(links.getColumn(2))),
                                    .destination = links.getColumn(3).getInt64()});
        } else if (kind == caseName(LinkKind::source) && textOf(links.getColumn(2)) == Contact::entityName) {
            for (RoleEnds ends : destinations) {
                ends.contact = links.getColumn(3).getInt64();
                visit(ends);
            }
        }
    }
}

}  // namespace

void Upcoming::merge(const Upcoming& other) {
    takeEarlier(task, other.task);
    takeEarlier(appointment, other.appointment);
}

DealLinks::DealLinks(SQLite::Database& database, const PermissionChecker& checker, const CalendarMoment& at,
                     std::string_view entity) {
    UpcomingItems items(database, checker, at);
    const auto ofPeople = items.of(Contact::entityName);
    ofDeals_ = std::move(items.of(entity));
    ofCompanies_ = std::move(items.of(Company::entityName));
    People people(database, checker);
    RecordTable<AnyRole> roles(database);
    std::set<std::pair<std::int64_t, std::int64_t>> named;
    forEachRole(database, [&](const RoleEnds& ends) {
        const bool isOnDeal = ends.destinationEntity == entity;
        if (!isOnDeal && ends.destinationEntity != Company::entityName) return;
        const auto next = ofPeople.find(ends.contact);
        // Nothing of the other roles shows.
        if (!isOnDeal && next == ofPeople.end()) return;
        const auto role = roles.find(ends.role);
        if (!role || role->deletionDate) return;
        const std::string* name = people.nameOf(ends.contact);
        if (name == nullptr) return;
        // Somebody with several roles is named once.
        if (isOnDeal && named.emplace(ends.destination, ends.contact).second) {
            std::string& names = people_[ends.destination];
            if (!names.empty()) names += ", ";
            names += *name;
        }
        if (next != ofPeople.end()) (isOnDeal ? ofDeals_ : ofCompanies_)[ends.destination].merge(next->second);
    });
}

std::string DealLinks::peopleOn(std::int64_t deal) const {
    const auto found = people_.find(deal);
    return found != people_.end() ? found->second : "";
}

Upcoming DealLinks::upcomingOf(std::int64_t deal, const std::vector<std::int64_t>& companies) const {
    Upcoming upcoming;
    const auto merge = [&](const ByKey& known, std::int64_t key) {
        if (known.empty()) return;
        if (const auto found = known.find(key); found != known.end()) upcoming.merge(found->second);
    };
    merge(ofDeals_, deal);
    for (const std::int64_t company : companies)
        merge(ofCompanies_, company);
    return upcoming;
}

}  // namespace kestrel::host
