#pragma once

#include <host/people/calendar_entry.h>
#include <host/people/import_problems.h>
#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace kestrel::host {

/// Reads the events, to-dos and journal entries of .ics files; alarms, free and busy times and time zones by themselves
/// are no entries.
///
/// An entry is refused when it is never ended, an event also without a usable start, and the others when they say
/// neither what nor when; the first text of a file that stands outside of any calendar, and a file without one, are
/// refused like an event. An empty file gets a warning. Warnings that come line after line are told as a number at
/// last. A property that cannot be read, or whose value is of no use, is left out with a warning.
///
/// Times are in the zone that they name, as the file defines it, else as the time-zone database does. Times without a
/// zone, and whole days, are in the zone that the calendar says is its own, else in the user's.
class ICalendarReader {
  public:
    explicit ICalendarReader(ImportProblems& problems) : problems_(&problems) {}

    /// Reads a file's content. `file` is how problems call it.
    void read(const std::string& file, std::string bytes);

    /// How many entries of a kind began; what is refused for being no calendar counts as an event.
    [[nodiscard]] std::size_t found(EntryKind kind) const { return found_[static_cast<std::size_t>(kind)]; }
    [[nodiscard]] std::vector<CalendarEntry>& entries() noexcept { return entries_; }

  private:
    ImportProblems* problems_;
    std::array<std::size_t, entryKindCount> found_{};
    std::vector<CalendarEntry> entries_;
};

}  // namespace kestrel::host
