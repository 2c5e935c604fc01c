#include <fmt/format.h>
#include <kestrel/coding/json_writer.h>
#include <kestrel/coding/utf8.h>

#include <algorithm>
#include <bit>
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

bool JSONWriter::write(std::string_view value) {
    return writeText<false>(value);
}

bool JSONWriter::write(const std::string& value) {
#if defined(__GLIBCXX__) && !defined(__SANITIZE_ADDRESS__)
    // A string of this library has room for a block wherever it keeps its characters, so that a short one is read
    // together with what stands behind it.
    static_assert(sizeof(std::string) >= 2 * TextBlock::size);
    return writeText<true>(value);
#else
    return writeText<false>(value);
#endif
}

template <bool hasRoomForBlock>
[[gnu::always_inline]] inline bool JSONWriter::writeText(std::string_view value) {
    constexpr std::size_t blockSize = TextBlock::size;
    const char* const from = value.data();
    const std::size_t size = value.size();
    reserve(size + textSlack);
    *cursor_++ = '"';
    unsigned specials = 0;
    unsigned highs = 0;
    const auto take = [&](const TextBlock& block, std::size_t at) {
        block.store(cursor_ + at);
        specials |= block.specials();
        highs |= block.highs();
    };
    const auto takeAt = [&](std::size_t at) { take(TextBlock::load(from + at), at); };
    // The last block lies over the one before. Jumps that depend on lengths are hardly ever predicted, and cost more
    // than a block that is taken twice.
    const std::size_t last = std::max(size, blockSize) - blockSize;
    if (!hasRoomForBlock && size < blockSize) {
        take(TextBlock::load(from, size), 0);
    } else if (size <= 2 * blockSize) {
        takeAt(0);
        takeAt(last);
    } else if (size <= 4 * blockSize) {
        takeAt(0);
        takeAt(blockSize);
        takeAt(std::min(2 * blockSize, last));
        takeAt(last);
    } else {
        for (std::size_t at = 0; at < last && specials == 0; at += blockSize)
            takeAt(at);
        takeAt(last);
    }
    // What stands behind a short text does not count.
    const unsigned counted = (1U << std::min(size, blockSize)) - 1;
    highs &= counted;
    if ((specials & counted) == 0) [[likely]]
        cursor_ += size;
    else
        highs |= writeEscaped(value);
    *cursor_++ = '"';
    if (highs != 0) {
        if (const std::size_t valid = validUTF8Prefix(value); valid != size) {
            return fail(fmt::format("The text is not valid UTF-8 from byte {} on.", valid));
        }
    }
    return true;
}

unsigned JSONWriter::writeEscaped(std::string_view value) {
    const char* at = value.data();
    std::size_t left = value.size();
    unsigned high = 0;
    while (left != 0) {
        reserve(left + textSlack);
        const std::size_t count = std::min(left, TextBlock::size);
        const auto block = left >= TextBlock::size ? TextBlock::load(at) : TextBlock::load(at, left);
        block.store(cursor_);
        high |= block.highs();
        const unsigned specials = block.specials() & ((1U << count) - 1);
        const std::size_t plain = specials == 0 ? count : static_cast<std::size_t>(std::countr_zero(specials));
        cursor_ += plain;
        at += plain;
        left -= plain;
        if (specials != 0) {
            writeEscape(*at++);
            --left;
        }
    }
    reserve(1);
    return high;
}

void JSONWriter::writeEscape(char c) {
    constexpr std::size_t longest = 6;
    reserve(longest);
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
}

namespace {

/// The eight digits of a number below 10^8, each in a byte, the first one's being the lowest.
constexpr std::uint64_t eightDigits(std::uint32_t number) {
    // Halves, then quarters, then eighths, each step for all at once; the products stand in for divisions.
    const std::uint64_t halves = number / 10'000 | static_cast<std::uint64_t>(number % 10'000) << 32U;
    const std::uint64_t hundreds = (halves * 10'486 >> 20U) & 0x0000007f0000007fU;
    const std::uint64_t quarters = hundreds | (halves - 100 * hundreds) << 16U;
    const std::uint64_t tens = (quarters * 103 >> 10U) & 0x000f000f000f000fU;
    return tens | (quarters - 10 * tens) << 8U;
}

constexpr std::uint64_t eightZeros = 0x3030303030303030U;

/// Writes a number without leading zeros, in whole words: up to eight bytes beyond the last digit are touched. Returns
/// the end.
char* writeNumber(char* to, std::uint64_t number) {
    constexpr std::uint64_t tenToThe8th = 100'000'000;
    const auto write = [&](std::uint64_t digits, int leadingZeros) {
        const std::uint64_t text = (digits | eightZeros) >> (8 * leadingZeros);
        std::memcpy(to, &text, sizeof text);
        to += 8 - leadingZeros;
    };
    const auto writeLeading = [&](std::uint64_t part) {
        const std::uint64_t digits = eightDigits(static_cast<std::uint32_t>(part));
        // The last digit is written also when it is zero.
        constexpr std::uint64_t last = std::uint64_t{1} << 56U;
        write(digits, std::countr_zero(digits | last) / 8);
    };
    if (number < tenToThe8th) {
        writeLeading(number);
        return to;
    }
    const std::uint64_t high = number / tenToThe8th;
    if (high < tenToThe8th) {
        writeLeading(high);
    } else {
        writeLeading(high / tenToThe8th);
        write(eightDigits(static_cast<std::uint32_t>(high % tenToThe8th)), 0);
    }
    write(eightDigits(static_cast<std::uint32_t>(number % tenToThe8th)), 0);
    return to;
}

/// The most that writeNumber touches: the digits of any number, and a sign in front.
constexpr std::size_t longestNumber = 32;

}  // namespace

bool JSONWriter::write(std::int64_t value) {
    reserve(longestNumber);
    auto magnitude = static_cast<std::uint64_t>(value);
    if (value < 0) {
        *cursor_++ = '-';
        magnitude = 0 - magnitude;
    }
    cursor_ = writeNumber(cursor_, magnitude);
    return true;
}

bool JSONWriter::write(double value) {
    if (!std::isfinite(value)) {
        return fail(fmt::format("Cannot encode {}: JSON has no such number.", value), value);
    }
    reserve(longestNumber);
    // Amounts, percentages and most dates have three decimals at most: they print as an integer of thousandths. The
    // division is correctly rounded, so what is printed reads back as this very double.
    constexpr double limit = 9e12;
    if (std::abs(value) < limit && (value != 0 || !std::signbit(value))) {
        const auto thousandths = static_cast<std::int64_t>(value * 1000 + (value < 0 ? -0.5 : 0.5));
        if (static_cast<double>(thousandths) / 1000 == value) {
            if (thousandths < 0) *cursor_++ = '-';
            const auto magnitude = static_cast<std::uint64_t>(thousandths < 0 ? -thousandths : thousandths);
            cursor_ = writeNumber(cursor_, magnitude / 1000);
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
    cursor_ = std::to_chars(cursor_, cursor_ + longestNumber, value).ptr;
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
