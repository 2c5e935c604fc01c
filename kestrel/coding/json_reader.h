#pragma once

#include <kestrel/coding/coding_error.h>
#include <kestrel/coding/coding_options.h>
#include <kestrel/foundation/data.h>
#include <kestrel/foundation/date.h>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace kestrel {

/// Reads one JSON document from front to back, straight into the values that codecs hand to it.
///
/// Codecs see a document twice at most. The first pass is fast and says only whether it worked. When it did not, the
/// document is checked as a whole, so that malformed text is reported as such wherever it stands; if it is well-formed,
/// a second, careful pass decodes objects member by member in the order of their declaration, takes the last value of a
/// key that is given twice, and finds the first member that cannot be read, with its path and place.
///
/// A reader never looks beyond its text and never recurses on what it reads: the stack it needs depends on the types
/// decoded, not on the document. Between calls the cursor stands on the first character of a value or just behind one.
class JSONReader {
  public:
    /// Objects and arrays may be nested this deep.
    static constexpr unsigned depthLimit = 512;

    /// What a codec expected at the cursor, for errors.
    enum class Expected {
        boolean,  ///< `true` or `false`
        integer,  ///< a number without a fraction that fits 64 signed bits
        number,   ///< any number
        string,   ///< a text
        date,     ///< a date in the form of the options
        data,     ///< a text of base64
        object,   ///< an object
        array     ///< an array
    };
    /// What follows a member or element.
    enum class Next {
        another,  ///< a comma, and then another one
        end,      ///< the end of the object or array
        broken    ///< neither: the document is malformed
    };

    /// The text must outlive the reader. A leading byte-order mark is skipped.
    JSONReader(std::string_view text, const CodingOptions& options);

    /// Those that it was made with.
    [[nodiscard]] const CodingOptions& options() const noexcept { return options_; }
    /// Whether this is the second pass, which finds the error.
    [[nodiscard]] bool isCareful() const noexcept { return careful_; }
    /// Back to the start of the document, for the careful pass.
    void restartCarefully();
    /// Whether nothing but white space is left.
    [[nodiscard]] bool atEnd();
    /// Checks the whole document from its start, without building anything.
    [[nodiscard]] bool checkDocument();
    /// The error of a failed check, or of a careful pass that failed.
    [[nodiscard]] DecodingError takeError();

    // Values. Each reads the value at the cursor and leaves the cursor behind it, or fails and leaves it where it was.
    /// A text, unescaped.
    bool read(std::string& value);
    /// A number without a fraction that fits 64 signed bits, however it is written: 42, 42.0, 4.2e1.
    bool read(std::int64_t& value);
    /// A number; one that is too large for a double fails.
    bool read(double& value);
    /// `true` or `false`, and no number.
    bool read(bool& value);
    /// A date in the form of the options.
    bool read(Date& value);
    /// A text of base64, with its padding.
    bool read(Data& value);
    /// Reads past a value of any kind, checking it.
    bool skipValue();
    /// Whether null stands at the cursor, or what starts like it.
    [[nodiscard]] bool isNull() const noexcept { return peek() == 'n'; }
    /// Steps over null.
    bool readNull();
    /// Whether an object starts at the cursor.
    [[nodiscard]] bool isObject() const noexcept { return peek() == '{'; }
    /// Whether no object or array may be entered here.
    [[nodiscard]] bool isAtDepthLimit() const noexcept { return depth_ == depthLimit; }

    // Objects and arrays.
    /// Enters the object at the cursor; the cursor then stands on its first key or its closing brace.
    [[gnu::always_inline]] bool beginObject() noexcept {
        if (peek() != '{' || depth_ == depthLimit) return false;
        ++depth_;
        ++cursor_;
        skipSpace();
        return true;
    }
    /// As `beginObject`, with the error when there is none.
    bool expectObject();
    /// Leaves an object that has no (more) members.
    [[gnu::always_inline]] bool endIfEmpty(char closing) noexcept {
        if (peek() != closing) return false;
        --depth_;
        ++cursor_;
        return true;
    }
    /// Reads the comma or the end of the object behind a member's value.
    [[gnu::always_inline]] Next nextMember() noexcept { return next('}'); }
    /// Enters the array at the cursor; the cursor then stands on its first element or its closing bracket.
    bool beginArray() {
        if (peek() != '[' || depth_ == depthLimit) return refuse(Expected::array);
        ++depth_;
        ++cursor_;
        skipSpace();
        return true;
    }
    /// Reads the comma or the end of the array behind an element.
    Next nextElement() noexcept { return next(']'); }
    /// How many elements there are from the one at the cursor to the end of its array, or up to what is malformed.
    [[nodiscard]] std::size_t countElements();
    /// Matches the text `"key":`, of `Length` characters, at the cursor, and steps over it and white space.
    template <std::size_t Length>
    [[gnu::always_inline]] bool matchKey(const char* quotedKey) noexcept {
        if (static_cast<std::size_t>(end_ - cursor_) < Length || !sameBytes<Length>(cursor_, quotedKey)) return false;
        cursor_ += Length;
        skipSpace();
        return true;
    }
    /// Reads any key and its colon. The view is valid until the next key is read.
    bool readKey(std::string_view& key);
    /// Matches a text as it stands.
    bool matchText(std::string_view text) noexcept {
        if (static_cast<std::size_t>(end_ - cursor_) < text.size()) return false;
        if (std::memcmp(cursor_, text.data(), text.size()) != 0) return false;
        cursor_ += text.size();
        return true;
    }

    // Places. A place remembers the cursor and what goes with it; going back to one is free.
    /// Where the cursor stands, and how deep.
    struct Place {
        /// Null for no place.
        const char* cursor{};
        /// How many objects and arrays are open there.
        unsigned depth{};
    };
    /// Where the cursor stands now.
    [[nodiscard]] Place place() const noexcept { return {cursor_, depth_}; }
    /// Puts the cursor where it stood.
    void goTo(Place place) noexcept {
        cursor_ = place.cursor;
        depth_ = place.depth;
    }
    /// How many bytes of the document lie behind the cursor.
    [[nodiscard]] std::size_t remaining() const noexcept { return static_cast<std::size_t>(end_ - cursor_); }

    // Errors. All return false; in the fast pass they only do that.
    /// The value at the cursor is not what was expected: another kind, null, or of that kind and not acceptable.
    bool refuse(Expected expected);
    /// An error at the cursor in the codec's own words.
    bool fail(DecodingError::Kind kind, std::string description);
    /// A required key that the object at the cursor does not have.
    bool failMissingKey(std::string_view key);
    /// Adds a step to the path of the error that is on its way out.
    void prependKey(std::string_view key);
    /// Adds an element to the path of the error that is on its way out.
    void prependIndex(std::size_t index);
    /// Forgets the error of an attempt that may fail.
    void discardError();

  private:
    [[nodiscard]] char peek() const noexcept { return cursor_ != end_ ? *cursor_ : '\0'; }
    [[gnu::always_inline]] void skipSpace() noexcept {
        if (cursor_ != end_ && static_cast<unsigned char>(*cursor_) <= ' ') skipSpaceSlowly();
    }
    void skipSpaceSlowly() noexcept;
    [[gnu::always_inline]] Next next(char closing) noexcept {
        skipSpace();
        const char c = peek();
        if (c == ',') {
            ++cursor_;
            skipSpace();
            return Next::another;
        }
        if (c != closing) return Next::broken;
        ++cursor_;
        --depth_;
        return Next::end;
    }
    template <std::size_t N>
    [[gnu::always_inline]] static bool sameBytes(const char* a, const char* b) noexcept {
        if constexpr (N >= 8) {
            std::uint64_t difference = 0;
            for (std::size_t i = 0; i + 8 <= N; i += 8)
                difference |= word<std::uint64_t>(a + i) ^ word<std::uint64_t>(b + i);
            if constexpr (N % 8 != 0) difference |= word<std::uint64_t>(a + N - 8) ^ word<std::uint64_t>(b + N - 8);
            return difference == 0;
        } else if constexpr (N >= 4) {
            return ((word<std::uint32_t>(a) ^ word<std::uint32_t>(b)) |
                    (word<std::uint32_t>(a + N - 4) ^ word<std::uint32_t>(b + N - 4))) == 0;
        } else {
            return std::memcmp(a, b, N) == 0;
        }
    }
    template <class Word>
    [[gnu::always_inline]] static Word word(const char* bytes) noexcept {
        Word word;
        std::memcpy(&word, bytes, sizeof word);
        return word;
    }

    /// Steps over a string; with `text`, stores it.
    bool scanString(std::string* text);
    bool scanNumber();
    bool scanLiteral(std::string_view literal);
    bool readEscape(const char*& at, std::string* text);
    bool malformed(const char* what, const char* at);
    [[nodiscard]] TextPosition positionOf(const char* at) const;

    const char* begin_;
    const char* cursor_;
    const char* end_;
    unsigned depth_ = 0;
    bool careful_ = false;
    /// What is malformed, once a check has failed.
    const char* malformed_ = nullptr;
    const char* malformedAt_ = nullptr;
    CodingOptions options_;
    DecodingError error_;
    /// Where the error is; its line and column are counted only when somebody takes it.
    const char* errorAt_ = nullptr;
    /// A key or text that had escapes, unescaped.
    std::string scratch_;
};

}  // namespace kestrel
