#pragma once

#include <kestrel/foundation/date.h>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel::host {

/// A CRM export of four files of comma-separated values, as it was read: every row is checked, every name that a row
/// refers to is there, and known misspellings are mended.
struct CRMExport {
    /// A row of accounts.csv.
    struct Account {
        std::string name{};
        std::string sector{};
        /// A year; empty when it is not known.
        std::string yearEstablished{};
        /// A year's revenue in millions of US dollars; empty when it is not known.
        std::string revenue{};
        std::int64_t employees{};
        std::string officeLocation{};
        /// The parent company's name, or empty.
        std::string subsidiaryOf{};
    };
    /// A row of products.csv.
    struct Product {
        std::string name{};
        std::string series{};
        double salesPrice{};
    };
    /// A row of sales_teams.csv.
    struct Agent {
        std::string name{};
        std::string manager{};
        std::string regionalOffice{};
    };
    enum class Stage : std::uint8_t { prospecting, engaging, won, lost };
    /// A row of sales_pipeline.csv.
    struct Deal {
        std::string id{};
        std::string agent{};
        /// The place of its product in `products`.
        std::size_t product{};
        /// The company's name, or empty.
        std::string account{};
        Stage stage{};
        /// Midnight UTC, as all dates of an export.
        std::optional<Date> engageDate{};
        std::optional<Date> closeDate{};
        /// In US dollars; 0 when the row says nothing.
        double closeValue{};
    };
    /// A known misspelling, and how many rows had it.
    struct Mending {
        std::string_view file;
        std::string_view column;
        std::string_view wrong;
        std::string_view right;
        std::size_t rows{};
    };

    std::vector<Account> accounts{};
    std::vector<Product> products{};
    std::vector<Agent> agents{};
    std::vector<Deal> deals{};
    /// All known misspellings, those that were not met included.
    std::vector<Mending> mendings{};
};

/// The name to sign in with that a person gets: the name in lower case with dots for blanks, "moses.frase".
[[nodiscard]] std::string usernameOf(std::string_view name);

/// The name of the user who administers an imported database and is in no file.
inline constexpr std::string_view administratorName = "Administrator";

/// Whether a folder has one of the files of an export in it.
[[nodiscard]] bool hasCRMExport(const std::filesystem::path& folder);

/// Reads the export in a folder. The first row that is broken, or contradicts another, is a Failure that names file,
/// row and reason; so is a file that is missing.
[[nodiscard]] CRMExport readCRMExport(const std::filesystem::path& folder);

}  // namespace kestrel::host
