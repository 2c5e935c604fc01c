#include <fmt/format.h>
#include <host/crm/crm_export.h>
#include <host/crm/csv_reader.h>
#include <host/terminal/text.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <span>
#include <system_error>
#include <utility>

namespace kestrel::host {
namespace {

constexpr std::string_view accountsFile = "accounts.csv";
constexpr std::string_view productsFile = "products.csv";
constexpr std::string_view teamsFile = "sales_teams.csv";
constexpr std::string_view pipelineFile = "sales_pipeline.csv";

constexpr std::array<std::string_view, 7> accountsHeader{"account",   "sector",          "year_established", "revenue",
                                                         "employees", "office_location", "subsidiary_of"};
constexpr std::array<std::string_view, 3> productsHeader{"product", "series", "sales_price"};
constexpr std::array<std::string_view, 3> teamsHeader{"sales_agent", "manager", "regional_office"};
constexpr std::array<std::string_view, 8> pipelineHeader{"opportunity_id", "sales_agent", "product",    "account",
                                                         "deal_stage",     "engage_date", "close_date", "close_value"};

constexpr std::array<std::pair<std::string_view, CRMExport::Stage>, 4> stages{
    {{"Prospecting", CRMExport::Stage::prospecting},
     {"Engaging", CRMExport::Stage::engaging},
     {"Won", CRMExport::Stage::won},
     {"Lost", CRMExport::Stage::lost}}};

constexpr std::array<CRMExport::Mending, 3> knownMendings{
    {{.file = accountsFile, .column = "sector", .wrong = "technolgy", .right = "technology"},
     {.file = accountsFile, .column = "office_location", .wrong = "Philipines", .right = "Philippines"},
     {.file = pipelineFile, .column = "product", .wrong = "GTXPro", .right = "GTX Pro"}}};

/// Reads the fields of one row, each by the rules of its column.
class RowReader {
  public:
    RowReader(const std::filesystem::path& file, std::span<const std::string_view> header, CSVRow& row,
              std::vector<CRMExport::Mending>& mendings)
        : file_(file), header_(header), row_(row), mendings_(mendings) {}

    [[nodiscard]] std::size_t line() const { return row_.line; }
    [[noreturn]] void refuse(std::string_view reason) const { throw rowFailure(file_, row_.line, reason); }

    /// A text, with a known misspelling mended.
    std::string text(std::size_t column) {
        std::string& field = row_.fields[column];
        for (CRMExport::Mending& mending : mendings_) {
            if (mending.column != header_[column] || mending.wrong != field || file_.filename() != mending.file)
                continue;
            ++mending.rows;
            field = mending.right;
            break;
        }
        return field;
    }
    /// A text that may not be empty.
    std::string name(std::size_t column) {
        std::string value = text(column);
        if (value.empty()) refuse(fmt::format("{} is empty", header_[column]));
        return value;
    }
    /// A number that is not negative, written in digits and at most one decimal point. Empty when the field is.
    std::optional<double> number(std::size_t column) {
        const std::string& field = row_.fields[column];
        if (field.empty()) return std::nullopt;
        double value = 0;
        const char* const end = field.data() + field.size();
        const auto [stop, problem] = std::from_chars(field.data(), end, value, std::chars_format::fixed);
        const bool isDecimal = field.find_first_not_of("0123456789.") == field.npos;
        if (!isDecimal || problem != std::errc() || stop != end) refuse(unusable(column, "a number"));
        return value;
    }
    /// As `number`, without decimals.
    std::optional<std::int64_t> wholeNumber(std::size_t column) {
        const std::string& field = row_.fields[column];
        if (field.empty()) return std::nullopt;
        std::int64_t value = 0;
        const char* const end = field.data() + field.size();
        const auto [stop, problem] = std::from_chars(field.data(), end, value);
        if (problem != std::errc() || stop != end || field.front() == '-') refuse(unusable(column, "a whole number"));
        return value;
    }
    /// Midnight UTC of a day such as 2017-03-01. Empty when the field is.
    std::optional<Date> date(std::size_t column) {
        constexpr std::size_t length = 10;
        const std::string& field = row_.fields[column];
        if (field.empty()) return std::nullopt;
        const auto day = field.size() == length ? Date::parseISO8601(field) : std::nullopt;
        if (!day) refuse(unusable(column, "a date such as 2017-03-01"));
        return day;
    }
    /// The field as it stands.
    [[nodiscard]] const std::string& raw(std::size_t column) const { return row_.fields[column]; }

    [[nodiscard]] std::string unusable(std::size_t column, std::string_view expected) const {
        return fmt::format("{} \"{}\" is not {}", header_[column], row_.fields[column], expected);
    }
    [[nodiscard]] std::string unknown(std::size_t column, std::string_view list) const {
        return fmt::format("{} \"{}\" is not in {}", header_[column], row_.fields[column], list);
    }

  private:
    const std::filesystem::path& file_;
    std::span<const std::string_view> header_;
    CSVRow& row_;
    std::vector<CRMExport::Mending>& mendings_;
};

/// The names in a file's first column, which tell its rows apart.
class UniqueNames {
  public:
    /// Takes the name of the next row; a name that is there already is refused.
    void add(const RowReader& row, std::string_view column, const std::string& name) {
        const auto [place, isNew] = rows_.try_emplace(name, Row{.index = rows_.size(), .line = row.line()});
        if (!isNew) row.refuse(fmt::format("{} \"{}\" is already in row {}", column, name, place->second.line));
    }
    [[nodiscard]] bool contains(const std::string& name) const { return rows_.contains(name); }
    /// The place of the name among those that were added.
    [[nodiscard]] std::optional<std::size_t> indexOf(const std::string& name) const {
        const auto found = rows_.find(name);
        if (found == rows_.end()) return std::nullopt;
        return found->second.index;
    }

  private:
    struct Row {
        std::size_t index;
        std::size_t line;
    };
    std::map<std::string, Row> rows_;
};

class ExportReader {
  public:
    explicit ExportReader(std::filesystem::path folder) : folder_(std::move(folder)) {
        export_.mendings.assign(knownMendings.begin(), knownMendings.end());
    }

    CRMExport read() {
        readAccounts();
        readProducts();
        readTeams();
        readPipeline();
        return std::move(export_);
    }

  private:
    /// Calls `take` with a reader for each row of a file.
    template <class Take>
    void forEachRow(std::string_view name, std::span<const std::string_view> header, Take&& take) {
        const std::filesystem::path file = folder_ / name;
        for (CSVRow& row : readCSV(file, header)) {
            RowReader reader(file, header, row, export_.mendings);
            take(reader);
        }
    }

    void readAccounts() {
        forEachRow(accountsFile, accountsHeader, [&](RowReader& row) {
            (void)row.wholeNumber(2);
            (void)row.number(3);
            CRMExport::Account account{.name = row.name(0),
                                       .sector = row.name(1),
                                       .yearEstablished = row.raw(2),
                                       .revenue = row.raw(3),
                                       .employees = row.wholeNumber(4).value_or(0),
                                       .officeLocation = row.name(5),
                                       .subsidiaryOf = row.text(6)};
            accounts_.add(row, accountsHeader[0], account.name);
            export_.accounts.push_back(std::move(account));
        });
    }

    void readProducts() {
        forEachRow(productsFile, productsHeader, [&](RowReader& row) {
            CRMExport::Product product{.name = row.name(0), .series = row.name(1)};
            const auto price = row.number(2);
            if (!price) row.refuse(row.unusable(2, "a number"));
            product.salesPrice = *price;
            products_.add(row, productsHeader[0], product.name);
            export_.products.push_back(std::move(product));
        });
    }

    void readTeams() {
        forEachRow(teamsFile, teamsHeader, [&](RowReader& row) {
            CRMExport::Agent agent{.name = row.name(0), .manager = row.name(1), .regionalOffice = row.name(2)};
            agents_.add(row, teamsHeader[0], agent.name);
            addPerson(row, agent.name);
            addPerson(row, agent.manager);
            export_.agents.push_back(std::move(agent));
        });
    }

    /// Notes who signs in by which name: two people cannot have the same.
    void addPerson(const RowReader& row, const std::string& name) {
        const auto [place, isNew] = people_.try_emplace(usernameOf(name), name);
        if (!isNew && (place->second != name || name == administratorName)) {
            row.refuse(
                fmt::format("\"{}\" would sign in as \"{}\", which is \"{}\"", name, place->first, place->second));
        }
    }

    void readPipeline() {
        UniqueNames ids;
        forEachRow(pipelineFile, pipelineHeader, [&](RowReader& row) {
            CRMExport::Deal deal{.id = row.name(0),
                                 .agent = row.text(1),
                                 .account = row.text(3),
                                 .engageDate = row.date(5),
                                 .closeDate = row.date(6),
                                 .closeValue = row.number(7).value_or(0)};
            ids.add(row, pipelineHeader[0], deal.id);
            if (!agents_.contains(deal.agent)) row.refuse(row.unknown(1, teamsFile));
            const auto product = products_.indexOf(row.text(2));
            if (!product) row.refuse(row.unknown(2, productsFile));
            deal.product = *product;
            if (!deal.account.empty() && !accounts_.contains(deal.account)) row.refuse(row.unknown(3, accountsFile));
            const std::string stageName = row.text(4);
            const auto* stage =
                std::ranges::find(stages, stageName, &std::pair<std::string_view, CRMExport::Stage>::first);
            if (stage == stages.end()) row.refuse(row.unusable(4, "Prospecting, Engaging, Won or Lost"));
            deal.stage = stage->second;
            export_.deals.push_back(std::move(deal));
        });
    }

    std::filesystem::path folder_;
    CRMExport export_;
    UniqueNames accounts_;
    UniqueNames agents_;
    UniqueNames products_;
    /// Full names by the names to sign in with.
    std::map<std::string, std::string> people_{{usernameOf(administratorName), std::string(administratorName)}};
};

}  // namespace

std::string usernameOf(std::string_view name) {
    std::string username = foldedCase(name);
    std::ranges::replace(username, ' ', '.');
    return username;
}

bool hasCRMExport(const std::filesystem::path& folder) {
    return std::ranges::any_of(std::array{accountsFile, productsFile, teamsFile, pipelineFile}, [&](auto file) {
        std::error_code ignored;
        return std::filesystem::exists(folder / file, ignored);
    });
}

CRMExport readCRMExport(const std::filesystem::path& folder) {
    return ExportReader(folder).read();
}

}  // namespace kestrel::host
