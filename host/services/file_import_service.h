#pragma once

#include <host/services/detailed_import_service.h>
#include <host/services/host_context.h>
#include <kestrel/reactive/pass_through_subject.h>
#include <kestrel/services/import_service.h>
#include <atomic>
#include <memory>
#include <utility>

namespace kestrel::host {

/// Imports CRM exports, cards, calendars and mail into a database, which is made when there is none. Nobody has to be
/// signed in.
///
/// An import is done while its publisher is subscribed to, one at a time: another one is refused while it is under way.
/// Its steps are told meanwhile, and it may be cancelled from inside of what they are told to, or from another thread.
/// A cancelled import fails with `underlyingError` of ReadError::cancelled().
///
/// A preview is an import that is taken back. In counts, "imported" are the entries that are new or say something new,
/// "repeated" those that were there; records of a CRM export count by their types.
class FileImportService final : public ImportService, public DetailedImportService {
  public:
    explicit FileImportService(std::shared_ptr<HostContext> context) : work_(std::make_shared<Work>()) {
        work_->context = std::move(context);
    }

    [[nodiscard]] AnyPublisher<std::vector<std::string>> fetchFileTypes() override;
    [[nodiscard]] AnyPublisher<ImportResult, UpdateError> previewImport(
        std::vector<std::filesystem::path> paths) override;
    [[nodiscard]] AnyPublisher<ImportResult, UpdateError> importFiles(
        std::vector<std::filesystem::path> paths) override;
    [[nodiscard]] AnyPublisher<ProgressSnapshot> observeProgress() override;
    void cancelImport() override;

    [[nodiscard]] AnyPublisher<std::shared_ptr<const ImportOutcome>, UpdateError> importInDetail(
        std::vector<std::filesystem::path> paths, bool isStrict) override;
    [[nodiscard]] AnyPublisher<ImportStep> observeSteps() override;

  private:
    /// Shared with the publishers, which may outlive the service.
    struct Work {
        std::shared_ptr<HostContext> context{};
        PassThroughSubject<ProgressSnapshot> progress{};
        PassThroughSubject<ImportStep> steps{};
        bool isRunning = false;
        std::atomic<bool> isCancelled = false;
    };
    enum class Purpose : std::uint8_t { preview, store, storeUnlessBroken };
    class Run;

    [[nodiscard]] static std::shared_ptr<const ImportOutcome> run(Work& work,
                                                                  const std::vector<std::filesystem::path>& paths,
                                                                  Purpose purpose);
    [[nodiscard]] AnyPublisher<ImportResult, UpdateError> imported(std::vector<std::filesystem::path> paths,
                                                                   Purpose purpose) const;

    std::shared_ptr<Work> work_;
};

}  // namespace kestrel::host
