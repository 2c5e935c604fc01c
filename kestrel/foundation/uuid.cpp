#include <kestrel/foundation/fatal.h>
#include <kestrel/foundation/uuid.h>

#include <pthread.h>

#include <atomic>
#include <boost/uuid/entropy_error.hpp>
#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid.hpp>
#include <optional>

namespace kestrel {
namespace {

/// Counts forks of this process. A thread's generator that was seeded under another count belongs to the parent.
std::atomic<unsigned> forks{0};

boost::uuids::random_generator_mt19937& threadGenerator() {
    static const int registered =
        pthread_atfork(nullptr, nullptr, [] { forks.fetch_add(1, std::memory_order_relaxed); });
    (void)registered;
    thread_local std::optional<boost::uuids::random_generator_mt19937> generator;
    thread_local unsigned seededAfter = 0;
    const unsigned now = forks.load(std::memory_order_relaxed);
    if (!generator || seededAfter != now) {
        try {
            generator.emplace();
        } catch (const boost::uuids::entropy_error&) {
            fatal("The operating system gave no entropy for UUIDs.");
        }
        seededAfter = now;
    }
    return *generator;
}

std::optional<unsigned> hexDigit(char c) {
    if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
    if (c >= 'A' && c <= 'F') return static_cast<unsigned>(c - 'A') + 10;
    if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a') + 10;
    return std::nullopt;
}

constexpr bool isHyphenPlace(std::size_t place) {
    return place == 8 || place == 13 || place == 18 || place == 23;
}

}  // namespace

UUID UUID::random() {
    const boost::uuids::uuid drawn = threadGenerator()();
    std::uint64_t words[2] = {0, 0};
    for (std::size_t i = 0; i < 16; ++i)
        words[i / 8] = (words[i / 8] << 8U) | drawn.data[i];
    return {words[0], words[1]};
}

std::optional<UUID> UUID::parse(std::string_view text) {
    if (text.size() != 36) return std::nullopt;
    std::uint64_t words[2] = {0, 0};
    std::size_t digits = 0;
    for (std::size_t place = 0; place < text.size(); ++place) {
        if (isHyphenPlace(place)) {
            if (text[place] != '-') return std::nullopt;
            continue;
        }
        const auto digit = hexDigit(text[place]);
        if (!digit) return std::nullopt;
        words[digits / 16] = (words[digits / 16] << 4U) | *digit;
        ++digits;
    }
    return UUID{words[0], words[1]};
}

std::string UUID::text() const {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string text(36, '-');
    std::size_t drawn = 0;
    for (std::size_t place = 0; place < text.size(); ++place) {
        if (isHyphenPlace(place)) continue;
        const std::uint64_t word = drawn < 16 ? high_ : low_;
        text[place] = digits[(word >> (60 - 4 * (drawn % 16))) & 0xfU];
        ++drawn;
    }
    return text;
}

UUID::Bytes UUID::bytes() const noexcept {
    Bytes bytes{};
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::uint8_t>((i < 8 ? high_ : low_) >> (56 - 8 * (i % 8)));
    }
    return bytes;
}

}  // namespace kestrel
