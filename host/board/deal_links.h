#pragma once

#include <SQLiteCpp/Database.h>
#include <kestrel/access/permission_checker.h>
#include <kestrel/calendar/task.h>
#include <kestrel/calendar/timeblock.h>
#include <kestrel/foundation/calendar.h>
#include <kestrel/foundation/date.h>
#include <kestrel/identity/object_id.h>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kestrel::host {

/// What comes next for a record: its next task and its next appointment.
struct Upcoming {
    struct NextTask {
        Date dueDate;
        ObjectID<Task> id;
        friend bool operator==(const NextTask&, const NextTask&) = default;
        friend auto operator<=>(const NextTask&, const NextTask&) = default;
    };
    struct NextAppointment {
        /// In the calendar of whoever looks at it.
        Date startDate;
        ObjectID<Timeblock> id;
        bool isAllDay;
        friend bool operator==(const NextAppointment&, const NextAppointment&) = default;
        friend auto operator<=>(const NextAppointment&, const NextAppointment&) = default;
    };
    std::optional<NextTask> task{};
    std::optional<NextAppointment> appointment{};

    /// Takes what the other one has earlier; of the same date what has the lesser key.
    void merge(const Upcoming& other);
};

/// What is linked to the opportunities or projects of a board beyond what stands in them: the people and what comes
/// next. All of it is gathered at once, in one pass over the links and without a query for each card; where there are
/// neither people nor anything to come, that costs next to nothing.
///
/// Tasks count that are neither done nor cancelled and due on the day of the moment or later, and appointments that are
/// not cancelled and start then. What is deleted or not to be read by the user does not count, nor do such people.
class DealLinks {
  public:
    /// `entity` is that of the deals: opportunities or projects.
    DealLinks(SQLite::Database& database, const PermissionChecker& checker, const CalendarMoment& at,
              std::string_view entity);

    /// The names of the contacts with a role on the deal, in the order of the roles, ready to show.
    [[nodiscard]] std::string peopleOn(std::int64_t deal) const;
    /// What comes next for the deal, for its companies, and for the people with a role on the one or at the others.
    [[nodiscard]] Upcoming upcomingOf(std::int64_t deal, const std::vector<std::int64_t>& companies) const;

  private:
    using ByKey = std::unordered_map<std::int64_t, Upcoming>;

    ByKey ofDeals_;
    ByKey ofCompanies_;
    std::unordered_map<std::int64_t, std::string> people_;
};

}  // namespace kestrel::host
