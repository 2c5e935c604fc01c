#include <fmt/format.h>
#include <host/people/file_text.h>
#include <host/people/geo_text.h>
#include <host/people/icalendar_reader.h>
#include <host/people/library_objects.h>
#include <kestrel/foundation/calendar.h>
#include <libical/ical.h>

#include <algorithm>
#include <charconv>
#include <map>
#include <set>
#include <string_view>
#include <tuple>
#include <utility>

namespace kestrel::host {
namespace {

/// The parameter by which a property tells its line.
constexpr const char* lineParameter = "X-KESTREL-LINE";

/// A property with its continuation lines joined, and the line on which it starts.
struct ContentLine {
    std::size_t number{};
    std::string text{};

    [[nodiscard]] std::string_view name() const { return std::string_view(text).substr(0, text.find_first_of(":;")); }
    /// What stands behind the last colon: the value of a property whose values have none.
    [[nodiscard]] std::string_view plainValue() const {
        return trimmed(std::string_view(text).substr(text.rfind(':') + 1));
    }
    [[nodiscard]] bool isCalled(std::string_view wanted) const { return isSameWord(name(), wanted); }
};

/// A component that has begun: its own properties, and for a time zone also those of its parts.
struct OpenComponent {
    std::string name{};
    std::size_t line{};
    std::vector<ContentLine> lines{};
};

std::optional<EntryKind> entryKindOf(std::string_view component) {
    if (component == "VEVENT") return EntryKind::event;
    if (component == "VTODO") return EntryKind::toDo;
    if (component == "VJOURNAL") return EntryKind::journal;
    return std::nullopt;
}

std::string_view nounOf(EntryKind kind) {
    return kind == EntryKind::event ? "event" : kind == EntryKind::toDo ? "to-do" : "journal entry";
}

using Component = Owned<icalcomponent, icalcomponent_free>;
void freeZone(icaltimezone* zone) {
    icaltimezone_free(zone, 1);
}
using Zone = Owned<icaltimezone, freeZone>;

/// The library's form of a component, each property with its line.
Component parsed(std::string_view name, const std::vector<ContentLine>& lines, bool marksLines) {
    std::string text = fmt::format("BEGIN:{}\r\n", name);
    for (const ContentLine& line : lines) {
        const std::size_t nameLength = line.name().size();
        const bool isMarked = marksLines && nameLength > 0 && nameLength < line.text.size();
        text += isMarked ? fmt::format("{};{}={}{}\r\n", line.name(), lineParameter, line.number,
                                       std::string_view(line.text).substr(nameLength))
                         : line.text + "\r\n";
    }
    text += fmt::format("END:{}\r\n", name);
    return Component(icalparser_parse_string(text.c_str()));
}

std::string parameterOf(icalproperty* property, const char* name) {
    const char* const text = icalproperty_get_parameter_as_string(property, name);
    if (text == nullptr) return {};
    std::string_view plain = text;
    if (plain.size() > 1 && plain.starts_with('"') && plain.ends_with('"')) plain = plain.substr(1, plain.size() - 2);
    return inUTF8(plain);
}

std::string valueOf(icalproperty* property) {
    const icalvalue* const value = icalproperty_get_value(property);
    if (value == nullptr) return {};
    const bool isText = icalvalue_isa(value) == ICAL_TEXT_VALUE;
    const char* const text = isText ? icalvalue_get_text(value) : icalproperty_get_value_as_string(property);
    return text == nullptr ? std::string() : withLineFeeds(inUTF8(text));
}

std::string withoutMailto(std::string_view text) {
    constexpr std::string_view scheme = "mailto:";
    text = trimmed(text);
    return std::string(startsWithWord(text, scheme) ? trimmed(text.substr(scheme.size())) : text);
}

/// The name that the time-zone database has for a zone that a file calls like that; empty when it has none.
std::string databaseName(std::string_view name) {
    std::string slashed(name);
    std::ranges::replace(slashed, '-', '/');
    std::vector<std::string> candidates{std::string(name)};
    // Names such as "/example.org/2005/Europe/Berlin" end in that of the database.
    for (auto slash = name.find('/'); slash != name.npos; slash = name.find('/', slash + 1))
        candidates.emplace_back(name.substr(slash + 1));
    candidates.push_back(slashed);
    for (const std::string& candidate : candidates) {
        if (!candidate.empty() && candidate.front() != '/' && Calendar::inZone(candidate)) return candidate;
    }
    return {};
}

/// The time zones that the times of one calendar are in.
class ZoneTable {
  public:
    struct Known {
        icaltimezone* zone{};
        /// Of the time-zone database; empty when it has none.
        std::string name{};
    };

    /// Takes a zone that the file defines. Why it cannot, if it cannot.
    std::string define(const OpenComponent& component) {
        std::string id;
        std::string location;
        for (const ContentLine& line : component.lines) {
            if (line.isCalled("TZID") && id.empty()) id = line.plainValue();
            if (line.isCalled("X-LIC-LOCATION")) location = line.plainValue();
            // Zones change once or twice a year. The library works all changes out beforehand, which would take as long
            // as a rule wishes.
            const bool isRule = line.isCalled("RRULE");
            if (isRule &&
                (!inUpperCase(line.text).contains("FREQ=YEARLY") || inUpperCase(line.text).contains("INTERVAL")))
                return "the time zone does not change yearly";
        }
        if (id.empty()) return "the time zone has no TZID";
        Component parsedComponent = parsed("VTIMEZONE", component.lines, false);
        Zone zone(icaltimezone_new());
        if (!parsedComponent || icalcomponent_isa(parsedComponent.get()) != ICAL_VTIMEZONE_COMPONENT ||
            icaltimezone_set_component(zone.get(), parsedComponent.get()) == 0) {
            return "the time zone cannot be read";
        }
        std::ignore = parsedComponent.release();
        std::string name = databaseName(location.empty() ? id : location);
        known_[id] = {.zone = zone.get(), .name = std::move(name)};
        zones_.push_back(std::move(zone));
        return {};
    }

    /// Makes a zone of the time-zone database that of times that name none; whether there is such a zone.
    bool setDefault(std::string_view name) {
        const Known* zone = find(std::string(name));
        if (zone != nullptr) default_ = *zone;
        return zone != nullptr;
    }

    /// The zone that a file calls like that; null when it is not known.
    const Known* find(const std::string& id) {
        if (const auto found = known_.find(id); found != known_.end()) return &found->second;
        const std::string name = databaseName(id);
        if (name.empty()) return nullptr;
        icaltimezone* const zone = builtIn(name);
        return zone == nullptr ? nullptr : &(known_[id] = {.zone = zone, .name = name});
    }
    [[nodiscard]] const Known& utc() const { return utc_; }
    [[nodiscard]] const Known& floating() const { return default_; }

  private:
    static icaltimezone* builtIn(const std::string& name) {
        if (name == "UTC" || name == "Etc/UTC") return icaltimezone_get_utc_timezone();
        return icaltimezone_get_builtin_timezone(name.c_str());
    }
    static Known ofUser() {
        const std::string name(Calendar::current().timeZoneName());
        icaltimezone* const zone = builtIn(name);
        return zone != nullptr ? Known{.zone = zone, .name = name}
                               : Known{.zone = icaltimezone_get_utc_timezone(), .name = "UTC"};
    }

    std::map<std::string, Known> known_;
    std::vector<Zone> zones_;
    Known utc_{.zone = icaltimezone_get_utc_timezone(), .name = "UTC"};
    Known default_ = ofUser();
};

/// A time of a file with the zone it is in.
struct ZonedTime {
    icaltimetype time{};
    ZoneTable::Known zone{};

    [[nodiscard]] Date date() const {
        // Seconds since 1970.
        return Date::since1970(static_cast<double>(icaltime_as_timet_with_zone(time, zone.zone)));
    }
};

/// Makes an entry of a component.
class EntryBuilder {
  public:
    EntryBuilder(EntryKind kind, FilePlace place, const OpenComponent& component, std::string_view method,
                 ZoneTable& zones, ImportProblems& problems)
        : component_(component), method_(method), zones_(zones), problems_(problems) {
        entry_.kind = kind;
        entry_.place = std::move(place);
    }

    /// Absent, and refused, when it says too little.
    std::optional<CalendarEntry> build() {
        std::string digested;
        for (const ContentLine& line : component_.lines)
            digested.append(line.text).append("\n");
        entry_.digest = digestOf(digested);
        const Component parsedComponent = parsed(component_.name, component_.lines, true);
        std::set<std::size_t> seen;
        if (parsedComponent) {
            forEachProperty(parsedComponent.get(), [&](icalproperty* property, std::size_t line) {
                seen.insert(line);
                if (icalproperty_isa(property) != ICAL_DTSTART_PROPERTY) return;
                if (start_) {
                    warnUnusable(property, line, "is a second start");
                } else {
                    start_ = timeOf(property, line);
                }
            });
            forEachProperty(parsedComponent.get(),
                            [&](icalproperty* property, std::size_t line) { take(property, line); });
        }
        for (const ContentLine& line : component_.lines) {
            if (!seen.contains(line.number)) warnUnread(line);
        }
        finishTimes();
        return isUsable() ? std::optional(std::move(entry_)) : std::nullopt;
    }

  private:
    template <class Visitor>
    static void forEachProperty(icalcomponent* component, Visitor&& visit) {
        for (icalproperty* property = icalcomponent_get_first_property(component, ICAL_ANY_PROPERTY);
             property != nullptr; property = icalcomponent_get_next_property(component, ICAL_ANY_PROPERTY)) {
            const std::string number = parameterOf(property, lineParameter);
            std::size_t line = 0;
            std::from_chars(number.data(), number.data() + number.size(), line);
            if (line != 0) visit(property, line);
        }
    }

    void warn(std::size_t line, std::string message) { problems_.warn(entry_.place.at(line), std::move(message)); }
    void warnUnread(const ContentLine& line) {
        constexpr std::size_t longest = 40;
        if (trimmed(line.text).empty()) return;
        const std::string_view value = std::string_view(line.text).substr(line.name().size());
        // An empty value says nothing that could be lost.
        if (value == ":") return;
        const std::string start = line.text.substr(0, longest) + (line.text.size() > longest ? "..." : "");
        warn(line.number, fmt::format("\"{}\" cannot be read as a property; left out", start));
    }
    void warnUnusable(icalproperty* property, std::size_t line, std::string_view reason) {
        warn(line, fmt::format("{} \"{}\" {}; left out", icalproperty_get_property_name(property), valueOf(property),
                               reason));
    }
    [[nodiscard]] std::string_view plainValueAt(std::size_t line) const {
        const auto found = std::ranges::lower_bound(component_.lines, line, {}, &ContentLine::number);
        return found == component_.lines.end() || found->number != line ? std::string_view() : found->plainValue();
    }

    /// The time of a property; absent with a warning when there is no such time.
    std::optional<ZonedTime> timeOf(icalproperty* property, std::size_t line) {
        const std::string text = valueOf(property);
        const icaltimetype time = icaltime_from_string(text.c_str());
        const icaltimetype normal = icaltime_normalize(time);
        const bool exists = icaltime_is_valid_time(time) != 0 && icaltime_is_null_time(time) == 0 && time.year > 0 &&
                            normal.month == time.month && normal.day == time.day && normal.hour == time.hour &&
                            normal.minute == time.minute;
        if (!exists) {
            warnUnusable(property, line, "is no date");
            return std::nullopt;
        }
        if (icaltime_is_utc(time) != 0) return ZonedTime{.time = time, .zone = zones_.utc()};
        const std::string id = parameterOf(property, "TZID");
        if (id.empty()) return ZonedTime{.time = time, .zone = zones_.floating()};
        if (const ZoneTable::Known* zone = zones_.find(id); zone != nullptr)
            return ZonedTime{.time = time, .zone = *zone};
        warn(line, fmt::format("the time zone \"{}\" is not known; taken as one without a zone", id));
        return ZonedTime{.time = time, .zone = zones_.floating()};
    }
    std::optional<Date> dateOf(icalproperty* property, std::size_t line) {
        const auto time = timeOf(property, line);
        return time ? std::optional(time->date()) : std::nullopt;
    }
    /// The date of an occurrence of the series. One that is given by its day only is on the hour of the series.
    std::optional<Date> occurrenceOf(icalproperty* property, std::size_t line) {
        auto time = timeOf(property, line);
        if (!time) return std::nullopt;
        if (time->time.is_date != 0 && start_ && start_->time.is_date == 0) {
            const icaltimetype day = time->time;
            *time = *start_;
            time->time.year = day.year;
            time->time.month = day.month;
            time->time.day = day.day;
        }
        return time->date();
    }
    std::optional<std::int64_t> numberOf(icalproperty* property, std::size_t line, std::int64_t most) {
        const std::string_view digits = plainValueAt(line);
        std::int64_t number = 0;
        const auto [stop, problem] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
        if (problem == std::errc() && stop == digits.data() + digits.size() && number >= 0 && number <= most)
            return number;
        warn(line, fmt::format("{} \"{}\" is no number from 0 to {}; left out",
                               icalproperty_get_property_name(property), digits, most));
        return std::nullopt;
    }

    void take(icalproperty* property, std::size_t line) {
        switch (icalproperty_isa(property)) {
            case ICAL_UID_PROPERTY: entry_.uid = trimmed(valueOf(property)); break;
            case ICAL_SUMMARY_PROPERTY: entry_.summary = trimmed(valueOf(property)); break;
            case ICAL_DESCRIPTION_PROPERTY: addDescription(valueOf(property)); break;
            case ICAL_LOCATION_PROPERTY: entry_.location = trimmed(valueOf(property)); break;
            case ICAL_URL_PROPERTY: entry_.url = trimmed(valueOf(property)); break;
            case ICAL_CATEGORIES_PROPERTY: addCategory(valueOf(property)); break;
            case ICAL_GEO_PROPERTY: takePosition(property, line); break;
            case ICAL_DTEND_PROPERTY:
            case ICAL_DUE_PROPERTY: end_ = timeOf(property, line); break;
            case ICAL_DURATION_PROPERTY: takeDuration(property, line); break;
            case ICAL_COMPLETED_PROPERTY: entry_.completed = dateOf(property, line); break;
            case ICAL_CREATED_PROPERTY: entry_.created = dateOf(property, line); break;
            case ICAL_LASTMODIFIED_PROPERTY: entry_.modified = dateOf(property, line); break;
            case ICAL_DTSTAMP_PROPERTY: entry_.stamped = dateOf(property, line); break;
            case ICAL_RECURRENCEID_PROPERTY: takeRecurrenceID(property, line); break;
            case ICAL_SEQUENCE_PROPERTY: entry_.sequence = numberOf(property, line, INT32_MAX).value_or(0); break;
            case ICAL_PRIORITY_PROPERTY: entry_.priority = numberOf(property, line, 9).value_or(0); break;
            case ICAL_PERCENTCOMPLETE_PROPERTY:
                entry_.percentComplete = numberOf(property, line, 100).value_or(0);
                break;
            case ICAL_STATUS_PROPERTY: takeStatus(property, line); break;
            case ICAL_TRANSP_PROPERTY: entry_.isBusy = !isSameWord(plainValueAt(line), "TRANSPARENT"); break;
            case ICAL_RRULE_PROPERTY: takeRule(property, line); break;
            case ICAL_RDATE_PROPERTY:
            case ICAL_EXRULE_PROPERTY: addRuleText(property); break;
            case ICAL_EXDATE_PROPERTY: addException(property, line); break;
            case ICAL_ATTENDEE_PROPERTY: addAttendee(property); break;
            case ICAL_ORGANIZER_PROPERTY: entry_.organizer = withoutMailto(valueOf(property)); break;
            default: break;
        }
    }

    void addDescription(const std::string& text) {
        if (trimmed(text).empty()) return;
        if (!entry_.description.empty()) entry_.description += "\n\n";
        entry_.description += trimmed(text);
    }
    void addCategory(const std::string& text) {
        std::string category(trimmed(text));
        if (!category.empty() && std::ranges::find(entry_.categories, category) == entry_.categories.end())
            entry_.categories.push_back(std::move(category));
    }
    void takePosition(icalproperty* property, std::size_t line) {
        entry_.position = positionOf(plainValueAt(line));
        if (!entry_.position) warnUnusable(property, line, "is no position");
    }
    void takeDuration(icalproperty* property, std::size_t line) {
        constexpr int longest = 366 * 24 * 60 * 60;
        const icaldurationtype duration = icalproperty_get_duration(property);
        const std::string digits(plainValueAt(line));
        constexpr std::size_t mostDigits = 16;
        const int seconds = digits.size() > mostDigits ? longest + 1 : icaldurationtype_as_int(duration);
        if (icaldurationtype_is_bad_duration(duration) != 0 || seconds < 0 || seconds > longest) {
            warnUnusable(property, line, "is no duration of up to a year");
            return;
        }
        duration_ = duration;
    }
    void takeRecurrenceID(icalproperty* property, std::size_t line) {
        entry_.recurrenceID = occurrenceOf(property, line);
        if (!parameterOf(property, "RANGE").empty())
            warn(line, "RECURRENCE-ID has a RANGE; taken for the one occurrence only");
    }
    void takeStatus(icalproperty* property, std::size_t line) {
        static const std::set<std::string, std::less<>> known{"TENTATIVE", "CONFIRMED",  "CANCELLED", "NEEDS-ACTION",
                                                              "COMPLETED", "IN-PROCESS", "DRAFT",     "FINAL"};
        const std::string word = inUpperCase(plainValueAt(line));
        if (known.contains(word)) {
            entry_.status = word;
        } else {
            warnUnusable(property, line, "is no status");
        }
    }
    void addException(icalproperty* property, std::size_t line) {
        if (const auto date = occurrenceOf(property, line)) entry_.exceptions.push_back(*date);
    }
    void addAttendee(icalproperty* property) {
        CalendarEntry::Attendee attendee{.address = withoutMailto(valueOf(property)),
                                         .name = parameterOf(property, "CN"),
                                         .role = inUpperCase(parameterOf(property, "ROLE")),
                                         .participation = inUpperCase(parameterOf(property, "PARTSTAT")),
                                         .type = inUpperCase(parameterOf(property, "CUTYPE"))};
        if (attendee.address.empty() && attendee.name.empty()) return;
        const bool isNew = attendeeAddresses_.insert(inLowerCase(attendee.address)).second;
        if (isNew) entry_.attendees.push_back(std::move(attendee));
    }

    void addRuleText(icalproperty* property) {
        icalproperty_remove_parameter_by_name(property, lineParameter);
        std::string text = icalproperty_as_ical_string(property);
        std::string unfolded;
        for (const TextLine& line : linesOf(text))
            unfolded += line.isContinuation() ? line.text.substr(1) : line.text;
        ruleTexts_.push_back(inUTF8(unfolded));
    }
    void takeRule(icalproperty* property, std::size_t line) {
        static const std::map<std::string_view, Repetition::Frequency> frequencies{
            {"DAILY", Repetition::Frequency::daily},       {"WEEKLY", Repetition::Frequency::weekly},
            {"MONTHLY", Repetition::Frequency::monthly},   {"YEARLY", Repetition::Frequency::yearly},
            {"HOURLY", Repetition::Frequency::hourly},     {"MINUTELY", Repetition::Frequency::minutely},
            {"SECONDLY", Repetition::Frequency::secondly},
        };
        if (entry_.repetition) {
            addRuleText(property);
            return;
        }
        Repetition rule{.interval = 1};
        std::string others;
        const std::string text = valueOf(property);
        for (const std::string_view part : split(text, ';')) {
            const auto equals = part.find('=');
            if (equals == part.npos) continue;
            const std::string_view key = part.substr(0, equals);
            const std::string_view value = part.substr(equals + 1);
            std::int64_t number = 0;
            const auto [stop, problem] = std::from_chars(value.data(), value.data() + value.size(), number);
            const bool isNumber = problem == std::errc() && stop == value.data() + value.size();
            if (key == "FREQ" && frequencies.contains(value)) {
                rule.frequency = frequencies.at(value);
            } else if (key == "INTERVAL" && isNumber) {
                rule.interval = number;
            } else if (key == "COUNT" && isNumber) {
                rule.count = number;
            } else if (key == "UNTIL") {
                rule.until = untilOf(std::string(value));
                if (!rule.until) warnUnusable(property, line, "ends on no date");
            } else if (key == "BYDAY") {
                rule.byDays = value;
            } else if (key == "BYMONTHDAY") {
                rule.byMonthDays = value;
            } else if (key == "BYMONTH") {
                rule.byMonths = value;
            } else if (key == "BYSETPOS" && isNumber) {
                rule.nthDay = number;
            } else {
                others.append(";").append(part);
            }
        }
        rule.byDays += others;
        entry_.repetition = std::move(rule);
    }
    std::optional<Date> untilOf(const std::string& text) {
        icaltimetype time = icaltime_from_string(text.c_str());
        if (icaltime_is_valid_time(time) == 0 || icaltime_is_null_time(time) != 0) return std::nullopt;
        const bool isDay = time.is_date != 0 && start_ && start_->time.is_date == 0;
        if (isDay) {
            time.is_date = 0;
            time.hour = 23;
            time.minute = 59;
            time.second = 59;
        }
        const bool isUTC = icaltime_is_utc(time) != 0;
        return ZonedTime{.time = time, .zone = isUTC ? zones_.utc() : start_ ? start_->zone : zones_.floating()}.date();
    }

    void finishTimes() {
        if (!ruleTexts_.empty()) {
            if (!entry_.repetition) entry_.repetition = Repetition{};
            for (const std::string& text : ruleTexts_)
                entry_.repetition->byDays += "\n" + text;
        }
        if (start_) {
            entry_.start = start_->date();
            entry_.isAllDay = start_->time.is_date != 0;
            entry_.timeZoneName = start_->zone.name;
        } else if (end_) {
            entry_.timeZoneName = end_->zone.name;
        }
        const bool isEvent = entry_.kind == EntryKind::event;
        if (!end_ && start_ && duration_) {
            end_ = ZonedTime{.time = icaltime_add(start_->time, *duration_), .zone = start_->zone};
        } else if (!end_ && start_ && isEvent) {
            end_ = start_;
        }
        // Some programs let a whole day end where it starts.
        const bool isEmptyDay = isEvent && entry_.isAllDay && end_ && icaltime_compare(end_->time, start_->time) == 0;
        if (isEmptyDay) icaltime_adjust(&end_->time, 1, 0, 0, 0);
        if (end_) entry_.end = end_->date();
        if (isEvent && entry_.start && entry_.end && *entry_.end < *entry_.start) {
            problems_.warn(entry_.place, "the event ends before it starts; taken as ending where it starts");
            entry_.end = entry_.start;
        }
        if (method_ == "CANCEL") entry_.status = "CANCELLED";
    }

    bool isUsable() {
        const bool says = !entry_.summary.empty() || !entry_.description.empty() || entry_.start;
        if (entry_.kind == EntryKind::event ? entry_.start.has_value() : says || entry_.end) return true;
        const auto start =
            std::ranges::find_if(component_.lines, [](const auto& line) { return line.isCalled("DTSTART"); });
        const bool isBroken = entry_.kind == EntryKind::event && start != component_.lines.end();
        problems_.refuse(entry_.kind, isBroken ? entry_.place.at(start->number) : entry_.place,
                         isBroken ? "the event has no usable DTSTART"
                         : entry_.kind == EntryKind::event
                             ? "the event has no DTSTART"
                             : fmt::format("the {} says neither what nor when", nounOf(entry_.kind)));
        return false;
    }

    const OpenComponent& component_;
    std::string_view method_;
    ZoneTable& zones_;
    ImportProblems& problems_;
    CalendarEntry entry_;
    std::optional<ZonedTime> start_;
    std::optional<ZonedTime> end_;
    std::optional<icaldurationtype> duration_;
    std::vector<std::string> ruleTexts_;
    /// In lower case.
    std::set<std::string> attendeeAddresses_;
};

/// Frames a file into components: their ends are looked for here, so that a broken one spoils no other.
class CalendarFramer {
  public:
    CalendarFramer(const std::string& file, std::string_view text, ImportProblems& problems,
                   std::vector<CalendarEntry>& entries, std::array<std::size_t, entryKindCount>& found)
        : place_{.file = file},
          lines_(linesOf(text)),
          problems_(problems),
          entries_(entries),
          found_(found),
          foreign_(problems, place_, {"line is", "lines are", "not UTF-8; taken as Windows-1252"}),
          outside_(problems, place_, {"part stands", "parts stand", "outside of a calendar; left out"}) {}

    void frame() {
        while (next_ < lines_.size()) {
            const TextLine& line = lines_[next_];
            // Within a component white space in front continues a property.
            const std::string_view text = open_.empty() ? trimmed(line.text) : line.text;
            if (const std::string begun = begunBy(text); !begun.empty()) {
                if (open_.empty()) unindentLike(lines_, next_);
                ++next_;
                begin(begun, line.number);
            } else if (const std::string ended = endedBy(text); !ended.empty()) {
                ++next_;
                end(ended, line.number);
            } else if (trimmed(line.text).empty()) {
                ++next_;
            } else {
                addLine();
            }
        }
        const bool isCalendarOpen = !open_.empty() && open_.front().name == "VCALENDAR";
        if (isCalendarOpen) problems_.warn(place_.at(open_.front().line), "the calendar is never ended");
        closeDownTo(0, "is never ended");
        finishCalendar();
        if (!hasBegun_ && !hasRefusedOutside_) refuseFile();
        foreign_.finish();
        outside_.finish();
    }

  private:
    void begin(const std::string& name, std::size_t line) {
        const auto kind = entryKindOf(name);
        if (kind) ++found_[static_cast<std::size_t>(*kind)];
        hasBegun_ |= kind || name == "VCALENDAR" || name == "VTIMEZONE";
        const auto openEntry =
            std::ranges::find_if(open_, [](const OpenComponent& open) { return entryKindOf(open.name).has_value(); });
        const std::string reason = fmt::format("is not ended before line {}, which begins another component", line);
        if (name == "VCALENDAR" && !open_.empty()) {
            closeDownTo(0, reason);
            finishCalendar();
        } else if (kind && openEntry != open_.end()) {
            closeDownTo(static_cast<std::size_t>(openEntry - open_.begin()), reason);
        }
        if (kind && isInZone()) {
            problems_.warn(place_.at(open_[zoneDepth()].line), "the time zone " + reason + "; left out");
            closeDownTo(zoneDepth(), reason);
        }
        if (isInZone()) open_[zoneDepth()].lines.push_back({.number = line, .text = "BEGIN:" + name});
        open_.push_back({.name = name, .line = line});
    }

    void end(const std::string& name, std::size_t line) {
        std::size_t depth = open_.size();
        while (depth > 0 && open_[depth - 1].name != name)
            --depth;
        if (depth == 0) {
            problems_.warn(place_.at(line), fmt::format("ends a {} that never began", name));
            return;
        }
        closeDownTo(depth, fmt::format("is not ended before line {}, which ends the {}", line, name));
        OpenComponent ended = std::move(open_.back());
        open_.pop_back();
        if (isInZone()) {
            open_[zoneDepth()].lines.push_back({.number = line, .text = "END:" + name});
        } else if (name == "VCALENDAR") {
            calendar_ = std::move(ended);
            finishCalendar();
        } else if (entryKindOf(name) || name == "VTIMEZONE") {
            components_.push_back(std::move(ended));
        }
    }

    /// The place of an open time zone in the stack; the stack's size when none is open.
    [[nodiscard]] std::size_t zoneDepth() const {
        const auto zone = std::ranges::find(open_, "VTIMEZONE", &OpenComponent::name);
        return static_cast<std::size_t>(zone - open_.begin());
    }
    [[nodiscard]] bool isInZone() const { return zoneDepth() < open_.size(); }

    /// Refuses what has begun above a depth of the stack.
    void closeDownTo(std::size_t depth, const std::string& reason) {
        for (; open_.size() > depth; open_.pop_back()) {
            const OpenComponent& open = open_.back();
            if (open.name == "VCALENDAR") calendar_ = open;
            const auto kind = entryKindOf(open.name);
            if (kind) problems_.refuse(*kind, place_.at(open.line), fmt::format("the {} {}", nounOf(*kind), reason));
        }
    }

    /// The first such part of a file fails it; of the others it is only told.
    void refuseOutside(std::size_t line) {
        constexpr const char* reason = "stands outside of a calendar; left out";
        if (hasRefusedOutside_) {
            outside_.warn(line, reason);
        } else {
            hasRefusedOutside_ = true;
            refuseAsEvent(line, reason);
        }
    }
    void refuseFile() {
        const bool isEmpty = std::ranges::all_of(lines_, [](const auto& line) { return trimmed(line.text).empty(); });
        if (isEmpty) {
            problems_.warn(place_, "the file is empty");
        } else {
            refuseAsEvent(1, "the file has no calendar");
        }
    }
    void refuseAsEvent(std::size_t line, std::string reason) {
        ++found_[static_cast<std::size_t>(EntryKind::event)];
        problems_.refuse(EntryKind::event, place_.at(line), std::move(reason));
    }

    void addLine() {
        const std::size_t first = next_++;
        ContentLine content{.number = lines_[first].number, .text = std::string(lines_[first].text)};
        for (; next_ < lines_.size() && lines_[next_].isContinuation(); ++next_)
            content.text += lines_[next_].text.substr(1);
        std::string plain = inUTF8(content.text);
        if (open_.empty()) {
            if (!isOutside_) refuseOutside(content.number);
            isOutside_ = true;
            return;
        }
        isOutside_ = false;
        if (plain != content.text) foreign_.warn(content.number, "is not UTF-8; taken as Windows-1252");
        content.text = std::move(plain);
        // A line that continues none, and an end without a beginning, would spoil the lines around them.
        if (lines_[first].isContinuation() || content.isCalled("BEGIN") || content.isCalled("END")) {
            problems_.warn(place_.at(content.number), "cannot be read as a property; left out");
            return;
        }
        open_[isInZone() ? zoneDepth() : open_.size() - 1].lines.push_back(std::move(content));
    }

    /// Makes entries of the components of a calendar, in their order.
    void finishCalendar() {
        ZoneTable zones;
        std::string method;
        for (const ContentLine& line : calendar_.lines) {
            if (line.isCalled("METHOD")) method = inUpperCase(line.plainValue());
            if (line.isCalled("X-WR-TIMEZONE") && !zones.setDefault(line.plainValue())) {
                problems_.warn(place_.at(line.number),
                               fmt::format("the time zone \"{}\" is not known; left out", line.plainValue()));
            }
        }
        for (const OpenComponent& component : components_) {
            if (component.name != "VTIMEZONE") continue;
            if (const std::string problem = zones.define(component); !problem.empty())
                problems_.warn(place_.at(component.line), problem + "; left out");
        }
        for (const OpenComponent& component : components_) {
            const auto kind = entryKindOf(component.name);
            if (!kind) continue;
            EntryBuilder builder(*kind, place_.at(component.line), component, method, zones, problems_);
            if (auto entry = builder.build()) entries_.push_back(*std::move(entry));
        }
        components_.clear();
        calendar_ = {};
    }

    FilePlace place_;
    std::vector<TextLine> lines_;
    ImportProblems& problems_;
    std::vector<CalendarEntry>& entries_;
    std::array<std::size_t, entryKindCount>& found_;
    RepeatedWarning foreign_;
    RepeatedWarning outside_;
    std::size_t next_ = 0;
    bool hasBegun_ = false;
    bool isOutside_ = false;
    bool hasRefusedOutside_ = false;
    /// A component, the one that has begun in it, and so on.
    std::vector<OpenComponent> open_;
    /// The calendar's own properties, and the components that have ended in it.
    OpenComponent calendar_;
    std::vector<OpenComponent> components_;
};

}  // namespace

void ICalendarReader::read(const std::string& file, std::string bytes) {
    // Properties that cannot be parsed are looked after here.
    icalerror_set_errors_are_fatal(0);
    const std::string text = plainBytes(std::move(bytes));
    CalendarFramer(file, text, *problems_, entries_, found_).frame();
}

}  // namespace kestrel::host
