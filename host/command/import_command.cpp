#include <fmt/format.h>
#include <host/command/import_command.h>
#include <host/crm/crm_export.h>
#include <host/crm/importer.h>
#include <host/store/store.h>
#include <host/terminal/json_object.h>
#include <host/terminal/text.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel::host {
namespace {

std::string counted(std::size_t count) {
    return grouped(static_cast<std::int64_t>(count));
}

std::string reportText(const ImportReport& report, const CRMExport& exported, const ImportOptions& options) {
    constexpr std::size_t labelWidth = 28;
    constexpr std::size_t countWidth = 10;
    const auto row = [&](std::string_view label, const std::array<std::string, 4>& counts) {
        std::string text = "  " + padded(label, labelWidth);
        for (const std::string& count : counts)
            text += padded(count, countWidth, Alignment::right);
        return text + "\n";
    };
    std::string text =
        fmt::format("Imported {} into {}\n\n", printable(options.directory), printable(options.database));
    text += row("", {"total", "new", "changed", "unchanged"});
    for (const ImportReport::Line& line : report.lines) {
        text += row(line.label, {counted(line.added + line.changed + line.unchanged), counted(line.added),
                                 counted(line.changed), counted(line.unchanged)});
    }
    text += '\n';
    for (const CRMExport::Mending& mending : exported.mendings) {
        if (mending.rows == 0) continue;
        text += fmt::format("Mended {} {} of {}: {} is {}\n", counted(mending.rows), mending.rows == 1 ? "row" : "rows",
                            mending.file, mending.wrong, mending.right);
    }
    if (report.isAllUnchanged()) text += "Everything was unchanged: nothing has been written.\n";
    return text;
}

std::string reportJSON(const ImportReport& report, const CRMExport& exported) {
    JSONObject records;
    for (const ImportReport::Line& line : report.lines) {
        records.add(line.recordName,
                    JSONObject().add("new", line.added).add("changed", line.changed).add("unchanged", line.unchanged));
    }
    std::vector<std::string> mended;
    for (const CRMExport::Mending& mending : exported.mendings) {
        mended.push_back(JSONObject()
                             .add("file", mending.file)
                             .add("column", mending.column)
                             .add("wrong", mending.wrong)
                             .add("right", mending.right)
                             .add("rows", mending.rows)
                             .json());
    }
    return JSONObject()
        .add("records", records)
        .addJSON("mended", JSONObject::array(mended))
        .add("isUnchanged", report.isAllUnchanged())
        .json();
}

}  // namespace

void importCommand(const ImportOptions& options, Output& output, const Terminal& terminal) {
    // Read and checked as a whole before the database is touched.
    const CRMExport exported = readCRMExport(options.directory);
    const ImportReport report = withDatabase(options.database, [&] {
        WritingStore store(options.database);
        ProgressBar bar("Importing");
        ImportReport done = importCRM(exported, store.database(),
                                      [&](std::size_t deals, std::size_t total) { bar.show(deals, total); });
        store.commit();
        return done;
    });
    if (!options.isJSON) {
        output.write(reportText(report, exported, options));
        return;
    }
    writeJSONLine(reportJSON(report, exported), output, terminal);
}

}  // namespace kestrel::host
