#include <fmt/format.h>
#include <host/command/import_command.h>
#include <host/failure.h>
#include <host/services/detailed_import_service.h>
#include <host/services/host_runtime.h>
#include <host/services/value_of.h>
#include <host/terminal/json_object.h>
#include <host/terminal/text.h>

#include <array>
#include <memory>
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

/// What people call the entries of each kind.
constexpr std::array<std::string_view, entryKindCount> entryLabels{"cards", "events", "to-dos", "journal entries",
                                                                   "messages"};

std::string reportText(const PeopleReport& report) {
    std::string text =
        row("", std::array<std::string, 7>{"found", "imported", "new", "changed", "unchanged", "repeated", "broken"});
    for (std::size_t kind = 0; kind < entryKindCount; ++kind) {
        const EntryCounts& counts = report.counts[kind];
        text +=
            row(entryLabels[kind], std::array{counted(counts.found), counted(counts.imported()), counted(counts.added),
                                              counted(counts.changed), counted(counts.unchanged),
                                              counted(counts.superseded), counted(counts.refused)});
    }
    return text + fmt::format("\nLinked by address: {} new\n", counted(report.linksAdded));
}

std::string reportJSON(const ImportOutcome& outcome) {
    JSONObject records;
    std::vector<std::string> mended;
    for (const auto& [exported, report] : outcome.exports) {
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
    if (outcome.people) {
        JSONObject entries;
        for (std::size_t kind = 0; kind < entryKindCount; ++kind) {
            const EntryCounts& counts = outcome.people->counts[kind];
            entries.add(entryKeys[kind], JSONObject()
                                             .add("found", counts.found)
                                             .add("imported", counts.imported())
                                             .add("new", counts.added)
                                             .add("changed", counts.changed)
                                             .add("unchanged", counts.unchanged)
                                             .add("repeated", counts.superseded)
                                             .add("broken", counts.refused));
        }
        std::vector<std::string> lines;
        for (const ImportProblem& problem : outcome.problems.all()) {
            lines.push_back(JSONObject()
                                .add("file", problem.place.file)
                                .add("line", problem.place.line)
                                .add("message", problem.message)
                                .json());
        }
        report.add("entries", entries)
            .add("linked", outcome.people->linksAdded)
            .addJSON("problems", JSONObject::array(lines));
    }
    return report.add("isUnchanged", outcome.isUnchanged).json();
}

void writeProblems(const ImportProblems& problems) {
    for (const ImportProblem& problem : problems.all())
        writeErrorLine(fmt::format("{}:{}: {}", problem.place.file, problem.place.line, problem.message));
}

/// Draws a bar for each of the steps that take long.
class StepBars {
  public:
    void show(const ImportStep& step) {
        if (step.work == ImportStep::Work::importingEntries) return;
        if (!bar_ || step.work != work_) {
            bar_.reset();
            work_ = step.work;
            bar_.emplace(work_ == ImportStep::Work::readingFiles ? "Reading" : "Importing");
        }
        bar_->show(step.done, step.total);
    }

  private:
    std::optional<ProgressBar> bar_;
    ImportStep::Work work_{};
};

std::shared_ptr<const ImportOutcome> imported(const ImportOptions& options) {
    Runtime runtime = makeHostRuntime(options.database, std::nullopt);
    DetailedImportService& importing = runtime[host_services::detailedImport];
    StepBars bars;
    const AnyCancellable watching = importing.observeSteps().sink([&](const ImportStep& step) { bars.show(step); });
    return valueOf(importing.importInDetail({options.paths.begin(), options.paths.end()}, options.isStrict));
}

}  // namespace

void importCommand(const ImportOptions& options, Output& output, const Terminal& terminal) {
    const auto outcome = imported(options);
    writeProblems(outcome->problems);
    if (!outcome->isComplete) {
        const std::size_t count = outcome->problems.refused();
        throw Failure(
            fmt::format("{} broken {}: nothing has been imported", counted(count), count == 1 ? "entry" : "entries"));
    }
    if (options.isJSON) return writeJSONLine(reportJSON(*outcome), output, terminal);
    std::string text;
    for (std::size_t i = 0; i < outcome->exports.size(); ++i) {
        text += fmt::format("Imported {} into {}\n\n", printable(outcome->paths.exports[i].native()),
                            printable(options.database));
        text += reportText(outcome->exports[i].report, outcome->exports[i].data);
    }
    if (outcome->people) {
        const std::size_t files = outcome->paths.files.size();
        text += fmt::format("{}Imported {} {} into {}\n\n", text.empty() ? "" : "\n", counted(files),
                            files == 1 ? "file" : "files", printable(options.database));
        text += reportText(*outcome->people);
    }
    if (outcome->isUnchanged) text += "Everything was unchanged: no record has been written.\n";
    output.write(text);
}

}  // namespace kestrel::host
