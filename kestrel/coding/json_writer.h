#pragma once

#include <kestrel/coding/coding_error.h>
#include <kestrel/coding/coding_options.h>
#include <kestrel/foundation/data.h>
#include <kestrel/foundation/date.h>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace kestrel {

/// Writes JSON into a text: compact, keys in the order in which they are given. Codecs call it; what they have written
/// is taken back as a whole when one of them fails.
class JSONWriter {
  public:
    /// Appends to `out`, which must outlive the writer, not be touched until `finish`, and not be what is written.
    JSONWriter(std::string& out, const CodingOptions& options);
    JSONWriter(const JSONWriter&) = delete;
    JSONWriter& operator=(const JSONWriter&) = delete;
    /// What was not finished is taken back.
    ~JSONWriter() {
        if (!finished_) buffer_->resize(before_);
    }

    /// Those that it was made with.
    [[nodiscard]] const CodingOptions& options() const noexcept { return options_; }

    // Values. Each fails when the value has no JSON form: a number that is not finite, a text that is not UTF-8, a date
    // that the strategy cannot express.
    /// A text, escaped.
    bool write(std::string_view value);
    /// A text, escaped.
    bool write(const std::string& value);
    /// A text that ends with a zero, escaped.
    bool write(const char* value) { return write(std::string_view(value)); }
    /// A number, in decimal.
    bool write(std::int64_t value);
    /// A number that reads back bit for bit. Fails for one that is not finite.
    bool write(double value);
    /// Booleans only: what merely converts to one, such as a pointer, is not written as one.
    bool write(std::same_as<bool> auto value) {
        append(value ? std::string_view("true") : std::string_view("false"));
        return true;
    }
    /// In the form of the options.
    bool write(Date value);
    /// A text of base64.
    bool write(const Data& value);
    /// Null.
    void writeNull() { append("null"); }

    // Objects and arrays. A member is its key and then its value; an element is a comma and then its value. Closing
    // puts the opening character over the first comma.
    /// Starts an object or an array: where it starts, for closing it.
    [[nodiscard]] std::size_t open() const noexcept { return static_cast<std::size_t>(cursor_ - buffer_->data()); }
    /// A key as the ready text `,"key":`.
    template <std::size_t N>
    [[gnu::always_inline]] void readyKey(const char (&commaKeyColon)[N]) {
        constexpr std::size_t length = N - 1;
        reserve(length);
        std::memcpy(cursor_, commaKeyColon, length);
        cursor_ += length;
    }
    /// A key that is plain enough to stand in quotes as it is.
    void key(std::string_view plainKey);
    /// Starts an element.
    void element() {
        reserve(1);
        *cursor_++ = ',';
    }
    /// Ends the object that was started there.
    void closeObject(std::size_t opened) { close(opened, '{', '}'); }
    /// Ends the array that was started there.
    void closeArray(std::size_t opened) { close(opened, '[', ']'); }
    /// Text that is JSON already.
    void append(std::string_view json) {
        reserve(json.size());
        std::memcpy(cursor_, json.data(), json.size());
        cursor_ += json.size();
    }

    /// Makes room at once for so many bytes that are likely to come. Only speed depends on it.
    void expect(std::size_t count) { reserve(count); }

    /// Trims the text to what was written.
    void finish();

    /// An error in the codec's own words; returns false.
    bool fail(std::string description, EncodingError::OffendingValue value = {});
    /// Adds a step to the path of the error that is on its way out.
    void prependKey(std::string_view key) { error_.codingPath.prepend(std::string(key)); }
    /// Adds an element to the path of the error that is on its way out.
    void prependIndex(std::size_t index) { error_.codingPath.prepend(index); }
    /// The error that a codec has reported.
    [[nodiscard]] EncodingError takeError() { return std::move(error_); }

  private:
    [[gnu::always_inline]] void reserve(std::size_t count) {
        if (static_cast<std::size_t>(limit_ - cursor_) < count) grow(count);
    }
    /// With its quotes. A text that has room for a block may be read beyond its end, up to the block's.
    template <bool hasRoomForBlock>
    bool writeText(std::string_view value);
    /// A text that has characters to escape; other than 0 when it has bytes above 0x7f.
    unsigned writeEscaped(std::string_view value);
    void writeEscape(char c);
    void grow(std::size_t count);
    void close(std::size_t opened, char opening, char closing) {
        reserve(2);
        char* const start = buffer_->data() + opened;
        if (start == cursor_) ++cursor_;
        *start = opening;
        *cursor_++ = closing;
    }

    /// What a text takes beyond its characters: two quotes, and a block that is stored whole where less of it counts.
    static constexpr std::size_t textSlack = 18;

    std::string* buffer_;
    std::size_t before_;
    char* cursor_;
    char* limit_;
    CodingOptions options_;
    EncodingError error_;
    bool finished_ = false;
};

}  // namespace kestrel
