#include <fmt/format.h>
#include <host/crm/crm_export.h>
#include <host/failure.h>
#include <host/people/file_text.h>
#include <host/people/personal_files.h>

#include <algorithm>
#include <optional>
#include <set>
#include <system_error>

namespace kestrel::host {
namespace {

namespace fs = std::filesystem;

std::optional<PersonalFileKind> kindOf(const fs::path& file) {
    const std::string extension = inLowerCase(file.extension().native());
    if (extension == ".vcf") return PersonalFileKind::cards;
    if (extension == ".ics") return PersonalFileKind::calendar;
    if (extension == ".eml") return PersonalFileKind::message;
    return std::nullopt;
}

/// The files of known kinds in a folder and below it, by their names.
std::vector<PersonalFile> filesIn(const fs::path& folder) {
    std::vector<PersonalFile> files;
    std::error_code problem;
    auto entry = fs::recursive_directory_iterator(folder, problem);
    for (; !problem && entry != fs::recursive_directory_iterator(); entry.increment(problem)) {
        std::error_code ignored;
        const auto kind = kindOf(entry->path());
        if (kind && entry->is_regular_file(ignored)) files.push_back({.kind = *kind, .path = entry->path()});
    }
    if (problem) throw Failure(fmt::format("{}: cannot be read: {}", folder.native(), problem.message()));
    std::ranges::sort(files, {}, &PersonalFile::path);
    return files;
}

}  // namespace

ImportPaths importPathsOf(const std::vector<fs::path>& paths) {
    ImportPaths found;
    std::set<fs::path> seen;
    const auto isFirst = [&](const fs::path& path) {
        std::error_code problem;
        const fs::path absolute = fs::canonical(path, problem);
        return seen.insert(problem ? path : absolute).second;
    };
    for (const fs::path& path : paths) {
        const std::string& text = path.native();
        std::error_code problem;
        const fs::file_status status = fs::status(path, problem);
        if (!fs::exists(status)) throw Failure(fmt::format("{}: cannot be opened: {}", text, problem.message()));
        if (!fs::is_directory(status)) {
            const auto kind = kindOf(path);
            if (!kind) {
                throw Failure(fmt::format(
                    "{}: is of no known kind: .vcf, .ics and .eml files can be imported, and folders of them, and "
                    "the folder of a CRM export",
                    text));
            }
            if (isFirst(path)) found.files.push_back({.kind = *kind, .path = path});
            continue;
        }
        const bool isExport = hasCRMExport(path);
        if (isExport && isFirst(path)) found.exports.push_back(path);
        const auto files = filesIn(path);
        if (files.empty() && !isExport) {
            throw Failure(fmt::format(
                "{}: has nothing to import: no .vcf, .ics or .eml files, and no file of a CRM export", text));
        }
        for (const PersonalFile& file : files) {
            if (isFirst(file.path)) found.files.push_back(file);
        }
    }
    return found;
}

}  // namespace kestrel::host
