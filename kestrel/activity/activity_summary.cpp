#include <kestrel/activity/activity_summary.h>
#include <kestrel/foundation/fatal.h>
#include <algorithm>
#include <compare>
#include <cstddef>
#include <utility>

namespace kestrel {

namespace {

/// What places an item: looked at in its stead, so that items are copied only when they are given back.
struct Candidate {
    /// Never NaN.
    double date;
    /// The case of its ActivityItem.
    unsigned kind;
    /// Its place among all candidates, so that the order is one even of items with the same date and identifier.
    std::size_t place;
    const ObjectIDStorage* id;
    const void* item;

    /// The newest first.
    friend bool operator<(const Candidate& a, const Candidate& b) noexcept {
        if (a.date != b.date) return a.date > b.date;
        if (a.kind != b.kind) return a.kind > b.kind;
        if (const auto order = *a.id <=> *b.id; order != 0) return order > 0;
        return a.place > b.place;
    }
};

/// Keeps the best `limit` of the candidates that it is shown: it gathers up to twice as many, throws the worse half
/// away, and from then on lets only those in that are better than the worst it kept.
class Best {
  public:
    explicit Best(std::size_t limit) : limit_(limit) {}

    void offer(const Candidate& candidate) {
        if (isFull_ && !(candidate < worst_)) return;
        kept_.push_back(candidate);
        if (kept_.size() >= limit_ * 2) cut();
    }
    [[nodiscard]] std::vector<Candidate> take() {
        if (kept_.size() > limit_) cut();
        std::ranges::sort(kept_, std::less<>());
        return std::move(kept_);
    }

  private:
    void cut() {
        const auto last = kept_.begin() + static_cast<std::ptrdiff_t>(limit_ - 1);
        std::ranges::nth_element(kept_, last, std::less<>());
        worst_ = *last;
        isFull_ = true;
        kept_.erase(last + 1, kept_.end());
    }

    std::size_t limit_;
    bool isFull_ = false;
    Candidate worst_{};
    std::vector<Candidate> kept_;
};

ActivityItem copyOf(const Candidate& candidate) {
    switch (candidate.kind) {
        case 0: return ActivityItem::email(*static_cast<const EmailItem*>(candidate.item));
        case 1: return ActivityItem::fileAttachment(*static_cast<const FileItem*>(candidate.item));
        case 2: return ActivityItem::form(*static_cast<const FormItem*>(candidate.item));
        case 3: return ActivityItem::note(*static_cast<const NoteItem*>(candidate.item));
        case 4: return ActivityItem::task(*static_cast<const TaskItem*>(candidate.item));
        case 5: return ActivityItem::timeblock(*static_cast<const TimeblockItem*>(candidate.item));
        default: return ActivityItem::urlReference(*static_cast<const URLReferenceItem*>(candidate.item));
    }
}

}  // namespace

std::int64_t FilesSummary::total() const {
    std::int64_t sum = 0;
    if (__builtin_add_overflow(totalAttachments, totalURLReferences, &sum)) {
        fatal("The total of a summary's attachments and links does not fit 64 bits.");
    }
    return sum;
}

bool ActivitySummary::isEmpty() const noexcept {
    return email.isEmpty() && files.isEmpty() && forms.isEmpty() && notes.isEmpty() && tasks.isEmpty() &&
           timeblocks.isEmpty();
}

void ActivitySummary::overlayTask(TaskItem taskItem) {
    const ObjectID<Task> id = taskItem.id();
    overlaidTasks_.insert_or_assign(id, std::move(taskItem));
}

std::vector<ActivityItem> ActivitySummary::recent() const {
    if (limit < 0) fatal("The limit of an activity summary is negative.");
    if (limit == 0) return {};

    const std::size_t count = email.recent.size() + files.recentAttachments.size() + files.recentURLReferences.size() +
                              forms.recent.size() + notes.recent.size() + tasks.recentlyCompleted.size() +
                              tasks.recentlyOverdue.size() + tasks.recentlyCreatedWithoutDueDates.size() +
                              timeblocks.recent.size();
    Best best(std::min(static_cast<std::size_t>(limit), std::max<std::size_t>(count, 1)));
    std::size_t place = 0;
    const auto offer = [&](unsigned kind, const auto& item) {
        const std::optional<Date>& date = activityDate(item);
        // A date that is no number is no date.
        if (!date || date->sinceReferenceDate() != date->sinceReferenceDate()) return;
        best.offer({date->sinceReferenceDate(), kind, place++, &item.id().storage(), &item});
    };
    const auto offerAll = [&](unsigned kind, const auto& items) {
        for (const auto& item : items)
            offer(kind, item);
    };
    enum : unsigned { emailKind, fileAttachmentKind, formKind, noteKind, taskKind, timeblockKind, urlReferenceKind };
    const auto offerTasks = [&](const std::vector<TaskItem>& items) {
        if (overlaidTasks_.empty()) return offerAll(taskKind, items);
        for (const TaskItem& item : items) {
            const auto overlay = overlaidTasks_.find(item.id());
            offer(taskKind, overlay != overlaidTasks_.end() ? overlay->second : item);
        }
    };
    offerAll(emailKind, email.recent);
    offerAll(fileAttachmentKind, files.recentAttachments);
    offerAll(urlReferenceKind, files.recentURLReferences);
    offerAll(formKind, forms.recent);
    offerAll(noteKind, notes.recent);
    offerTasks(tasks.recentlyCompleted);
    offerTasks(tasks.recentlyOverdue);
    offerTasks(tasks.recentlyCreatedWithoutDueDates);
    offerAll(timeblockKind, timeblocks.recent);

    std::vector<ActivityItem> items;
    const std::vector<Candidate> chosen = best.take();
    items.reserve(chosen.size());
    for (const Candidate& candidate : chosen)
        items.push_back(copyOf(candidate));
    return items;
}

}  // namespace kestrel
