// What is derived from a contact's surroundings, against the plain way of doing it: the newest items of its activity,
// and its relationships from both ends.

#include <benchmark/benchmark.h>
#include <kestrel/activity/activity_summary.h>
#include <kestrel/relationships/contact_info.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "work.h"

namespace {

using namespace kestrel;

void require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "The contenders disagree: %s\n", what);
    std::exit(1);
}

/// Items of all kinds, `count` together, with dates in a fixed order of chance.
ActivitySummary sampleSummary(std::int64_t count) {
    std::mt19937_64 engine(20'010'101);
    const auto date = [&] { return Date(static_cast<double>(engine() % 500'000'000)); };
    ActivitySummary summary(ActivitySourceID::contact(1), Date(0), 50);
    for (std::int64_t i = 0; i < count; ++i) {
        const std::string title = "What item " + std::to_string(i) + " is about";
        switch (i % 9) {
            case 0:
                summary.email.recent.push_back({Email{.emailID = i, .messageDate = date(), .subject = title}});
                break;
            case 1:
                summary.files.recentAttachments.push_back(
                    {FileAttachment{.fileAttachmentID = i, .createDate = date(), .name = title}});
                break;
            case 2:
                summary.files.recentURLReferences.push_back(
                    {URLReference{.urlReferenceID = i, .createDate = date(), .name = title}});
                break;
            case 3:
                summary.forms.recent.push_back({Form{.customRecordSetID = i, .createDate = date(), .name = title}});
                break;
            case 4: summary.notes.recent.push_back({Note{.noteID = i, .createDate = date(), .title = title}}); break;
            case 5:
                summary.tasks.recentlyCompleted.push_back(
                    {Task{.taskID = i, .completeDate = date(), .status = TaskStatus::done, .title = title}});
                break;
            case 6:
                summary.tasks.recentlyOverdue.push_back({Task{.taskID = i, .dueDate = date(), .title = title}});
                break;
            case 7:
                summary.tasks.recentlyCreatedWithoutDueDates.push_back(
                    {Task{.taskID = i, .createDate = date(), .title = title}});
                break;
            default:
                summary.timeblocks.recent.push_back(
                    {Timeblock{.timeblockID = i, .startDate = date(), .subject = title}});
        }
    }
    return summary;
}

/// The same by gathering and sorting whole items.
std::vector<ActivityItem> recentBySortingItems(const ActivitySummary& summary) {
    std::vector<ActivityItem> items;
    const auto gather = [&](const auto& list, auto make) {
        for (const auto& item : list)
            items.push_back(make(item));
    };
    gather(summary.email.recent, [](const auto& item) { return ActivityItem::email(item); });
    gather(summary.files.recentAttachments, [](const auto& item) { return ActivityItem::fileAttachment(item); });
    gather(summary.files.recentURLReferences, [](const auto& item) { return ActivityItem::urlReference(item); });
    gather(summary.forms.recent, [](const auto& item) { return ActivityItem::form(item); });
    gather(summary.notes.recent, [](const auto& item) { return ActivityItem::note(item); });
    for (const auto* tasks : {&summary.tasks.recentlyCompleted, &summary.tasks.recentlyOverdue,
                              &summary.tasks.recentlyCreatedWithoutDueDates}) {
        gather(*tasks, [](const auto& item) { return ActivityItem::task(item); });
    }
    gather(summary.timeblocks.recent, [](const auto& item) { return ActivityItem::timeblock(item); });
    std::erase_if(items, [](const ActivityItem& item) { return !item.date(); });
    std::ranges::sort(items, [](const ActivityItem& a, const ActivityItem& b) {
        return std::tuple(*a.date(), a.id()) > std::tuple(*b.date(), b.id());
    });
    items.erase(items.begin() + std::min(summary.limit, static_cast<std::int64_t>(items.size())), items.end());
    return items;
}

/// A contact with that many relationships, half of them seen from each end, one in four from both.
ContactInfo sampleInfo(std::int64_t count) {
    ContactInfo info{.contact = {.contactID = 1}};
    for (std::int64_t i = 0; i < count / 2; ++i) {
        const auto back = i % 2 == 0 ? i : i + count;
        info.allToRelationships.emplace_back(
            AnyRelationship{.relationID = i},
            RelationshipDestination::contact(Contact{.contactID = i + 2, .firstName = "Somebody", .lastName = "Else"}));
        info.allFromRelationships.emplace_back(
            AnyRelationship{.relationID = back},
            RelationshipSource::contact(Contact{.contactID = i + 2, .firstName = "Somebody", .lastName = "Else"}));
    }
    return info;
}

/// The same by looking through what is there for each relationship.
std::vector<ContactRelationship> joinedBySearching(const ContactInfo& info) {
    std::vector<ContactRelationship> joined;
    const auto add = [&](ContactRelationship relationship) {
        const bool isThere =
            std::ranges::any_of(joined, [&](const auto& each) { return each.id() == relationship.id(); });
        if (!isThere) joined.push_back(std::move(relationship));
    };
    for (auto& relationship : info.toRelationships())
        add(ContactRelationship::to(std::move(relationship)));
    for (auto& relationship : info.fromRelationships())
        add(ContactRelationship::from(std::move(relationship)));
    return joined;
}

void registerAll() {
    for (const std::int64_t count : {1'000, 10'000, 100'000}) {
        static std::vector<ActivitySummary> summaries;
        summaries.reserve(3);
        const ActivitySummary& summary = summaries.emplace_back(sampleSummary(count));
        require(summary.recent() == recentBySortingItems(summary), "recent");
        const std::string work = "recent of " + std::to_string(count);
        const auto add = [&](const std::string& contender, auto recent) {
            benchmark::RegisterBenchmark((work + "/" + contender).c_str(), [&summary, recent](benchmark::State& state) {
                for (auto _ : state)
                    benchmark::DoNotOptimize(recent(summary));
            })->Unit(benchmark::kMicrosecond);
        };
        add("kestrel", [](const ActivitySummary& each) { return each.recent(); });
        add("sorted items", recentBySortingItems);
    }
    for (const std::int64_t count : {10, 100, 1'000, 10'000, 100'000}) {
        static std::vector<ContactInfo> infos;
        infos.reserve(5);
        const ContactInfo& info = infos.emplace_back(sampleInfo(count));
        const std::string work = "joined relationships of " + std::to_string(count);
        const auto add = [&](const std::string& contender, auto join) {
            benchmark::RegisterBenchmark((work + "/" + contender).c_str(), [&info, join](benchmark::State& state) {
                for (auto _ : state)
                    benchmark::DoNotOptimize(join(info));
            })->Unit(benchmark::kMicrosecond);
        };
        add("kestrel", [](const ContactInfo& each) { return each.joinedRelationships(); });
        if (count <= 10'000) {
            require(info.joinedRelationships() == joinedBySearching(info), "joined relationships");
            add("searching", joinedBySearching);
        }
    }
}

}  // namespace

void benchmarks::addActivity() {
    registerAll();
}
