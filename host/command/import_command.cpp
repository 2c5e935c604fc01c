#include <fmt/format.h>
#include <host/command/import_command.h>
#include <host/crm/crm_export.h>
#include <host/crm/importer.h>
#include <host/failure.h>
#include <host/people/people_importer.h>
#include <host/people/personal_files.h>
#include <host/store/store.h>
#include <host/terminal/json_object.h>
#include <host/terminal/text.h>

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel::host {
namespace {

std::string counted(std::size_t count) {
    return grouped(static_cast<std::int64_t>(count));
}

/// A line of a table: its label, and counts right below each other.
std::string row(std::string_view label, std::span<const std::string> counts) {
    constexpr std::size_t labelWidth = 28;
    constexpr std::size_t countWidth = 10;
    std::string text = "  " + padded(label, labelWidth);
    for (const std::string& count : counts)
        text += padded(count, countWidth, Alignment::right);
    return text + "\n";
}

/// An export with what its import did.
struct ImportedExport {
    CRMExport data{};
    ImportReport report{};
};

std::string reportText(const ImportReport& report, const CRMExport& exported) {
    std::string text = row("", std::array<std::string, 4>{"total", "new", "changed", "unchanged"});
    for (const ImportReport::Line& line : report.lines) {
        text += row(line.label, std::array{counted(line.added + line.changed + line.unchanged), counted(line.added),
                                           counted(line.changed), counted(line.unchanged)});
    }
    text += '\n';
    for (const CRMExport::Mending& mending : exported.mendings) {
        if (mending.rows == 0) continue;
        text += fmt::format("Mended {} {} of {}: {} is {}\n", counted(mending.rows), mending.rows == 1 ? "row" : "rows",
                            mending.file, mending.wrong, mending.right);
    }
    return text;
}

/// What people and programs call the entries of each kind.
struct EntryNames {
    EntryKind kind;
    std::string_view label;
    std::string_view key;
};
constexpr std::array<EntryNames, entryKindCount> entryNames{{{EntryKind::card, "cards", "cards"},
                                                             {EntryKind::event, "events", "events"},
                                                             {EntryKind::toDo, "to-dos", "toDos"},
                                                             {EntryKind::journal, "journal entries", "journals"},
                                                             {EntryKind::message, "messages", "messages"}}};

std::string reportText(const PeopleReport& report) {
    std::string text =
        row("", std::array<std::string, 7>{"found", "imported", "new", "changed", "unchanged", "repeated", "broken"});
    for (const auto& [kind, label, key] : entryNames) {
        const EntryCounts& counts = report.counts[static_cast<std::size_t>(kind)];
        text += row(label, std::array{counted(counts.found), counted(counts.imported()), counted(counts.added),
                                      counted(counts.changed), counted(counts.unchanged), counted(counts.superseded),
                                      counted(counts.refused)});
    }
    return text + fmt::format("\nLinked by address: {} new\n", counted(report.linksAdded));
}

std::string reportJSON(const std::vector<ImportedExport>& exports, const std::optional<PeopleReport>& people,
                       const ImportProblems& problems, bool isUnchanged) {
    JSONObject records;
    std::vector<std::string> mended;
    for (const auto& [exported, report] : exports) {
        for (const ImportReport::Line& line : report.lines) {
            records.add(
                line.recordName,
                JSONObject().add("new", line.added).add("changed", line.changed).add("unchanged", line.unchanged));
        }
        for (const CRMExport::Mending& mending : exported.mendings) {
            mended.push_back(JSONObject()
                                 .add("file", mending.file)
                                 .add("column", mending.column)
                                 .add("wrong", mending.wrong)
                                 .add("right", mending.right)
                                 .add("rows", mending.rows)
                                 .json());
        }
    }
    JSONObject report;
    report.add("records", records).addJSON("mended", JSONObject::array(mended));
    if (people) {
        JSONObject entries;
        for (const auto& [kind, label, key] : entryNames) {
            const EntryCounts& counts = people->counts[static_cast<std::size_t>(kind)];
            entries.add(key, JSONObject()
                                 .add("found", counts.found)
                                 .add("imported", counts.imported())
                                 .add("new", counts.added)
                                 .add("changed", counts.changed)
                                 .add("unchanged", counts.unchanged)
                                 .add("repeated", counts.superseded)
                                 .add("broken", counts.refused));
        }
        std::vector<std::string> lines;
        for (const ImportProblem& problem : problems.all()) {
            lines.push_back(JSONObject()
                                .add("file", problem.place.file)
                                .add("line", problem.place.line)
                                .add("message", problem.message)
                                .json());
        }
        report.add("entries", entries).add("linked", people->linksAdded).addJSON("problems", JSONObject::array(lines));
    }
    return report.add("isUnchanged", isUnchanged).json();
}

/// Writes the problems, those of a file by their lines, the files in the order in which they were read.
void writeProblems(ImportProblems& problems) {
    problems.sort();
    for (const ImportProblem& problem : problems.all())
        writeErrorLine(fmt::format("{}:{}: {}", problem.place.file, problem.place.line, problem.message));
}

}  // namespace

void importCommand(const ImportOptions& options, Output& output, const Terminal& terminal) {
    // Read and checked as a whole before the database is touched.
    const ImportPaths paths = importPathsOf(options.paths);
    std::vector<ImportedExport> exports;
    for (const auto& folder : paths.exports)
        exports.push_back({.data = readCRMExport(folder)});
    PersonalData personal = [&] {
        ProgressBar bar("Reading");
        return readPersonalFiles(paths.files, [&](std::size_t done, std::size_t total) { bar.show(done, total); });
    }();
    if (options.isStrict && personal.problems.refused() > 0) {
        writeProblems(personal.problems);
        const std::size_t count = personal.problems.refused();
        throw Failure(
            fmt::format("{} broken {}: nothing has been imported", counted(count), count == 1 ? "entry" : "entries"));
    }
    std::optional<PeopleReport> people;
    bool isUnchanged = false;
    withDatabase(options.database, [&] {
        WritingStore store(options.database);
        const auto before = store.database().getTotalChanges();
        {
            ProgressBar bar("Importing");
            const auto show = [&](std::size_t deals, std::size_t total) { bar.show(deals, total); };
            for (ImportedExport& exported : exports)
                exported.report = importCRM(exported.data, store.database(), show);
            if (!paths.files.empty()) people = importPeople(personal, store.database());
        }
        // Also what no line of the report counts, such as a new relationship between known people.
        isUnchanged = store.database().getTotalChanges() == before;
        store.commit();
    });
    writeProblems(personal.problems);
    if (options.isJSON) {
        writeJSONLine(reportJSON(exports, people, personal.problems, isUnchanged), output, terminal);
        return;
    }
    std::string text;
    for (std::size_t i = 0; i < exports.size(); ++i) {
        text +=
            fmt::format("Imported {} into {}\n\n", printable(paths.exports[i].native()), printable(options.database));
        text += reportText(exports[i].report, exports[i].data);
    }
    if (people) {
        text += fmt::format("{}Imported {} {} into {}\n\n", text.empty() ? "" : "\n", counted(paths.files.size()),
                            paths.files.size() == 1 ? "file" : "files", printable(options.database));
        text += reportText(*people);
    }
    if (isUnchanged) text += "Everything was unchanged: nothing has been written.\n";
    output.write(text);
}

}  // namespace kestrel::host
