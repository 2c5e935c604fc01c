#include <fmt/format.h>
#include <kestrel/coding/json_reader.h>
#include <kestrel/coding/utf8.h>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

namespace kestrel {
namespace {

constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
constexpr bool isSpace(char c) {
    return c == ' ' || c == '\n' || c == '\t' || c == '\r';
}

constexpr int hexValue(char c) {
    if (isDigit(c)) return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

/// The four hexadecimal digits at a place, or -1.
std::int32_t hexQuad(const char* at, const char* end) {
    if (end - at < 4) return -1;
    std::int32_t value = 0;
    for (int i = 0; i < 4; ++i) {
        const int digit = hexValue(at[i]);
        if (digit < 0) return -1;
        value = value * 16 + digit;
    }
    return value;
}

void appendUTF8(std::string& text, std::uint32_t code) {
    const auto byte = [&](std::uint32_t bits) { text += static_cast<char>(bits); };
    if (code < 0x80) {
        byte(code);
    } else if (code < 0x800) {
        byte(0xc0U | (code >> 6U));
        byte(0x80U | (code & 0x3fU));
    } else if (code < 0x10000) {
        byte(0xe0U | (code >> 12U));
        byte(0x80U | ((code >> 6U) & 0x3fU));
        byte(0x80U | (code & 0x3fU));
    } else {
        byte(0xf0U | (code >> 18U));
        byte(0x80U | ((code >> 12U) & 0x3fU));
        byte(0x80U | ((code >> 6U) & 0x3fU));
        byte(0x80U | (code & 0x3fU));
    }
}

/// The digits at the front of eight characters: how many there are, and their value unless there are none. Has no jump
/// that depends on their number, for that is hardly ever predicted.
unsigned leadingDigits(const char* at, std::uint64_t& value) {
    std::uint64_t word = 0;
    std::memcpy(&word, at, sizeof word);
    const std::uint64_t offset = word ^ 0x3030303030303030U;
    // Up to the first one exact: what others carry goes to those behind them.
    const std::uint64_t others = ((offset + 0x7676767676767676U) | offset) & 0x8080808080808080U;
    const auto count = static_cast<unsigned>(std::countr_zero(others)) / 8;
    // Moved to the end, so that zeros stand in front of them.
    const std::uint64_t digits = offset << ((64 - 8 * count) & 63U);
    const std::uint64_t pairs = (digits * 10) + (digits >> 8U);
    value = (((pairs & 0x000000ff000000ffU) * 0x000f424000000064U) +
             (((pairs >> 16U) & 0x000000ff000000ffU) * 0x0000271000000001U)) >>
            32U;
    return count;
}

/// A number's text, taken apart. The text is a number by JSON's grammar.
struct Decimal {
    bool negative = false;
    /// The significant digits, without leading and trailing zeros, and the power of ten by which to multiply them.
    std::uint64_t digits = 0;
    std::size_t digitCount = 0;
    std::int64_t exponent = 0;
};

Decimal takeApart(std::string_view text) {
    Decimal decimal;
    std::size_t at = 0;
    if (text[at] == '-') {
        decimal.negative = true;
        ++at;
    }
    std::int64_t fractionDigits = 0;
    std::int64_t pendingZeros = 0;
    bool inFraction = false;
    for (; at < text.size() && (isDigit(text[at]) || text[at] == '.'); ++at) {
        if (text[at] == '.') {
            inFraction = true;
            continue;
        }
        if (inFraction) ++fractionDigits;
        const auto digit = static_cast<std::uint64_t>(text[at] - '0');
        if (digit == 0) {
            if (decimal.digitCount != 0) ++pendingZeros;
            continue;
        }
        for (; pendingZeros > 0; --pendingZeros) {
            if (++decimal.digitCount <= 19) decimal.digits *= 10;
        }
        if (++decimal.digitCount <= 19) decimal.digits = decimal.digits * 10 + digit;
    }
    std::int64_t written = 0;
    if (at < text.size()) {
        ++at;  // the e
        const bool negative = text[at] == '-';
        if (text[at] == '-' || text[at] == '+') ++at;
        // Far beyond what a document could balance with digits.
        constexpr std::int64_t limit = 1'000'000'000'000'000;
        for (; at < text.size(); ++at)
            written = std::min(limit, written * 10 + (text[at] - '0'));
        if (negative) written = -written;
    }
    decimal.exponent = written - fractionDigits + pendingZeros;
    return decimal;
}

/// The exact integer that a number's text means; absent when it means none of 64 bits.
std::optional<std::int64_t> exactInteger(std::string_view text) {
    const Decimal decimal = takeApart(text);
    if (decimal.digitCount == 0) return 0;
    if (decimal.exponent < 0 || decimal.digitCount > 19) return std::nullopt;
    if (decimal.exponent + static_cast<std::int64_t>(decimal.digitCount) > 19) return std::nullopt;
    std::uint64_t magnitude = decimal.digits;
    for (std::int64_t i = 0; i < decimal.exponent; ++i)
        magnitude *= 10;
    constexpr std::uint64_t limit = std::uint64_t{1} << 63U;
    if (magnitude > limit || (magnitude == limit && !decimal.negative)) return std::nullopt;
    return static_cast<std::int64_t>(decimal.negative ? 0U - magnitude : magnitude);
}

constexpr double powersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                  1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

std::string_view nameOf(JSONReader::Expected expected) {
    using enum JSONReader::Expected;
    switch (expected) {
        case boolean: return "a boolean";
        case integer: return "an integer";
        case number: return "a number";
        case string: return "a string";
        case date: return "a date";
        case data: return "data in base64";
        case object: return "an object";
        case array: return "an array";
    }
    return "a value";
}

std::string_view kindName(char first) {
    switch (first) {
        case '{': return "an object";
        case '[': return "an array";
        case '"': return "a string";
        case 't':
        case 'f': return "a boolean";
        case 'n': return "null";
        default: return "a number";
    }
}

}  // namespace

JSONReader::JSONReader(std::string_view text, const CodingOptions& options)
    : begin_(text.data()), cursor_(text.data()), end_(text.data() + text.size()), options_(options) {
    if (text.starts_with(byteOrderMark)) cursor_ += 3;
    skipSpace();
}

void JSONReader::restartCarefully() {
    careful_ = true;
    cursor_ = begin_;
    if (std::string_view(begin_, end_).starts_with(byteOrderMark)) cursor_ += 3;
    depth_ = 0;
    skipSpace();
}

bool JSONReader::atEnd() {
    skipSpace();
    return cursor_ == end_;
}

bool JSONReader::checkDocument() {
    malformed_ = nullptr;
    restartCarefully();
    if (cursor_ == end_) return malformed("the document is empty", cursor_);
    if (!skipValue()) return false;
    skipSpace();
    if (cursor_ != end_) return malformed("something follows the end of the value", cursor_);
    return true;
}

DecodingError JSONReader::takeError() {
    if (malformed_ != nullptr) {
        return {.kind = DecodingError::Kind::dataCorrupted,
                .codingPath = {},
                .description = fmt::format("Malformed JSON: {}.", malformed_),
                .position = positionOf(malformedAt_)};
    }
    error_.position = positionOf(errorAt_ != nullptr ? errorAt_ : begin_);
    return std::move(error_);
}

void JSONReader::discardError() {
    error_ = {};
}

bool JSONReader::malformed(const char* what, const char* at) {
    malformed_ = what;
    malformedAt_ = at;
    return false;
}

TextPosition JSONReader::positionOf(const char* at) const {
    TextPosition position{.offset = static_cast<std::size_t>(at - begin_)};
    const bool hasMark = std::string_view(begin_, end_).starts_with(byteOrderMark);
    for (const char* p = hasMark && at != begin_ ? begin_ + byteOrderMark.size() : begin_; p != at; ++p) {
        if (*p == '\n') {
            ++position.line;
            position.column = 1;
        } else if ((static_cast<unsigned char>(*p) & 0xc0U) != 0x80U) {
            ++position.column;
        }
    }
    return position;
}

void JSONReader::skipSpaceSlowly() noexcept {
    while (cursor_ != end_ && isSpace(*cursor_))
        ++cursor_;
}

bool JSONReader::refuse(Expected expected) {
    if (!careful_) return false;
    const char first = peek();
    if (first == 'n') {
        return fail(DecodingError::Kind::valueNotFound, fmt::format("Expected {}, found null.", nameOf(expected)));
    }
    const bool number = first == '-' || isDigit(first);
    const bool text = first == '"';
    if (number && (expected == Expected::integer || expected == Expected::number || expected == Expected::date)) {
        const char* const start = cursor_;
        (void)scanNumber();
        constexpr std::size_t shown = 40;
        const std::string_view whole(start, static_cast<std::size_t>(cursor_ - start));
        const std::string spelled(whole.substr(0, shown));
        cursor_ = start;
        if (expected != Expected::date || options_.dateStrategy != DateStrategy::iso8601) {
            return fail(DecodingError::Kind::dataCorrupted,
                        fmt::format("The number {}{} does not fit {}.", spelled, whole.size() > shown ? "…" : "",
                                    expected == Expected::integer ? "a signed 64-bit integer" : "a double"));
        }
    }
    if (text && expected == Expected::data)
        return fail(DecodingError::Kind::dataCorrupted, "The string is not base64.");
    if (text && expected == Expected::date && options_.dateStrategy == DateStrategy::iso8601) {
        return fail(DecodingError::Kind::dataCorrupted, "The string is not an ISO 8601 date.");
    }
    return fail(DecodingError::Kind::typeMismatch,
                fmt::format("Expected {}, found {}.", nameOf(expected), kindName(first)));
}

bool JSONReader::fail(DecodingError::Kind kind, std::string description) {
    if (!careful_) return false;
    error_ = {.kind = kind, .codingPath = {}, .description = std::move(description), .position = {}};
    errorAt_ = cursor_;
    return false;
}

bool JSONReader::failMissingKey(std::string_view key) {
    return fail(DecodingError::Kind::keyNotFound, fmt::format("No value for the key \"{}\".", key));
}

void JSONReader::prependKey(std::string_view key) {
    if (careful_) error_.codingPath.prepend(std::string(key));
}

void JSONReader::prependIndex(std::size_t index) {
    if (careful_) error_.codingPath.prepend(index);
}

bool JSONReader::expectObject() {
    return beginObject() || refuse(Expected::object);
}

// ---- strings

bool JSONReader::read(std::string& value) {
    if (peek() != '"') return refuse(Expected::string);
    const char* const start = cursor_ + 1;
    bool high = false;
    const char* const stop = plainRunEnd(start, end_, high);
    if (stop == end_) return false;
    if (*stop == '"') {
        const std::string_view plain(start, static_cast<std::size_t>(stop - start));
        if (high && !isValidUTF8(plain)) return false;
        value.assign(plain);
        cursor_ = stop + 1;
        return true;
    }
    return scanString(&value);
}

bool JSONReader::scanString(std::string* text) {
    if (peek() != '"') return malformed("expected a string", cursor_);
    if (text != nullptr) text->clear();
    const char* at = cursor_ + 1;
    for (;;) {
        bool high = false;
        const char* const stop = plainRunEnd(at, end_, high);
        const std::string_view plain(at, static_cast<std::size_t>(stop - at));
        if (high) {
            const std::size_t valid = validUTF8Prefix(plain);
            if (valid != plain.size()) return malformed("a string that is not valid UTF-8", at + valid);
        }
        if (text != nullptr) text->append(plain);
        if (stop == end_) return malformed("a string without its closing quote", cursor_);
        if (*stop == '"') {
            cursor_ = stop + 1;
            return true;
        }
        if (*stop != '\\') return malformed("a control character in a string", stop);
        at = stop;
        if (!readEscape(at, text)) return false;
    }
}

bool JSONReader::readEscape(const char*& at, std::string* text) {
    const char* const start = at;
    if (end_ - start < 2) return malformed("a string without its closing quote", cursor_);
    const auto plain = [&](char c) {
        if (text != nullptr) *text += c;
        at = start + 2;
        return true;
    };
    switch (start[1]) {
        case '"': return plain('"');
        case '\\': return plain('\\');
        case '/': return plain('/');
        case 'b': return plain('\b');
        case 'f': return plain('\f');
        case 'n': return plain('\n');
        case 'r': return plain('\r');
        case 't': return plain('\t');
        case 'u': break;
        default: return malformed("an unknown escape in a string", start);
    }
    const std::int32_t unit = hexQuad(start + 2, end_);
    if (unit < 0) return malformed("an escape without four hexadecimal digits", start);
    auto code = static_cast<std::uint32_t>(unit);
    at = start + 6;
    if (code >= 0xd800 && code <= 0xdfff) {
        const std::int32_t second =
            code <= 0xdbff && end_ - at >= 6 && at[0] == '\\' && at[1] == 'u' ? hexQuad(at + 2, end_) : -1;
        if (second < 0xdc00 || second > 0xdfff) return malformed("a surrogate without its other half", start);
        code = 0x10000U + ((code - 0xd800U) << 10U) + (static_cast<std::uint32_t>(second) - 0xdc00U);
        at += 6;
    }
    if (text != nullptr) appendUTF8(*text, code);
    return true;
}

bool JSONReader::readKey(std::string_view& key) {
    if (peek() != '"') return malformed("expected a key in quotes", cursor_);
    const char* const start = cursor_ + 1;
    bool high = false;
    const char* const stop = plainRunEnd(start, end_, high);
    if (stop != end_ && *stop == '"' && !high) {
        key = {start, static_cast<std::size_t>(stop - start)};
        cursor_ = stop + 1;
    } else {
        if (!scanString(&scratch_)) return false;
        key = scratch_;
    }
    skipSpace();
    if (peek() != ':') return malformed("expected a colon behind a key", cursor_);
    ++cursor_;
    skipSpace();
    return true;
}

bool JSONReader::read(Data& value) {
    if (peek() != '"') return refuse(Expected::data);
    const Place start = place();
    if (!scanString(&scratch_)) return false;
    if (auto data = Data::fromBase64(scratch_)) {
        value = *std::move(data);
        return true;
    }
    goTo(start);
    return refuse(Expected::data);
}

// ---- numbers

bool JSONReader::scanNumber() {
    const char* at = cursor_;
    const auto digits = [&] {
        const char* const start = at;
        while (at != end_ && isDigit(*at))
            ++at;
        return at != start;
    };
    if (at != end_ && *at == '-') ++at;
    if (at != end_ && *at == '0') {
        ++at;
        if (at != end_ && isDigit(*at)) return malformed("a number that starts with a zero", cursor_);
    } else if (!digits()) {
        return malformed(at == cursor_ ? "expected a value" : "a minus sign without a number", cursor_);
    }
    if (at != end_ && *at == '.') {
        ++at;
        if (!digits()) return malformed("a decimal point without digits behind it", at);
    }
    if (at != end_ && (*at == 'e' || *at == 'E')) {
        ++at;
        if (at != end_ && (*at == '+' || *at == '-')) ++at;
        if (!digits()) return malformed("an exponent without digits", at);
    }
    cursor_ = at;
    return true;
}

bool JSONReader::read(std::int64_t& value) {
    const char* at = cursor_;
    const bool negative = at != end_ && *at == '-';
    if (negative) ++at;
    const char* const digits = at;
    const char* const limit = end_ - digits > 19 ? digits + 19 : end_;
    std::uint64_t magnitude = 0;
    if (end_ - digits >= 8) at += leadingDigits(at, magnitude);
    while (at != limit && isDigit(*at)) {
        magnitude = magnitude * 10 + static_cast<std::uint64_t>(*at - '0');
        ++at;
    }
    const std::ptrdiff_t count = at - digits;
    if (count == 0) return refuse(Expected::integer);
    const bool plain =
        count < 19 && (count == 1 || *digits != '0') && (at == end_ || (*at != '.' && *at != 'e' && *at != 'E'));
    if (plain) {
        value = negative ? -static_cast<std::int64_t>(magnitude) : static_cast<std::int64_t>(magnitude);
        cursor_ = at;
        return true;
    }
    const char* const start = cursor_;
    if (!scanNumber()) return false;
    if (const auto exact = exactInteger({start, static_cast<std::size_t>(cursor_ - start)})) {
        value = *exact;
        return true;
    }
    cursor_ = start;
    return refuse(Expected::integer);
}

bool JSONReader::read(double& value) {
    const char* const start = cursor_;
    const char* at = start;
    const bool negative = at != end_ && *at == '-';
    if (negative) ++at;
    if (at == end_ || !isDigit(*at)) return refuse(Expected::number);
    // The common form, exactly: few enough digits that the integer and the power of ten are both exact doubles.
    std::uint64_t digits = 0;
    const char* const integerStart = at;
    const auto takeEach = [&] {
        while (at != end_ && isDigit(*at) && digits < (std::uint64_t{1} << 53U)) {
            digits = digits * 10 + static_cast<std::uint64_t>(*at - '0');
            ++at;
        }
    };
    const auto take = [&] {
        static constexpr std::array<std::uint64_t, 9> powers{1,       10,        100,        1'000,      10'000,
                                                             100'000, 1'000'000, 10'000'000, 100'000'000};
        std::uint64_t leading = 0;
        if (end_ - at >= 8) {
            if (const unsigned count = leadingDigits(at, leading); count != 0) {
                digits = digits * powers[count] + leading;
                at += count;
            }
        }
        takeEach();
    };
    take();
    std::ptrdiff_t decimals = 0;
    const bool leadingZero = *integerStart == '0' && at - integerStart > 1;
    bool simple = !leadingZero;
    if (simple && at != end_ && *at == '.') {
        ++at;
        const char* const fraction = at;
        if (digits < 1'000'000) {
            take();
        } else {
            takeEach();
        }
        decimals = at - fraction;
        simple = decimals > 0;
    }
    simple = simple && digits <= (std::uint64_t{1} << 53U) && decimals <= 22 &&
             (at == end_ || (!isDigit(*at) && *at != '.' && *at != 'e' && *at != 'E'));
    if (simple) {
        const double magnitude = static_cast<double>(digits) / powersOfTen[decimals];
        value = negative ? -magnitude : magnitude;
        cursor_ = at;
        return true;
    }
    if (!scanNumber()) return false;
    double parsed = 0;
    const auto [stop, problem] = std::from_chars(start, cursor_, parsed);
    if (problem == std::errc::result_out_of_range) {
        // Either far too large, or so small that the nearest double is zero.
        const Decimal decimal = takeApart({start, static_cast<std::size_t>(cursor_ - start)});
        if (decimal.exponent + static_cast<std::int64_t>(decimal.digitCount) > 0) {
            cursor_ = start;
            return refuse(Expected::number);
        }
        if (parsed != parsed || std::abs(parsed) > 1) parsed = 0;
        parsed = std::copysign(parsed, negative ? -1.0 : 1.0);
    }
    value = parsed;
    return true;
}

bool JSONReader::read(Date& value) {
    if (options_.dateStrategy == DateStrategy::iso8601) {
        if (peek() != '"') return refuse(Expected::date);
        const Place start = place();
        if (!scanString(&scratch_)) return false;
        if (const auto date = Date::parseISO8601(scratch_)) {
            value = *date;
            return true;
        }
        goTo(start);
        return refuse(Expected::date);
    }
    const char c = peek();
    if (c != '-' && !isDigit(c)) return refuse(Expected::date);
    double number = 0;
    if (!read(number)) return false;
    switch (options_.dateStrategy) {
        case DateStrategy::secondsSince1970: value = Date::since1970(number); break;
        case DateStrategy::millisecondsSince1970: value = Date::since1970(number / 1000); break;
        default: value = Date(number); break;
    }
    return true;
}

// ---- other values

bool JSONReader::read(bool& value) {
    if (matchText("true")) {
        value = true;
        return true;
    }
    if (matchText("false")) {
        value = false;
        return true;
    }
    return refuse(Expected::boolean);
}

bool JSONReader::readNull() {
    return matchText("null");
}

bool JSONReader::scanLiteral(std::string_view literal) {
    return matchText(literal) || malformed("expected a value", cursor_);
}

std::size_t JSONReader::countElements() {
    const Place start = place();
    std::size_t count = 1;
    while (skipValue() && nextElement() == Next::another)
        ++count;
    goTo(start);
    return count;
}

bool JSONReader::skipValue() {
    // One bit a level: whether it is an object. Held here, so that the stack does not grow with what is read.
    std::uint64_t objects[depthLimit / 64 + 1] = {};
    const unsigned base = depth_;
    const auto isInObject = [&] { return (objects[depth_ / 64] >> (depth_ % 64) & 1U) != 0; };
    for (;;) {
        // A value starts here.
        bool complete = true;
        switch (peek()) {
            case '{':
            case '[': {
                const bool object = *cursor_ == '{';
                if (depth_ == depthLimit) return malformed("nesting deeper than 512 levels", cursor_);
                ++depth_;
                const std::uint64_t bit = std::uint64_t{1} << (depth_ % 64);
                objects[depth_ / 64] = object ? objects[depth_ / 64] | bit : objects[depth_ / 64] & ~bit;
                ++cursor_;
                skipSpace();
                if (!endIfEmpty(object ? '}' : ']')) complete = false;
                break;
            }
            case '"':
                if (!scanString(nullptr)) return false;
                break;
            case 't':
                if (!scanLiteral("true")) return false;
                break;
            case 'f':
                if (!scanLiteral("false")) return false;
                break;
            case 'n':
                if (!scanLiteral("null")) return false;
                break;
            default:
                if (!scanNumber()) return false;
                break;
        }
        // Behind a complete value: leave what ends here, up to the next comma.
        while (complete) {
            if (depth_ == base) return true;
            const bool object = isInObject();
            skipSpace();
            switch (next(object ? '}' : ']')) {
                case Next::another: complete = false; break;
                case Next::end: break;
                case Next::broken:
                    return malformed(
                        object ? "expected a comma or a closing brace" : "expected a comma or a closing bracket",
                        cursor_);
            }
        }
        if (isInObject()) {
            if (peek() != '"') return malformed("expected a key in quotes", cursor_);
            if (!scanString(nullptr)) return false;
            skipSpace();
            if (peek() != ':') return malformed("expected a colon behind a key", cursor_);
            ++cursor_;
            skipSpace();
        }
    }
}

}  // namespace kestrel
