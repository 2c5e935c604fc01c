#include "services.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kestrel/services/contacts_service.h>
#include <kestrel/services/import_service.h>
#include <kestrel/services/permissions_service.h>

#include <algorithm>

namespace kestrel::host::test {
namespace {

using testing::Contains;
using testing::ElementsAre;

class ImportServices : public testing::Test {
  protected:
    ImportServices() {
        writeExport(folder / "export", smallExport);
        std::filesystem::create_directories(folder / "people");
        for (const char* name : {"Ada", "Grace", "Edsger"}) {
            writeText(folder / "people" / (std::string(name) + ".vcf"),
                      "BEGIN:VCARD\nVERSION:3.0\nFN:" + std::string(name) + " X\nN:X;" + name + ";;;\nEND:VCARD\n");
        }
        writeText(folder / "people" / "broken.vcf", "BEGIN:VCARD\nVERSION:3.0\nFN:Never Ends\n");
    }
    [[nodiscard]] Path file() const { return folder / "crm.db"; }
    [[nodiscard]] static std::optional<ImportCount> countIn(const ImportResult& result, std::string_view kind) {
        const auto found = std::ranges::find(result.counts, kind, &ImportCount::kind);
        return found == result.counts.end() ? std::nullopt : std::optional(*found);
    }

    TemporaryFolder folder;
    std::vector<Path> paths{folder / "export", folder / "people"};
    ServedDatabase served{folder / "crm.db", "administrator"};
    ImportService& imports = served[services::import_];
};

TEST_F(ImportServices, previewWhatAnImportWouldDoAndLeaveNothing) {
    const ImportResult preview = valueFrom(imports.previewImport(paths));
    EXPECT_FALSE(std::filesystem::exists(file()));
    const ImportResult result = valueFrom(imports.importFiles(paths));
    EXPECT_EQ(result, preview);
    EXPECT_EQ(countIn(result, "cards"), (ImportCount{.kind = "cards", .found = 4, .imported = 3, .broken = 1}));
    EXPECT_EQ(countIn(result, "Opportunity"), (ImportCount{.kind = "Opportunity", .found = 3, .imported = 3}));
    ASSERT_EQ(result.problems.size(), 1U);
    EXPECT_EQ(result.problems[0].file, folder / "people" / "broken.vcf");
    EXPECT_EQ(result.problems[0].line, 1);

    const std::string before = dumpOf(file());
    writeText(folder / "people" / "Ada.vcf", "BEGIN:VCARD\nVERSION:3.0\nFN:Ada X\nN:X;Ada;;;\nNOTE:New\nEND:VCARD\n");
    const ImportResult again = valueFrom(imports.previewImport(paths));
    EXPECT_EQ(dumpOf(file()), before);
    EXPECT_EQ(countIn(again, "cards"),
              (ImportCount{.kind = "cards", .found = 4, .imported = 1, .repeated = 2, .broken = 1}));
    EXPECT_EQ(countIn(again, "Opportunity"), (ImportCount{.kind = "Opportunity", .found = 3, .repeated = 3}));
    // Who asks for what there is not hears so, and can ask again.
    EXPECT_EQ(refusalIn(failureFrom(imports.importFiles({folder / "none"}))),
              (folder / "none").native() + ": cannot be opened: No such file or directory");
    EXPECT_THAT(valueFrom(imports.fetchFileTypes()), Contains("vcf"));
}

TEST_F(ImportServices, tellHowFarTheyAre) {
    (void)valueFrom(imports.importFiles({folder / "export"}));
    std::size_t checkers = 0;
    const auto watching =
        served[services::permissions].observePermissionChecker().sink([&](const PermissionChecker&) { ++checkers; });
    std::vector<ProgressSnapshot> progress;
    const auto measuring =
        imports.observeProgress().sink([&](const ProgressSnapshot& snapshot) { progress.push_back(snapshot); });
    (void)valueFrom(imports.importFiles(paths));
    ASSERT_GE(progress.size(), 8U);
    EXPECT_TRUE(std::ranges::is_sorted(progress, {}, &ProgressSnapshot::completedUnitCount));
    EXPECT_EQ(progress.front().totalUnitCount, 3 + 2 * 4);
    EXPECT_EQ(progress.back().fractionCompleted, 1);
    // Nobody's permissions have changed.
    EXPECT_EQ(checkers, 1U);
    EXPECT_EQ(valueFrom(served[services::contacts].fetchContacts({})).total, 3U);
}

TEST_F(ImportServices, stopAnImportAtAnyStep) {
    (void)valueFrom(imports.importFiles({folder / "export"}));
    const std::string before = dumpOf(file());
    writeExport(folder / "export", edited("sales_pipeline.csv", "Prospecting,,,", "Engaging,2017-01-01,,"));
    std::size_t steps = 0;
    std::size_t stopAt = 1;
    std::optional<UpdateError> nested;
    const auto measuring = imports.observeProgress().sink([&](const ProgressSnapshot&) {
        if (++steps != stopAt) return;
        nested = failureFrom(imports.importFiles(paths));
        imports.cancelImport();
    });
    // The last step is that of the last entry.
    for (;; ++stopAt) {
        steps = 0;
        const auto failure = failureFrom(imports.importFiles(paths));
        if (!failure) break;
        ASSERT_TRUE(failure->underlyingError());
        const auto* reason = failure->underlyingError()->as<ReadError>();
        ASSERT_NE(reason, nullptr);
        EXPECT_EQ(*reason, ReadError::cancelled());
        EXPECT_EQ(refusalIn(nested), "another import is under way");
        EXPECT_EQ(dumpOf(file()), before);
    }
    EXPECT_EQ(stopAt, 4U + 3U + 3U + 1U);
    EXPECT_NE(dumpOf(file()), before);
}

TEST_F(ImportServices, leaveTheDatabaseOfAnotherProgramWhenTheyAreGivenUp) {
    for (const bool isPreview : {true, false}) {
        SCOPED_TRACE(isPreview);
        std::filesystem::remove(file());
        std::string made;
        const auto measuring = imports.observeProgress().sink([&](const ProgressSnapshot& snapshot) {
            // The last step: the database of this import is as good as finished.
            if (snapshot.fractionCompleted < 1) return;
            ASSERT_EQ(kestrel({"import", folder / "people" / "Ada.vcf", "--database", file()}).exitCode, 0);
            made = dumpOf(file());
            if (!isPreview) imports.cancelImport();
        });
        const auto given =
            isPreview ? failureFrom(imports.previewImport(paths)) : failureFrom(imports.importFiles(paths));
        EXPECT_EQ(given.has_value(), !isPreview);
        ASSERT_NE(made, "");
        EXPECT_EQ(dumpOf(file()), made);
    }
}

}  // namespace
}  // namespace kestrel::host::test
