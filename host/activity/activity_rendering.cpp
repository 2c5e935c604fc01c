#include <fmt/format.h>
#include <host/activity/activity_rendering.h>
#include <host/contact/contact_names.h>
#include <host/terminal/coded_json.h>
#include <host/terminal/day_text.h>
#include <host/terminal/html_text.h>
#include <host/terminal/json_object.h>
#include <host/terminal/table.h>
#include <host/terminal/text.h>

#include <algorithm>
#include <functional>
#include <map>
#include <string_view>
#include <vector>

namespace kestrel::host {
namespace {

/// The word for a status: "in progress".
std::string statusText(TaskStatus status) {
    std::string text = inKebabCase(caseName(status));
    std::ranges::replace(text, '-', ' ');
    return text;
}

/// What a list shows of an item.
struct ItemText {
    std::string_view kind;
    std::string title;
    /// Further facts, in the order of their weight.
    std::vector<std::string> facts{};
};

class ItemDescriber {
  public:
    explicit ItemDescriber(const CalendarMoment& at) : at_(&at) {}

    ItemText operator()(const EmailItem& item) const {
        ItemText text{.kind = "email", .title = item.subject().value_or("")};
        if (const auto sender = textIn(item.fromDisplayName())) text.facts.push_back("from " + *sender);
        if (item.isDraft()) text.facts.emplace_back("draft");
        return text;
    }
    ItemText operator()(const FileItem& item) const {
        ItemText text{.kind = "file", .title = textIn(item.title()).value_or(item.name().value_or(""))};
        if (textIn(item.title()) && textIn(item.name())) text.facts.push_back(*item.name());
        add(text, item.attachmentNote());
        return text;
    }
    ItemText operator()(const FormItem& item) const {
        const auto& definition = item.definition.get();
        const auto templateName = definition ? textIn(definition->name) : std::nullopt;
        ItemText text{.kind = "form", .title = textIn(item.name()).value_or(templateName.value_or(""))};
        if (templateName && *templateName != text.title) text.facts.push_back(*templateName);
        for (const FormFieldItem& field : item.fields.get()) {
            if (!field.isEmpty())
                text.facts.push_back(fmt::format("{}: {}", field.name().value_or("?"), *field.displayString()));
        }
        return text;
    }
    ItemText operator()(const NoteItem& item) const {
        // A note of one endless line does not push everything else away.
        constexpr std::size_t widest = 100;
        const std::string line = item.body() ? fitted(firstLine(*item.body()), widest) : "";
        ItemText text{.kind = "note", .title = textIn(item.title()).value_or(line)};
        if (!line.empty() && line != text.title) text.facts.push_back(line);
        addOwner(text, item.ownerName);
        return text;
    }
    ItemText operator()(const TaskItem& item) const {
        ItemText text{.kind = "task", .title = item.title().value_or("")};
        text.facts.push_back(statusText(item.status()));
        if (const auto& due = item.dueDate()) text.facts.push_back("due " + dayText(*due, at_->calendar));
        addOwner(text, item.ownerName);
        return text;
    }
    ItemText operator()(const TimeblockItem& item) const {
        ItemText text{.kind = "appointment", .title = item.subject().value_or("")};
        const Timeblock& appointment = *item.timeblock;
        if (appointment.isAllDay) {
            text.facts.emplace_back("all day");
        } else if (const auto& end = appointment.endDate; end && appointment.startDate && isReachable(*end)) {
            const bool isSameDay =
                isReachable(*appointment.startDate) && at_->calendar.isSameDay(*appointment.startDate, *end);
            text.facts.push_back("until " +
                                 (isSameDay ? timeText(*end, at_->calendar) : momentText(*end, at_->calendar)));
        }
        add(text, item.location());
        if (appointment.status == TimeblockStatus::cancelled) text.facts.emplace_back("cancelled");
        return text;
    }
    ItemText operator()(const URLReferenceItem& item) const {
        const auto url = textIn(item.urlString());
        ItemText text{.kind = "link", .title = textIn(item.name()).value_or(url.value_or(""))};
        if (textIn(item.name()) && url) text.facts.push_back(*url);
        add(text, item.note());
        return text;
    }

  private:
    static void add(ItemText& text, const std::optional<std::string>& fact) {
        if (textIn(fact)) text.facts.push_back(*fact);
    }
    static void addOwner(ItemText& text, const Name& name) {
        if (const auto owner = name.localized(); !owner.empty()) text.facts.push_back(owner);
    }

    const CalendarMoment* at_;
};

/// "Today, Tuesday, 14 March 2017".
std::string dayHeading(std::chrono::local_days day, const CalendarMoment& at) {
    const auto passed = at.calendar.dayOf(at.now) - day;
    const std::string_view word = passed == std::chrono::days(0)   ? "Today, "
                                  : passed == std::chrono::days(1) ? "Yesterday, "
                                                                   : "";
    return fmt::format("{}{}", word, weekdayText(day));
}

/// When an item is dated, for somebody who looks at it in a calendar.
Date shownDate(const ActivityItem& item, const Calendar& calendar) {
    const auto* appointment = item.timeblock();
    return appointment != nullptr ? shownStart(*appointment->timeblock, calendar).value() : item.date().value();
}
/// The first moment of the day under which an item is listed.
Date dayStart(const ActivityItem& item, const Calendar& calendar) {
    const Date date = shownDate(item, calendar);
    return isReachable(date) ? calendar.startOfDay(date) : date;
}

/// The time of day of an item; empty for what is dated to a whole day.
std::string itemTime(const ActivityItem& item, const Calendar& calendar) {
    const Date date = item.date().value();
    const auto* appointment = item.timeblock();
    if (appointment != nullptr && appointment->timeblock->isAllDay) return "";
    // Tasks are mostly due on a day, at its first moment.
    if (item.task() != nullptr && calendar.startOfDay(date) == date) return "";
    return timeText(date, calendar);
}

std::string totalsText(const ActivitySummary& summary) {
    const auto count = [](std::int64_t number, std::string_view one, std::string_view several) {
        return fmt::format("{} {}", grouped(number), number == 1 ? one : several);
    };
    const TasksSummary& tasks = summary.tasks;
    return fmt::format("{}, {}, {}, {}, {}, {}\n", count(summary.email.total, "email", "emails"),
                       count(summary.timeblocks.total, "appointment", "appointments"),
                       count(summary.notes.total, "note", "notes"), count(summary.forms.total, "form", "forms"),
                       count(summary.files.totalAttachments, "file", "files"),
                       count(summary.files.totalURLReferences, "link", "links")) +
           fmt::format("{}: {} open, {} for some day; {} of your own, {} of these open\n",
                       count(tasks.allTasksTotal, "task", "tasks"), grouped(tasks.incompleteTasksTotal),
                       grouped(tasks.somedayTasksTotal), grouped(tasks.myTasksTotal),
                       grouped(tasks.myIncompleteTasksTotal));
}

}  // namespace

std::string firstLine(const TextBody& body) {
    const std::string text = body.match([](const std::string& plain) { return plain; },
                                        [](const AttributedString& attributed) { return attributed.text(); },
                                        [](const HTMLText& html) { return plainTextOfHTML(html.text); });
    std::string_view rest = text;
    while (!rest.empty()) {
        std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        constexpr std::string_view blanks = " \t\r";
        const auto first = line.find_first_not_of(blanks);
        if (first != line.npos) return std::string(line.substr(first, line.find_last_not_of(blanks) - first + 1));
    }
    return "";
}

std::vector<ActivityDay> activityDays(const ActivitySummary& summary, const CalendarMoment& at) {
    // Whole days of other zones belong to another day than their first moment does.
    std::multimap<Date, ActivityItem, std::greater<>> items;
    for (const ActivityItem& item : summary.recent())
        items.emplace(dayStart(item, at.calendar), item);
    const ItemDescriber describe(at);
    std::vector<ActivityDay> days;
    for (const auto& [day, item] : items) {
        const Date date = shownDate(item, at.calendar);
        const bool isInCalendar = isReachable(date);
        std::string heading = isInCalendar ? dayHeading(at.calendar.dayOf(date), at) : date.description();
        if (days.empty() || days.back().heading != heading) days.push_back({.heading = std::move(heading)});
        ItemText shown = item.match(describe);
        days.back().entries.push_back({.time = isInCalendar ? itemTime(item, at.calendar) : "",
                                       .kind = std::string(shown.kind),
                                       .title = shown.title.empty() ? "-" : std::move(shown.title),
                                       .facts = std::move(shown.facts)});
    }
    return days;
}

std::string rendered(const ActivityPicture& picture, const Terminal& terminal) {
    constexpr std::size_t indent = 2;
    const ActivitySummary& summary = picture.summary;
    std::string text = styled(fmt::format("Activity of {}", printable(picture.title)), boldStyle, terminal) +
                       fmt::format(" as {} sees it\n", printable(picture.userName)) + totalsText(summary);

    const std::vector<ActivityDay> days = activityDays(summary, picture.at);
    if (days.empty()) return text + "\nnothing recent\n";
    // The columns are those of all days.
    Table table(4);
    for (const ActivityDay& day : days) {
        for (const ActivityEntry& entry : day.entries) {
            std::string facts;
            for (const std::string& fact : entry.facts)
                facts += (facts.empty() ? "" : " · ") + fact;
            table.add({entry.time, entry.kind, entry.title, std::move(facts)});
        }
    }
    const std::string all = table.rendered(terminal, indent);
    std::string_view lines = all;
    for (const ActivityDay& day : days) {
        text += '\n' + styled(day.heading, boldStyle, terminal) + '\n';
        for (std::size_t i = 0; i < day.entries.size(); ++i) {
            const auto end = lines.find('\n') + 1;
            text += lines.substr(0, end);
            lines.remove_prefix(end);
        }
    }
    return text;
}

std::string activityJSON(const ActivitySummary& summary) {
    const auto add = [](JSONObject& json, std::string_view key, std::int64_t number) {
        json.addJSON(key, coded(number));
    };
    JSONObject totals;
    add(totals, "email", summary.email.total);
    add(totals, "fileAttachments", summary.files.totalAttachments);
    add(totals, "urlReferences", summary.files.totalURLReferences);
    add(totals, "files", summary.files.total());
    add(totals, "forms", summary.forms.total);
    add(totals, "notes", summary.notes.total);
    add(totals, "allTasks", summary.tasks.allTasksTotal);
    add(totals, "myTasks", summary.tasks.myTasksTotal);
    add(totals, "incompleteTasks", summary.tasks.incompleteTasksTotal);
    add(totals, "myIncompleteTasks", summary.tasks.myIncompleteTasksTotal);
    add(totals, "somedayTasks", summary.tasks.somedayTasksTotal);
    add(totals, "timeblocks", summary.timeblocks.total);
    std::vector<std::string> items;
    for (const ActivityItem& item : summary.recent())
        items.push_back(coded(item));
    JSONObject json;
    json.addJSON("sourceID", coded(summary.sourceID.get())).addJSON("timestamp", coded(summary.timestamp));
    add(json, "limit", summary.limit);
    json.add("totals", totals).addJSON("recent", JSONObject::array(items));
    return json.json();
}

}  // namespace kestrel::host
