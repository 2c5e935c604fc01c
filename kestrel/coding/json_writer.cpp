#include <fmt/format.h>
#include <kestrel/coding/json_writer.h>
#include <kestrel/coding/utf8.h>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace kestrel {

JSONWriter::JSONWriter(std::string& out, const CodingOptions& options)
    : buffer_(&out), before_(out.size()), cursor_(out.data() + out.size()), limit_(cursor_), options_(options) {}

void JSONWriter::grow(std::size_t count) {
    const auto written = static_cast<std::size_t>(cursor_ - buffer_->data());
    const std::size_t wanted =
        std::max({written + count, written * 2, before_ + std::size_t{512}, buffer_->capacity()});
    buffer_->resize_and_overwrite(wanted, [](char*, std::size_t size) { return size; });
    cursor_ = buffer_->data() + written;
    limit_ = buffer_->data() + buffer_->size();
}

void JSONWriter::finish() {
    buffer_->resize(static_cast<std::size_t>(cursor_ - buffer_->data()));
    finished_ = true;
}

bool JSONWriter::fail(std::string description, EncodingError::OffendingValue value) {
    error_ = {.kind = EncodingError::Kind::invalidValue,
              .codingPath = {},
              .description = std::move(description),
              .value = value};
    return false;
}

void JSONWriter::key(std::string_view plainKey) {
    append(",\"");
    append(plainKey);
    append("\":");
}

namespace {

template <class Word>
Word load(const char* from) {
    Word word;
    std::memcpy(&word, from, sizeof word);
    return word;
}

/// Copies a text that needs no escapes, in whole words that may overlap. False, with nothing promised of `to`, when the
/// text is of another kind. Writes at most sixteen bytes beyond the text's length; reads none beyond it.
bool copyPlain(char* to, std::string_view text, bool& high) {
    const char* const from = text.data();
    const std::size_t size = text.size();
    constexpr std::uint64_t highBits = 0x8080808080808080U;
    std::uint64_t gathered = 0;
    const auto copyWord = [&](std::size_t at) {
        const auto word = load<std::uint64_t>(from + at);
        std::memcpy(to + at, &word, sizeof word);
        gathered |= word;
        return !hasSpecialByte(word);
    };
    if (size >= 8) {
        std::size_t at = 0;
#if defined(__SSE2__)
        const __m128i quote = _mm_set1_epi8('"');
        const __m128i backslash = _mm_set1_epi8('\\');
        const __m128i lastControl = _mm_set1_epi8(0x1f);
        for (; size - at >= 16; at += 16) {
            const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + at));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to + at), block);
            const __m128i special =
                _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(block, quote), _mm_cmpeq_epi8(block, backslash)),
                             _mm_cmpeq_epi8(_mm_min_epu8(block, lastControl), block));
            if (_mm_movemask_epi8(special) != 0) return false;
            if (_mm_movemask_epi8(block) != 0) gathered |= highBits;
        }
#endif
        for (; size - at >= 8; at += 8) {
            if (!copyWord(at)) return false;
        }
        // The last word starts inside the one before.
        if (at != size && !copyWord(size - 8)) return false;
    } else {
        std::uint64_t word = 0;
        if (size >= 4) {
            word = load<std::uint32_t>(from);
            word |= static_cast<std::uint64_t>(load<std::uint32_t>(from + size - 4)) << (8 * (size - 4));
        } else if (size != 0) {
            word = static_cast<unsigned char>(from[0]);
            word |= static_cast<std::uint64_t>(static_cast<unsigned char>(from[size / 2])) << (8 * (size / 2));
            word |= static_cast<std::uint64_t>(static_cast<unsigned char>(from[size - 1])) << (8 * (size - 1));
        }
        std::memcpy(to, &word, sizeof word);
        gathered = word;
        // What the text does not fill must not look like control characters.
        if (size != 0 && hasSpecialByte(word | (0x2020202020202020U << (8 * size)))) return false;
    }
    high = (gathered & highBits) != 0;
    return true;
}

}  // namespace

bool JSONWriter::write(std::string_view value) {
    constexpr std::size_t slack = 18;
    reserve(value.size() + slack);
    *cursor_++ = '"';
    bool high = false;
    if (copyPlain(cursor_, value, high)) {
        cursor_ += value.size();
    } else {
        // As if every byte became an escape of six characters, so that nothing below has to ask for room.
        reserve(value.size() * 6 + 1);
        writeEscaped(value, high);
    }
    *cursor_++ = '"';
    if (high) {
        if (const std::size_t valid = validUTF8Prefix(value); valid != value.size()) {
            return fail(fmt::format("The text is not valid UTF-8 from byte {} on.", valid));
        }
    }
    return true;
}

void JSONWriter::writeEscaped(std::string_view value, bool& high) {
    const char* at = value.data();
    const char* const end = at + value.size();
    for (;;) {
        const char* const stop = plainRunEnd(at, end, high);
        std::memcpy(cursor_, at, static_cast<std::size_t>(stop - at));
        cursor_ += stop - at;
        if (stop == end) return;
        const char c = *stop;
        *cursor_++ = '\\';
        switch (c) {
            case '"':
            case '\\': *cursor_++ = c; break;
            case '\b': *cursor_++ = 'b'; break;
            case '\f': *cursor_++ = 'f'; break;
            case '\n': *cursor_++ = 'n'; break;
            case '\r': *cursor_++ = 'r'; break;
            case '\t': *cursor_++ = 't'; break;
            default: {
                static constexpr char digits[] = "0123456789abcdef";
                std::memcpy(cursor_, "u00", 3);
                cursor_[3] = digits[static_cast<unsigned char>(c) >> 4U];
                cursor_[4] = digits[static_cast<unsigned char>(c) & 0xfU];
                cursor_ += 5;
                break;
            }
        }
        at = stop + 1;
    }
}

bool JSONWriter::write(std::int64_t value) {
    constexpr std::size_t longest = 20;
    reserve(longest);
    cursor_ = std::to_chars(cursor_, cursor_ + longest, value).ptr;
    return true;
}

bool JSONWriter::write(double value) {
    if (!std::isfinite(value)) {
        return fail(fmt::format("Cannot encode {}: JSON has no such number.", value), value);
    }
    constexpr std::size_t longest = 32;
    reserve(longest);
    // Amounts, percentages and most dates have three decimals at most: they print as an integer of thousandths. The
    // division is correctly rounded, so what is printed reads back as this very double.
    constexpr double limit = 9e12;
    if (std::abs(value) < limit && !(value == 0 && std::signbit(value))) {
        const auto thousandths = static_cast<std::int64_t>(value * 1000 + (value < 0 ? -0.5 : 0.5));
        if (static_cast<double>(thousandths) / 1000 == value) {
            if (thousandths < 0) *cursor_++ = '-';
            const auto magnitude = static_cast<std::uint64_t>(thousandths < 0 ? -thousandths : thousandths);
            cursor_ = std::to_chars(cursor_, cursor_ + longest, magnitude / 1000).ptr;
            if (const std::uint64_t decimals = magnitude % 1000; decimals != 0) {
                cursor_[0] = '.';
                cursor_[1] = static_cast<char>('0' + decimals / 100);
                cursor_[2] = static_cast<char>('0' + decimals / 10 % 10);
                cursor_[3] = static_cast<char>('0' + decimals % 10);
                cursor_ += 4;
                while (cursor_[-1] == '0')
                    --cursor_;
            }
            return true;
        }
    }
    cursor_ = std::to_chars(cursor_, cursor_ + longest, value).ptr;
    return true;
}

bool JSONWriter::write(Date value) {
    switch (options_.dateStrategy) {
        case DateStrategy::deferred: return write(value.sinceReferenceDate());
        case DateStrategy::secondsSince1970: return write(value.since1970());
        case DateStrategy::millisecondsSince1970: return write(value.since1970() * 1000);
        case DateStrategy::iso8601: break;
    }
    const auto text = value.iso8601();
    if (!text) {
        return fail("Cannot encode the date as ISO 8601: it lies outside the years 1 to 9999.",
                    value.sinceReferenceDate());
    }
    return write(std::string_view(*text));
}

bool JSONWriter::write(const Data& value) {
    return write(std::string_view(value.base64()));
}

}  // namespace kestrel
