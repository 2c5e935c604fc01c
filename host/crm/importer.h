#pragma once

#include <SQLiteCpp/Database.h>
#include <host/crm/crm_export.h>
#include <cstddef>
#include <functional>
#include <string_view>
#include <vector>

namespace kestrel::host {

/// What an import did, by kind of record.
struct ImportReport {
    struct Line {
        /// The record's name, such as "Opportunity".
        std::string_view recordName;
        /// What people call many of them.
        std::string_view label;
        std::size_t added{};
        std::size_t changed{};
        std::size_t unchanged{};
    };
    std::vector<Line> lines{};
};

/// Told how many deals are done, of how many.
using ImportProgress = std::function<void(std::size_t done, std::size_t total)>;

/// Brings a database up to date with an export, in the caller's transaction.
///
/// Records are found again by what the export calls them (deals by their identifier, companies, people, teams, products
/// and the rest by name), and what the export says is written over them. What it does not say stays, and so do records
/// that are no longer in it. Nothing is written for a record that is as it should be.
///
/// A deal's history always tells what the export tells of it: it is the same whether a deal was imported once or after
/// each of its moves.
ImportReport importCRM(const CRMExport& exported, SQLite::Database& database, const ImportProgress& progress = {});

}  // namespace kestrel::host
