#pragma once

#include <host/crm/crm_export.h>
#include <host/crm/importer.h>
#include <host/people/people_importer.h>
#include <host/people/personal_files.h>
#include <kestrel/reactive/publisher.h>
#include <kestrel/runtime/service_protocol.h>
#include <kestrel/session/service_errors.h>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

namespace kestrel::host {

/// An export with what its import did.
struct ImportedExport {
    CRMExport data{};
    ImportReport report{};
};

/// All that there is to tell of an import.
struct ImportOutcome {
    ImportPaths paths{};
    /// In the order of `paths`.
    std::vector<ImportedExport> exports{};
    /// Absent when there were no files of cards, calendars or mail.
    std::optional<PeopleReport> people{};
    /// In the order of the files and their lines.
    ImportProblems problems{};
    /// Nothing at all had to be written.
    bool isUnchanged{};
    /// False when broken entries stopped the import, of which there are only the problems then.
    bool isComplete{};
};

/// How far an import is.
struct ImportStep {
    enum class Work : std::uint8_t {
        readingFiles,     ///< of cards, calendars and mail
        importingDeals,   ///< of one export
        importingEntries  ///< of the files
    };
    Work work{};
    std::size_t done{};
    std::size_t total{};

    friend bool operator==(const ImportStep&, const ImportStep&) = default;
};

/// Imports like ImportService, with everything that there is to tell of it.
class DetailedImportService : public ServiceProtocol {
  public:
    /// `isStrict` lets a broken card, event, to-do, journal entry or message stop the whole import.
    [[nodiscard]] virtual AnyPublisher<std::shared_ptr<const ImportOutcome>, UpdateError> importInDetail(
        std::vector<std::filesystem::path> paths, bool isStrict) = 0;
    /// Each step of the imports that are under way.
    [[nodiscard]] virtual AnyPublisher<ImportStep> observeSteps() = 0;
};

namespace host_services {
inline constexpr ServiceKey<DetailedImportService> detailedImport;
}

}  // namespace kestrel::host
