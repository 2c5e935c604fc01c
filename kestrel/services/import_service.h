#pragma once

#include <kestrel/foundation/progress_snapshot.h>
#include <kestrel/reactive/publisher.h>
#include <kestrel/runtime/service_protocol.h>
#include <kestrel/services/import_result.h>
#include <kestrel/session/service_errors.h>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace kestrel {

/// Takes records from files.
class ImportService : public ServiceProtocol {
  public:
    /// The ends of the names of files that can be imported, such as "vcf".
    [[nodiscard]] virtual AnyPublisher<std::vector<std::string>> fetchFileTypes() = 0;
    /// What an import would do; nothing is stored.
    [[nodiscard]] virtual AnyPublisher<ImportResult, UpdateError> previewImport(
        std::vector<std::filesystem::path> paths) = 0;
    /// Imports files and folders: all of them or, on a failure, nothing.
    [[nodiscard]] virtual AnyPublisher<ImportResult, UpdateError> importFiles(
        std::vector<std::filesystem::path> paths) = 0;
    /// How far the import is that is under way.
    [[nodiscard]] virtual AnyPublisher<ProgressSnapshot> observeProgress() = 0;
    /// Stops the import that is under way; nothing of it is stored.
    virtual void cancelImport() = 0;
};

template <>
class Forwarding<ImportService> : public ImportService {
  public:
    [[nodiscard]] virtual std::shared_ptr<ImportService> target() const = 0;

    [[nodiscard]] AnyPublisher<std::vector<std::string>> fetchFileTypes() override {
        return target()->fetchFileTypes();
    }
    [[nodiscard]] AnyPublisher<ImportResult, UpdateError> previewImport(
        std::vector<std::filesystem::path> paths) override {
        return target()->previewImport(std::move(paths));
    }
    [[nodiscard]] AnyPublisher<ImportResult, UpdateError> importFiles(
        std::vector<std::filesystem::path> paths) override {
        return target()->importFiles(std::move(paths));
    }
    [[nodiscard]] AnyPublisher<ProgressSnapshot> observeProgress() override { return target()->observeProgress(); }
    void cancelImport() override { target()->cancelImport(); }
};

namespace services {
inline constexpr ServiceKey<ImportService> import_;
}

}  // namespace kestrel
