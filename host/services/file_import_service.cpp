#include <host/services/file_import_service.h>
#include <host/services/service_results.h>

#include <algorithm>
#include <string_view>

namespace kestrel::host {
namespace {

/// Thrown through the importers when the import is to stop.
class Cancelled {};

ImportCount countOf(std::string_view kind, const EntryCounts& counts) {
    const auto number = [](std::size_t count) { return static_cast<std::int64_t>(count); };
    return {.kind = std::string(kind),
            .found = number(counts.found),
            .imported = number(counts.added + counts.changed),
            .repeated = number(counts.unchanged + counts.superseded),
            .broken = number(counts.refused)};
}

ImportResult resultOf(const ImportOutcome& outcome) {
    ImportResult result;
    for (const ImportedExport& exported : outcome.exports) {
        for (const ImportReport::Line& line : exported.report.lines) {
            const ImportCount count = countOf(line.recordName, {.found = line.added + line.changed + line.unchanged,
                                                                .added = line.added,
                                                                .changed = line.changed,
                                                                .unchanged = line.unchanged});
            const auto known = std::ranges::find(result.counts, count.kind, &ImportCount::kind);
            if (known == result.counts.end()) {
                result.counts.push_back(count);
                continue;
            }
            known->found += count.found;
            known->imported += count.imported;
            known->repeated += count.repeated;
        }
    }
    if (outcome.people) {
        for (std::size_t kind = 0; kind < entryKindCount; ++kind)
            result.counts.push_back(countOf(entryKeys[kind], outcome.people->counts[kind]));
    }
    for (const ImportProblem& problem : outcome.problems.all()) {
        result.problems.push_back({.file = problem.place.file,
                                   .line = static_cast<std::int64_t>(problem.place.line),
                                   .description = problem.message});
    }
    return result;
}

UpdateError currentImportError() {
    try {
        throw;
    } catch (const Cancelled&) {
        return UpdateError::underlyingError(ReadError::cancelled());
    } catch (...) {
        return currentUpdateError();
    }
}

}  // namespace

/// One import, from the files to the report.
class FileImportService::Run {
  public:
    explicit Run(Work& shared) : work_(shared) {
        if (work_.isRunning) throw Refusal("another import is under way");
        work_.isRunning = true;
        work_.isCancelled = false;
    }
    ~Run() { work_.isRunning = false; }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    ImportOutcome run(const std::vector<std::filesystem::path>& paths, Purpose purpose) {
        // Read and checked as a whole before the database is touched.
        ImportOutcome outcome{.paths = importPathsOf(paths)};
        for (const auto& folder : outcome.paths.exports) {
            outcome.exports.push_back({.data = readCRMExport(folder)});
            units_ += outcome.exports.back().data.deals.size();
        }
        // A file counts once for being read, and once for its entries.
        const std::size_t files = outcome.paths.files.size();
        units_ += 2 * files;
        PersonalData personal = readPersonalFiles(
            outcome.paths.files, [&](std::size_t done, std::size_t total) { tell({Step::readingFiles, done, total}); });
        completed_ = files;
        if (purpose == Purpose::storeUnlessBroken && personal.problems.refused() > 0) {
            personal.problems.sort();
            outcome.problems = std::move(personal.problems);
            return outcome;
        }
        HostContext& context = *work_.context;
        withDatabase(context.file(), [&] {
            WritingStore store(context.file());
            const auto before = store.database().getTotalChanges();
            for (auto& [data, report] : outcome.exports) {
                report = importCRM(data, store.database(), [&](std::size_t done, std::size_t total) {
                    tell({Step::importingDeals, done, total});
                });
                completed_ += data.deals.size();
            }
            if (files > 0) {
                outcome.people = importPeople(personal, store.database(), [&](std::size_t done, std::size_t total) {
                    tell({Step::importingEntries, done, total}, files);
                });
            }
            // Also what no line of the report counts, such as a new relationship between known people.
            outcome.isUnchanged = store.database().getTotalChanges() == before;
            stopIfCancelled();
            if (purpose != Purpose::preview) store.commit();
        });
        personal.problems.sort();
        outcome.problems = std::move(personal.problems);
        outcome.isComplete = true;
        return outcome;
    }

  private:
    using Step = ImportStep::Work;

    /// Tells a step, of which all together are worth so many units, or one each.
    void tell(const ImportStep& step, std::optional<std::size_t> worth = {}) {
        const std::size_t units = worth ? step.done * *worth / std::max<std::size_t>(step.total, 1) : step.done;
        work_.steps.send(step);
        work_.progress.send(
            ProgressSnapshot::of(static_cast<std::int64_t>(completed_ + units), static_cast<std::int64_t>(units_)));
        stopIfCancelled();
    }
    void stopIfCancelled() const {
        if (work_.isCancelled) throw Cancelled();
    }

    Work& work_;
    /// Of progress: all there are, and those of the work that is behind.
    std::size_t units_ = 0;
    std::size_t completed_ = 0;
};

std::shared_ptr<const ImportOutcome> FileImportService::run(Work& work, const std::vector<std::filesystem::path>& paths,
                                                            Purpose purpose) {
    auto outcome = std::make_shared<const ImportOutcome>(Run(work).run(paths, purpose));
    if (outcome->isComplete && !outcome->isUnchanged && purpose != Purpose::preview) work.context->didChange();
    return outcome;
}

AnyPublisher<std::vector<std::string>> FileImportService::fetchFileTypes() {
    return just(std::vector<std::string>{"eml", "ics", "vcf"});
}

AnyPublisher<ImportResult, UpdateError> FileImportService::previewImport(std::vector<std::filesystem::path> paths) {
    return imported(std::move(paths), Purpose::preview);
}

AnyPublisher<ImportResult, UpdateError> FileImportService::importFiles(std::vector<std::filesystem::path> paths) {
    return imported(std::move(paths), Purpose::store);
}

AnyPublisher<ImportResult, UpdateError> FileImportService::imported(std::vector<std::filesystem::path> paths,
                                                                    Purpose purpose) const {
    return answering<ImportResult, UpdateError>(
        [work = work_, paths = std::move(paths), purpose]() -> std::expected<ImportResult, UpdateError> {
            try {
                return resultOf(*run(*work, paths, purpose));
            } catch (const std::bad_alloc&) {
                throw;
            } catch (...) {
                return std::unexpected(currentImportError());
            }
        });
}

AnyPublisher<ProgressSnapshot> FileImportService::observeProgress() {
    return work_->progress.eraseToAnyPublisher();
}

void FileImportService::cancelImport() {
    work_->isCancelled = true;
}

AnyPublisher<std::shared_ptr<const ImportOutcome>, UpdateError> FileImportService::importInDetail(
    std::vector<std::filesystem::path> paths, bool isStrict) {
    using Outcome = std::shared_ptr<const ImportOutcome>;
    const Purpose purpose = isStrict ? Purpose::storeUnlessBroken : Purpose::store;
    return answering<Outcome, UpdateError>(
        [work = work_, paths = std::move(paths), purpose]() -> std::expected<Outcome, UpdateError> {
            try {
                return run(*work, paths, purpose);
            } catch (const std::bad_alloc&) {
                throw;
            } catch (...) {
                return std::unexpected(currentImportError());
            }
        });
}

AnyPublisher<ImportStep> FileImportService::observeSteps() {
    return work_->steps.eraseToAnyPublisher();
}

}  // namespace kestrel::host
