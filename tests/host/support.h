#pragma once

#include "../temporary_folder.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fcntl.h>
#include <host/terminal/file.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// What the tests of the host share: folders of their own, the command as a child process, and the shipped export as
/// plain rows, read without the host's own reader.
namespace kestrel::host::test {

using Path = std::filesystem::path;
using kestrel::test::TemporaryFolder;

inline void writeText(const Path& file, std::string_view text) {
    std::ofstream(file, std::ios::binary) << text;
}

struct Outcome {
    int exitCode{};
    std::string output{};
    std::string errors{};
};

struct Conditions {
    std::string input{};
    /// Of the main thread, in KiB.
    std::optional<int> stackLimit{};
    /// Beside, and instead of, those of the test itself.
    std::map<std::string, std::string> environment{};
    /// A part of a shell's command line behind the command, such as "| head -1".
    std::string tail{};
};

/// Runs `kestrel` with the arguments. The exit code of a process that a signal ended is 128 and the signal's number.
inline Outcome kestrel(const std::vector<std::string>& arguments, const Conditions& conditions = {}) {
    const TemporaryFolder folder;
    writeText(folder / "input", conditions.input);
    std::string script = conditions.stackLimit ? "ulimit -s " + std::to_string(*conditions.stackLimit) + "; " : "";
    for (const auto& [name, value] : conditions.environment)
        script.append("export ").append(name).append("='").append(value).append("'; ");
    script += conditions.tail.empty() ? R"(exec "$0" "$@")" : R"("$0" "$@" )" + conditions.tail;
    std::vector<std::string> words{"sh", "-c", script, KESTREL_COMMAND};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> raw;
    for (std::string& word : words)
        raw.push_back(word.data());
    raw.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    const auto redirect = [&](int descriptor, const char* name, int flags) {
        posix_spawn_file_actions_addopen(&actions, descriptor, (folder / name).c_str(), flags, 0600);
    };
    redirect(STDIN_FILENO, "input", O_RDONLY);
    redirect(STDOUT_FILENO, "output", O_WRONLY | O_CREAT | O_TRUNC);
    redirect(STDERR_FILENO, "errors", O_WRONLY | O_CREAT | O_TRUNC);
    pid_t child = 0;
    const int problem = ::posix_spawn(&child, "/bin/sh", &actions, nullptr, raw.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (problem != 0) throw std::runtime_error("the command cannot be started");
    int status = 0;
    ::waitpid(child, &status, 0);
    return {.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
            .output = readFile(folder / "output"),
            .errors = readFile(folder / "errors")};
}

inline const Path shippedExport = Path(KESTREL_SOURCE_DIR) / "data" / "crm-sales-opportunities";

/// The fields of a file without quotes, line by line, the header first.
inline std::vector<std::vector<std::string>> plainRows(const Path& file) {
    std::vector<std::vector<std::string>> rows;
    std::ifstream stream(file);
    for (std::string line; std::getline(stream, line);) {
        if (line.ends_with('\r')) line.pop_back();
        std::vector<std::string> fields(1);
        for (const char c : line) {
            if (c == ',') {
                fields.emplace_back();
            } else {
                fields.back() += c;
            }
        }
        rows.push_back(std::move(fields));
    }
    return rows;
}

/// A deal of the shipped export as its file has it, with what the other files add.
struct PlainDeal {
    std::string id, agent, product, account, stage, engageDate, closeDate;
    double value{};
    std::string office, series;
    double price{};
    /// Its place in the file.
    std::size_t row{};

    [[nodiscard]] std::string title() const { return account.empty() ? product : product + " for " + account; }
};

inline std::vector<PlainDeal> plainDeals() {
    std::map<std::string, std::string> offices;
    for (const auto& row : plainRows(shippedExport / "sales_teams.csv"))
        offices[row[0]] = row[2];
    std::map<std::string, std::vector<std::string>> products;
    for (const auto& row : plainRows(shippedExport / "products.csv"))
        products[row[0]] = row;
    std::vector<PlainDeal> deals;
    auto rows = plainRows(shippedExport / "sales_pipeline.csv");
    for (auto row = rows.begin() + 1; row != rows.end(); ++row) {
        auto& fields = *row;
        const std::string product = fields[2] == "GTXPro" ? "GTX Pro" : fields[2];
        deals.push_back({fields[0], fields[1], product, fields[3], fields[4], fields[5], fields[6],
                         fields[7].empty() ? 0 : std::stod(fields[7]), offices.at(fields[1]), products.at(product)[1],
                         std::stod(products.at(product)[2]), deals.size()});
    }
    return deals;
}

/// A database with the shipped export.
class ImportedDatabase {
  public:
    ImportedDatabase() {
        const Outcome outcome = kestrel({"import", shippedExport, "--database", path()});
        if (outcome.exitCode != 0) throw std::runtime_error("import: " + outcome.errors);
    }
    [[nodiscard]] Path path() const { return folder_ / "crm.db"; }

  private:
    TemporaryFolder folder_;
};

/// An export of a few rows, by file.
using Files = std::map<std::string, std::string>;
inline const Files smallExport{
    {"accounts.csv",
     "account,sector,year_established,revenue,employees,office_location,subsidiary_of\n"
     "Cancity,retail,2001,718.62,2448,United States,\n"
     "Isdom,medical,2002,3178.24,4540,Philipines,Cancity\n"},
    {"products.csv", "product,series,sales_price\nGTX Pro,GTX,4821\nMG Special,MG,55\n"},
    {"sales_teams.csv",
     "sales_agent,manager,regional_office\nMoses Frase,Dustin Brinkmann,Central\nDonn Cantrell,Rocco Neubert,East\n"},
    {"sales_pipeline.csv",
     "opportunity_id,sales_agent,product,account,deal_stage,engage_date,close_date,close_value\n"
     "A1,Moses Frase,GTX Pro,Cancity,Won,2016-10-20,2017-03-01,1054\n"
     "A2,Donn Cantrell,MG Special,,Prospecting,,,\n"
     "A3,Donn Cantrell,GTXPro,Isdom,Engaging,2016-10-25,,\n"}};

inline void writeExport(const Path& folder, const Files& files) {
    std::filesystem::create_directories(folder);
    for (const auto& [name, text] : files)
        writeText(folder / name, text);
}

/// The small export with one text of one file replaced.
inline Files edited(const std::string& file, std::string_view before, std::string_view after) {
    Files files = smallExport;
    std::string& text = files.at(file);
    const auto at = text.find(before);
    if (at == text.npos) throw std::runtime_error("the export does not contain " + std::string(before));
    text.replace(at, before.size(), after);
    return files;
}

/// Everything in a database as text: each table's rows in the order of their keys.
inline std::string dumpOf(const Path& file) {
    SQLite::Database database(file, SQLite::OPEN_READONLY);
    SQLite::Statement tables(database, "SELECT name FROM sqlite_schema WHERE type = 'table' ORDER BY name");
    std::string dump;
    while (tables.executeStep()) {
        const std::string table = tables.getColumn(0).getString();
        SQLite::Statement rows(database, "SELECT * FROM \"" + table + "\" ORDER BY 1, 2");
        while (rows.executeStep()) {
            dump += table;
            for (int i = 0; i < rows.getColumnCount(); ++i)
                dump += " | " + rows.getColumn(i).getString();
            dump += '\n';
        }
    }
    return dump;
}

}  // namespace kestrel::host::test
