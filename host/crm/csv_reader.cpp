#include <csv.h>
#include <fmt/format.h>
#include <host/crm/csv_reader.h>
#include <host/terminal/file.h>
#include <kestrel/coding/utf8.h>

#include <algorithm>
#include <new>
#include <utility>

namespace kestrel::host {
namespace {

/// The parser of libcsv, fed line by line: it skips empty lines and counts none, and a field in quotes may go over
/// several lines.
class LineParser {
  public:
    explicit LineParser(const std::filesystem::path& file) : file_(file) {
        if (csv_init(&parser_, CSV_STRICT | CSV_STRICT_FINI) != 0) throw std::bad_alloc();
        // A line's end is the line feed alone; the carriage return before it is taken off with it.
        csv_set_term_func(&parser_, [](unsigned char c) { return c == CSV_LF ? 1 : 0; });
    }
    ~LineParser() { csv_free(&parser_); }
    LineParser(const LineParser&) = delete;
    LineParser& operator=(const LineParser&) = delete;

    /// Reads the next line, given without its end.
    void read(std::string_view line) {
        ++line_;
        if (!isInsideRow_) rowStart_ = line_;
        if (const std::size_t valid = validUTF8Prefix(line); valid != line.size()) {
            throw rowFailure(file_, line_, fmt::format("is not valid UTF-8 from byte {} of the line on", valid + 1));
        }
        const std::size_t before = rows_.size();
        feed(line);
        feed("\n");
        // A line that ends no row is empty, or a quote is open at its end.
        isInsideRow_ = rows_.size() == before && (isInsideRow_ || line.find_first_not_of(" \t") != line.npos);
    }
    /// Takes the rows that were read. Nothing may follow.
    std::vector<CSVRow> finish() {
        if (csv_fini(&parser_, onField, onRow, this) != 0)
            throw rowFailure(file_, rowStart_, "a quote is never closed");
        return std::move(rows_);
    }

  private:
    void feed(std::string_view text) {
        if (csv_parse(&parser_, text.data(), text.size(), onField, onRow, this) == text.size()) return;
        if (csv_error(&parser_) != CSV_EPARSE) throw std::bad_alloc();
        throw rowFailure(file_, rowStart_, "a quote stands inside a field, or something behind a closing quote");
    }

    static void onField(void* field, std::size_t size, void* self) {
        static_cast<LineParser*>(self)->fields_.emplace_back(static_cast<const char*>(field), size);
    }
    static void onRow(int /*terminator*/, void* self) {
        auto& parser = *static_cast<LineParser*>(self);
        parser.rows_.push_back({.line = parser.rowStart_, .fields = std::exchange(parser.fields_, {})});
    }

    const std::filesystem::path& file_;
    csv_parser parser_{};
    std::size_t line_ = 0;
    std::size_t rowStart_ = 1;
    bool isInsideRow_ = false;
    std::vector<std::string> fields_;
    std::vector<CSVRow> rows_;
};

}  // namespace

Failure rowFailure(const std::filesystem::path& file, std::size_t line, std::string_view reason) {
    return Failure(fmt::format("{}: row {}: {}", file.native(), line, reason));
}

std::vector<CSVRow> readCSV(const std::filesystem::path& file, std::span<const std::string_view> header) {
    constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";
    const std::string text = readFile(file);
    std::string_view rest = text;
    if (rest.starts_with(byteOrderMark)) rest.remove_prefix(byteOrderMark.size());
    LineParser parser(file);
    while (!rest.empty()) {
        std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        if (line.ends_with('\r')) line.remove_suffix(1);
        parser.read(line);
    }
    std::vector<CSVRow> rows = parser.finish();
    if (rows.empty() || !std::ranges::equal(rows.front().fields, header)) {
        throw rowFailure(file, rows.empty() ? 1 : rows.front().line,
                         fmt::format("expected the header {}", fmt::join(header, ",")));
    }
    rows.erase(rows.begin());
    for (const CSVRow& row : rows) {
        if (row.fields.size() == header.size()) continue;
        throw rowFailure(file, row.line,
                         fmt::format("has {} fields where the header has {}", row.fields.size(), header.size()));
    }
    return rows;
}

}  // namespace kestrel::host
