#include <kestrel/foundation/attributed_string.h>
#include <kestrel/foundation/unicode.h>

#include <algorithm>
#include <utility>

namespace kestrel {

namespace {

/// The byte at which that code point starts; the text's size beyond the end.
std::size_t byteOffset(std::string_view text, std::size_t codePoints) noexcept {
    std::size_t at = 0;
    while (codePoints > 0 && at < text.size()) {
        at += codePointAt(text, at).size;
        --codePoints;
    }
    return at;
}

}  // namespace

TextAttributes AttributedString::attributesAt(std::size_t position) const {
    const auto run =
        std::ranges::upper_bound(runs_, position, {}, [](const Run& candidate) { return candidate.range.start; });
    if (run == runs_.begin()) return {};
    const Run& before = *std::prev(run);
    return position < before.range.end() ? before.attributes : TextAttributes{};
}

std::string_view AttributedString::substring(Range range) const noexcept {
    const std::string_view text = text_;
    const std::string_view rest = text.substr(byteOffset(text, range.start));
    return rest.substr(0, byteOffset(rest, range.length));
}

void AttributedString::append(std::string_view text, const TextAttributes& attributes) {
    std::string added;
    added.reserve(text.size());
    std::size_t count = 0;
    for (std::size_t at = 0; at < text.size(); ++count) {
        const CodePoint next = codePointAt(text, at);
        if (next.value == U'\uFFFD' && next.size == 1) {
            added += "\uFFFD";
        } else {
            added += text.substr(at, next.size);
        }
        at += next.size;
    }
    const Range range{length_, count};
    text_ += added;
    length_ += count;
    if (count > 0) appendRun(range, attributes);
}

void AttributedString::append(const AttributedString& other) {
    if (&other == this) return append(AttributedString(other));
    const std::size_t start = length_;
    text_ += other.text_;
    length_ += other.length_;
    for (const Run& run : other.runs_)
        appendRun({start + run.range.start, run.range.length}, run.attributes);
}

void AttributedString::setAttributes(Range range, const TextAttributes& attributes) {
    if (range.start >= length_) return;
    range.length = std::min(range.length, length_ - range.start);
    if (range.length == 0) return;
    if (runs_.empty() || runs_.back().range.end() <= range.start) return appendRun(range, attributes);
    std::vector<Run> before = std::exchange(runs_, {});
    runs_.reserve(before.size() + 2);
    bool isPlaced = false;
    const auto place = [&] {
        if (!std::exchange(isPlaced, true)) appendRun(range, attributes);
    };
    for (Run& run : before) {
        const Range old = run.range;
        if (old.start < range.start) {
            appendRun({old.start, std::min(old.end(), range.start) - old.start}, run.attributes);
        }
        if (old.end() <= range.start) continue;
        place();
        if (old.end() > range.end()) {
            const std::size_t start = std::max(old.start, range.end());
            appendRun({start, old.end() - start}, run.attributes);
        }
    }
    place();
}

void AttributedString::appendRun(Range range, const TextAttributes& attributes) {
    if (attributes.isPlain()) return;
    if (!runs_.empty() && runs_.back().range.end() == range.start && runs_.back().attributes == attributes) {
        runs_.back().range.length += range.length;
    } else {
        runs_.push_back({range, attributes});
    }
}

}  // namespace kestrel
