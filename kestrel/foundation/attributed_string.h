#pragma once

#include <kestrel/foundation/rgba_color.h>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrel {

/// A part of a person's name.
enum class NamePart : std::uint8_t {
    prefix = 0,    ///< what stands in front, such as "Dr."
    first = 1,     ///< the first of the given names
    middle = 2,    ///< the given names behind it
    last = 3,      ///< the family name
    suffix = 4,    ///< what stands behind, such as "Jr."
    nickname = 5,  ///< what friends say
    alias = 6      ///< another name that the person goes by
};

/// How a run of text looks and what it stands for. Without any attribute text is plain.
struct TextAttributes {
    using Coded = void;

    /// Behind the letters; absent leaves what is there.
    std::optional<RGBAColor> backgroundColor{};
    /// The font by its name; absent leaves the choice to who shows the text.
    std::optional<std::string> fontName{};
    /// In points.
    std::optional<double> fontSize{};
    /// Of the letters; absent leaves the choice to who shows the text.
    std::optional<RGBAColor> foregroundColor{};
    /// In bold type.
    bool isBold{};
    /// In italic type.
    bool isItalic{};
    /// With a line through the letters.
    bool isStruckThrough{};
    /// With a line below the letters.
    bool isUnderlined{};
    /// Where the text leads, as a URL.
    std::optional<std::string> link{};
    /// The part of a person's name that the text is.
    std::optional<NamePart> namePart{};

    /// Whether there is no attribute at all.
    [[nodiscard]] bool isPlain() const { return *this == TextAttributes{}; }

    friend bool operator==(const TextAttributes&, const TextAttributes&) = default;
};

/// Text with attributes over parts of it. Positions and lengths count code points. The text is UTF-8: of what is given
/// every byte that is part of no code point becomes U+FFFD.
///
/// The runs are kept in one form: in order, apart from each other, not empty, none of them plain, and neighbours that
/// look alike are one. So two values are equal when their texts are, and every code point carries the same attributes.
class AttributedString {
  public:
    using Coded = void;

    /// A part of the text by its place.
    struct Range {
        /// The first code point, counted from 0.
        std::size_t start{};
        /// In code points.
        std::size_t length{};

        /// The code point behind the last one.
        [[nodiscard]] std::size_t end() const noexcept { return start + length; }
        friend bool operator==(const Range&, const Range&) = default;
    };
    /// A part of the text that is not plain.
    struct Run {
        /// Not empty, and within the text.
        Range range{};
        /// Never plain.
        TextAttributes attributes{};

        friend bool operator==(const Run&, const Run&) = default;
    };

    /// Empty.
    AttributedString() = default;
    /// All of the text with the same attributes.
    explicit AttributedString(std::string_view text, const TextAttributes& attributes = {}) {
        append(text, attributes);
    }
    AttributedString(const AttributedString&) = default;
    AttributedString& operator=(const AttributedString&) = default;
    /// Leaves the other one empty.
    AttributedString(AttributedString&& other) noexcept
        : text_(std::exchange(other.text_, {})),
          length_(std::exchange(other.length_, 0)),
          runs_(std::exchange(other.runs_, {})) {}
    /// Leaves the other one empty.
    AttributedString& operator=(AttributedString&& other) noexcept {
        text_ = std::exchange(other.text_, {});
        length_ = std::exchange(other.length_, 0);
        runs_ = std::exchange(other.runs_, {});
        return *this;
    }
    ~AttributedString() = default;

    /// All of it, in UTF-8. Valid until the value changes.
    [[nodiscard]] const std::string& text() const noexcept { return text_; }
    /// In code points.
    [[nodiscard]] std::size_t length() const noexcept { return length_; }
    /// Whether there is no text; then there are no runs either.
    [[nodiscard]] bool isEmpty() const noexcept { return text_.empty(); }
    /// In order. Valid until the value changes.
    [[nodiscard]] std::span<const Run> runs() const noexcept { return runs_; }
    /// The attributes of one code point; plain beyond the end. Logarithmic in the number of runs.
    [[nodiscard]] TextAttributes attributesAt(std::size_t position) const;
    /// The text of a range, cut off at the end. Valid until the value changes. Linear in the text.
    [[nodiscard]] std::string_view substring(Range range) const noexcept;

    /// Linear in what is appended.
    void append(std::string_view text, const TextAttributes& attributes = {});
    /// With its attributes. Linear in what is appended.
    void append(const AttributedString& other);
    /// Gives a range these attributes instead of those that it had. What lies beyond the end is left out. Linear in the
    /// number of runs; at once where the range lies behind the last of them.
    void setAttributes(Range range, const TextAttributes& attributes);

    friend bool operator==(const AttributedString&, const AttributedString&) = default;

  private:
    void appendRun(Range range, const TextAttributes& attributes);

    std::string text_;
    std::size_t length_ = 0;
    std::vector<Run> runs_;
};

}  // namespace kestrel
