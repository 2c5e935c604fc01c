#pragma once

#include <kestrel/services/import_service.h>
#include <kestrel/testing/stub.h>
#include <utility>

namespace kestrel {

/// An ImportService that answers as a test prepares it, and keeps what it is asked.
class RecordingImportService final : public ImportService {
  public:
    struct Stubs {
        Stub<AnyPublisher<std::vector<std::string>>()> fetchFileTypes;
        Stub<AnyPublisher<ImportResult, UpdateError>(std::vector<std::filesystem::path>)> previewImport;
        Stub<AnyPublisher<ImportResult, UpdateError>(std::vector<std::filesystem::path>)> importFiles;
        Stub<AnyPublisher<ProgressSnapshot>()> observeProgress;
        Stub<void()> cancelImport;
    };
    mutable Stubs on{};

    [[nodiscard]] AnyPublisher<std::vector<std::string>> fetchFileTypes() override { return on.fetchFileTypes(); }
    [[nodiscard]] AnyPublisher<ImportResult, UpdateError> previewImport(
        std::vector<std::filesystem::path> paths) override {
        return on.previewImport(std::move(paths));
    }
    [[nodiscard]] AnyPublisher<ImportResult, UpdateError> importFiles(
        std::vector<std::filesystem::path> paths) override {
        return on.importFiles(std::move(paths));
    }
    [[nodiscard]] AnyPublisher<ProgressSnapshot> observeProgress() override { return on.observeProgress(); }
    void cancelImport() override { on.cancelImport(); }
};

}  // namespace kestrel
