#pragma once

#include <host/people/import_problems.h>
#include <kestrel/foundation/date.h>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kestrel::host {

/// A rule of repetition, as the records of tasks and appointments keep it: their texts and codes are the store's own,
/// and these are this host's.
///
/// `byDays` starts with the rule's list of weekdays ("MO,WE" or "2TU,-1FR"; empty without one). Every part of the rule
/// that has no field of its own follows behind a semicolon, as in "MO;WKST=SU" or ";BYHOUR=9,17". On further lines
/// stand the other properties that make the days of a series, as the file had them: further RRULE, EXRULE and RDATE.
struct Repetition {
    /// The codes of `frequency`.
    enum class Frequency : std::uint8_t {
        none = 0,
        daily = 1,
        weekly = 2,
        monthly = 3,
        yearly = 4,
        hourly = 5,
        minutely = 6,
        secondly = 7
    };

    Frequency frequency{};
    std::int64_t interval{};
    /// 0 without such an end.
    std::int64_t count{};
    /// The last moment. A rule that names a day means the end of it.
    std::optional<Date> until{};
    std::string byDays{};
    /// "1,15,-1".
    std::string byMonthDays{};
    /// "3,9".
    std::string byMonths{};
    /// Which of the days that the rule gives in each period counts, when it is one; 0 when all do.
    std::int64_t nthDay{};
};

/// An appointment, a to-do or a journal entry of an .ics file as it was read: all texts are UTF-8 with lines that end
/// in LF.
struct CalendarEntry {
    struct Attendee {
        /// Without "mailto:".
        std::string address{};
        std::string name{};
        // Words of the file in upper case, such as "OPT-PARTICIPANT", "ACCEPTED" and "ROOM"; empty when not given.
        std::string role{};
        std::string participation{};
        std::string type{};
    };

    EntryKind kind{};
    FilePlace place{};
    /// Empty when it has none.
    std::string uid{};
    /// Tells entries of other content apart.
    std::string digest{};
    /// The occurrence of its series that it stands for.
    std::optional<Date> recurrenceID{};
    std::int64_t sequence{};
    /// When this version was written.
    std::optional<Date> stamped{};
    std::optional<Date> created{};
    std::optional<Date> modified{};
    std::string summary{};
    std::string description{};
    std::string location{};
    std::string url{};
    std::vector<std::string> categories{};
    /// Latitude and longitude in degrees.
    std::optional<std::pair<double, double>> position{};
    std::optional<Date> start{};
    /// The first moment behind it; of a to-do when it is due.
    std::optional<Date> end{};
    std::optional<Date> completed{};
    bool isAllDay{};
    bool isBusy{true};
    /// Of the time-zone database; empty when the start is in a zone of the file's own making.
    std::string timeZoneName{};
    /// In upper case; empty when not given.
    std::string status{};
    std::int64_t priority{};
    std::int64_t percentComplete{};
    std::optional<Repetition> repetition{};
    /// Occurrences that are taken away.
    std::vector<Date> exceptions{};
    std::vector<Attendee> attendees{};
    /// The organiser's address, without "mailto:".
    std::string organizer{};
};

}  // namespace kestrel::host
