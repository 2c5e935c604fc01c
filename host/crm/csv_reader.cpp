#include <csv.h>
#include <fmt/format.h>
#include <host/crm/csv_reader.h>
#include <host/terminal/file.h>
#include <kestrel/coding/utf8.h>

#include <algorithm>
#include <new>

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
        if (!isInsideRow()) rowStart_ = line_;
        if (const std::size_t valid = validUTF8Prefix(line); valid != line.size()) {
            throw rowFailure(file_, line_, fmt::format("is not valid UTF-8 from byte {} of the line on", valid + 1));
        }
        feed(line);
        feed("\n");
    }
    /// Takes the rows that were read. Nothing may follow.
    std::vector<CSVRow> finish() {
        if (csv_fini(&parser_, onField, onRow, this) != 0)
            throw rowFailure(file_, rowStart_, "a quote is never closed");
        return std::move(rows_);
    }

  private:
    [[nodiscard]] bool isInsideRow() const { return isInsideRow_; }

    void feed(std::string_view text) {
        if (text.empty()) return;
        isInsideRow_ = true;
        if (csv_parse(&parser_, text.data(), text.size(), onField, onRow, this) == text.size()) {
            // Behind the end of a row, and behind an empty line, a new row may start.
            if (text == "\n" && (rowEnded_ || fields_.empty())) isInsideRow_ = parser_.quoted != 0;
            rowEnded_ = false;
            return;
        }
        if (csv_error(&parser_) == CSV_ENOMEM) throw std::bad_alloc();
        throw rowFailure(file_, rowStart_, "a quote stands inside a field, or something behind a closing quote");
    }

    static void onField(void* field, std::size_t size, void* self) {
        static_cast<LineParser*>(self)->fields_.emplace_back(static_cast<const char*>(field), size);
    }
    static void onRow(int /*terminator*/, void* self) {
        auto& parser = *static_cast<LineParser*>(self);
        parser.rows_.push_back({.line = parser.rowStart_, .fields = std::exchange(parser.fields_, {})});
        parser.rowEnded_ = true;
    }

    const std::filesystem::path& file_;
    csv_parser parser_{};
    std::size_t line_ = 0;
    std::size_t rowStart_ = 1;
    bool isInsideRow_ = false;
    bool rowEnded_ = false;
    std::vector<std::string> fields_;
    std::vector<CSVRow> rows_;
};

}  // namespace
}  // namespace kestrel::host
