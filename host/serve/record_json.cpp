#include <fmt/format.h>
#include <host/activity/activity_query.h>
#include <host/activity/activity_rendering.h>
#include <host/contact/contact_names.h>
#include <host/contact/contact_rendering.h>
#include <host/contact/link_query.h>
#include <host/failure.h>
#include <host/serve/record_json.h>
#include <host/services/deals_service.h>
#include <host/services/records_service.h>
#include <host/services/value_of.h>
#include <host/terminal/day_text.h>
#include <host/terminal/json_object.h>
#include <host/terminal/page_section.h>
#include <host/terminal/text.h>
#include <kestrel/boards/opportunity_state.h>
#include <kestrel/coding/json.h>
#include <kestrel/services/activity_service.h>
#include <kestrel/services/contacts_service.h>
#include <kestrel/services/permissions_service.h>

#include <utility>
#include <vector>

namespace kestrel::host {
namespace {

constexpr std::size_t activityLimit = 20;
constexpr std::size_t contactLimit = 100;

void addRow(PageSection& section, std::string label, const std::optional<std::string>& text) {
    if (textIn(text)) section.rows.push_back({.cells = {std::move(label), *text}});
}

std::string sectionJSON(const PageSection& section) {
    std::vector<std::string> rows;
    for (const PageRow& row : section.rows) {
        std::vector<std::string> cells;
        for (std::size_t i = 0; i < row.cells.size(); ++i) {
            // The name leads to the record; the identifier says nothing more.
            if (!row.record.empty() && row.cells[i] == row.record && i != row.nameCell) continue;
            JSONObject cell;
            cell.add("text", row.cells[i]);
            if (!row.record.empty() && i == row.nameCell) cell.add("record", row.record);
            cells.push_back(cell.json());
        }
        rows.push_back(JSONObject::array(cells));
    }
    return JSONObject()
        .add("title", section.title)
        .addJSON("rows", JSONObject::array(rows))
        .add("lines", section.lines)
        .json();
}

std::string activityJSON(const ActivitySummary& summary, const CalendarMoment& at) {
    std::vector<std::string> totals;
    const auto add = [&](std::string_view label, std::int64_t count) {
        totals.push_back(JSONObject().add("label", label).add("count", grouped(count)).json());
    };
    add("Emails", summary.email.total);
    add("Appointments", summary.timeblocks.total);
    add("Notes", summary.notes.total);
    add("Forms", summary.forms.total);
    add("Files", summary.files.totalAttachments);
    add("Links", summary.files.totalURLReferences);
    add("Tasks", summary.tasks.allTasksTotal);
    add("Open tasks", summary.tasks.incompleteTasksTotal);
    std::vector<std::string> days;
    for (const ActivityDay& day : activityDays(summary, at)) {
        std::vector<std::string> entries;
        for (const ActivityEntry& entry : day.entries)
            entries.push_back(JSONObject()
                                  .add("time", entry.time)
                                  .add("kind", entry.kind)
                                  .add("title", entry.title)
                                  .add("facts", entry.facts)
                                  .json());
        days.push_back(JSONObject().add("heading", day.heading).addJSON("entries", JSONObject::array(entries)).json());
    }
    return JSONObject().addJSON("totals", JSONObject::array(totals)).addJSON("days", JSONObject::array(days)).json();
}

/// A page before its activity.
struct RecordPage {
    std::string_view kind{};
    std::string title{};
    std::vector<PageSection> sections{};

    void add(PageSection section) {
        if (!section.isEmpty()) sections.push_back(std::move(section));
    }
};

/// The people who are linked to a record, and as what.
PageSection peopleOf(const AnyObjectID& id, Runtime& runtime) {
    PageSection section{.title = "People"};
    const auto target = linkTargetOf(id);
    if (!target) return section;
    for (const LinkedContact& linked :
         valueOf(runtime[services::contacts].fetchLinks(ContactLinkQuery::destination(*target)), id)) {
        const std::string identifier = linked.contact.objectID().stringValue();
        section.rows.push_back({.cells = {shownName(linked.contact), linked.name.value_or("")}, .record = identifier});
    }
    return section;
}

template <class Record>
PageSection recordSection(const Record& record, Runtime& runtime, const Calendar& calendar) {
    PageSection section{.title = "Record"};
    const PermissionChecker checker = valueOf(runtime[services::permissions].fetchPermissionChecker());
    const auto moment = [&](const Date& date) { return momentText(date, calendar); };
    addRow(section, "identifier", record.objectID().stringValue());
    addRow(section, "visibility", checker.visibility(record).localizedDisplayName());
    addRow(section, "created", record.createDate.transform(moment));
    addRow(section, "modified", record.modifyDate.transform(moment));
    return section;
}

PageSection historySection(const std::vector<PipelineStageHistory>& history, const Calendar& calendar) {
    PageSection section{.title = "Stages"};
    const auto moment = [&](const std::optional<Date>& date) { return date ? momentText(*date, calendar) : ""; };
    for (const PipelineStageHistory& row : history) {
        std::string stay = moment(row.startDate);
        if (row.endDate) stay += " – " + moment(row.endDate);
        section.rows.push_back({.cells = {row.stageName.value_or("-"), std::move(stay),
                                          row.createdByUsername.value_or(""), row.note.value_or("")}});
    }
    return section;
}

RecordPage dealPage(const PipelineBoardObjectID& id, const AnyObjectID& anyID, Runtime& runtime,
                    const Calendar& calendar) {
    const DealDetails details = valueOf(runtime[host_services::deals].fetchDeal(id), anyID);
    return std::visit(
        [&]<class Record>(const Record& deal) {
            constexpr bool isOpportunity = std::is_same_v<Record, Opportunity>;
            RecordPage page{.kind = isOpportunity ? "Opportunity" : "Project",
                            .title = textIn(deal.name).value_or(anyID.stringValue())};
            const auto day = [&](const Date& date) { return dayText(date, calendar); };
            PageSection summary;
            addRow(summary, "stage", details.stageName);
            addRow(summary, "pipeline", details.pipelineName);
            if constexpr (isOpportunity) {
                if (const auto state = fromRawValue<OpportunityState>(deal.opportunityStateType))
                    addRow(summary, "outcome", localizedName(*state));
                addRow(summary, "total value", amount(deal.cachedTotalAmount));
                addRow(summary, "probability", fmt::format("{} %", deal.probability));
                addRow(summary, "type", details.typeName);
            } else {
                addRow(summary, "complete", fmt::format("{} %", deal.percentComplete));
            }
            addRow(summary, "assigned to", details.assigneeName);
            if (deal.category) addRow(summary, "category", deal.category->name);
            addRow(summary, "start", deal.startDate.transform(day));
            addRow(summary, isOpportunity ? "forecasted close" : "due", deal.dueDate.transform(day));
            addRow(summary, "completed", deal.completeDate.transform(day));
            page.add(std::move(summary));
            PageSection companies{.title = "Companies"};
            for (const Company& company : details.companies)
                companies.rows.push_back({.cells = {textIn(company.name).value_or(company.objectID().stringValue())},
                                          .record = company.objectID().stringValue()});
            page.add(std::move(companies));
            page.add(peopleOf(anyID, runtime));
            page.add(historySection(details.history, calendar));
            if (textIn(deal.details)) page.add({.title = "Details", .lines = {*deal.details}});
            page.add(recordSection(deal, runtime, calendar));
            return page;
        },
        details.record);
}

RecordPage companyPage(const ObjectID<Company>& id, Runtime& runtime, const Calendar& calendar) {
    RecordsService& records = runtime[host_services::records];
    // Refuses what the user may not read.
    (void)valueOf(records.fetchTitle(id), id);
    const auto company = decodeJSON<Company>(valueOf(records.fetchRecord(id), id).json);
    if (!company) throw Failure(company.error().message());
    RecordPage page{.kind = "Company", .title = textIn(company->name).value_or(id.stringValue())};
    PageSection summary;
    addRow(summary, "tagline", company->tagline);
    if (company->category) addRow(summary, "category", company->category->name);
    if (company->numberOfEmployees > 0) addRow(summary, "employees", grouped(company->numberOfEmployees));
    addRow(summary, "ticker symbol", company->tickerSymbol);
    page.add(std::move(summary));
    page.add(peopleOf(id, runtime));
    page.add(recordSection(*company, runtime, calendar));
    return page;
}

RecordPage contactPage(const ObjectID<Contact>& id, Runtime& runtime, const Calendar& calendar) {
    ContactInfo info = valueOf(runtime[services::contacts].fetchContactInfo(id), id);
    const PermissionChecker checker = valueOf(runtime[services::permissions].fetchPermissionChecker());
    std::string visibility = checker.visibility(info).localizedDisplayName();
    const ContactPage page{.info = std::move(info),
                           .calendar = calendar,
                           .extraFields = valueOf(runtime[host_services::records].fetchContactFields()),
                           .visibility = std::move(visibility)};
    return {.kind = "Contact", .title = fullName(page.info.contact), .sections = contactSections(page)};
}

RecordPage pageOf(const AnyObjectID& id, Runtime& runtime, const Calendar& calendar) {
    if (const auto contact = id.as<Contact>()) return contactPage(*contact, runtime, calendar);
    if (const auto company = id.as<Company>()) return companyPage(*company, runtime, calendar);
    if (const auto deal = id.as<Opportunity>())
        return dealPage(PipelineBoardObjectID::opportunity(*deal), id, runtime, calendar);
    if (const auto project = id.as<Project>())
        return dealPage(PipelineBoardObjectID::project(*project), id, runtime, calendar);
    throw WrongUsage(fmt::format("there is no page of {}", id.stringValue()));
}

}  // namespace

std::string recordJSON(const AnyObjectID& id, Runtime& runtime, const CalendarMoment& at) {
    const RecordPage page = pageOf(id, runtime, at.calendar);
    std::vector<std::string> sections;
    for (const PageSection& section : page.sections)
        sections.push_back(sectionJSON(section));
    JSONObject json;
    json.add("id", id.stringValue())
        .add("kind", page.kind)
        .add("title", page.title)
        .addJSON("sections", JSONObject::array(sections));
    if (const auto source = activitySourceOf(id)) {
        json.addJSON(
            "activity",
            activityJSON(valueOf(runtime[services::activity].fetchActivity(*source, at, activityLimit), id), at));
    }
    return json.json();
}

std::string contactsJSON(const std::string& search, Runtime& runtime) {
    const ContactList list = valueOf(runtime[services::contacts].fetchContacts(
        {.search = search.empty() ? std::nullopt : std::optional(search), .limit = contactLimit}));
    std::vector<std::string> rows;
    for (const ContactRow& row : list.rows) {
        rows.push_back(JSONObject()
                           .add("id", row.id.stringValue())
                           .add("name", sortingName(row.id, row.name))
                           .add("company", row.company.value_or(""))
                           .add("email", row.emailAddress.value_or(""))
                           .add("phone", row.phone.value_or(""))
                           .json());
    }
    return JSONObject().add("total", list.total).addJSON("contacts", JSONObject::array(rows)).json();
}

}  // namespace kestrel::host
