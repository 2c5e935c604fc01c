#pragma once

#include <kestrel/foundation/object_identifier.h>
#include <kestrel/foundation/platform_error.h>
#include <kestrel/foundation/uuid.h>
#include <compare>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace kestrel {

/// One step from a value to a value inside it: a key of an object or an index of an array.
using CodingKey = std::variant<std::string, std::size_t>;

/// The steps from the whole value to the place in question; empty for the whole value.
class CodingPath {
  public:
    /// To the whole value.
    CodingPath() = default;
    /// From the outermost step to the innermost.
    CodingPath(std::initializer_list<CodingKey> keys) : keys_(keys.begin(), keys.end()) {}

    /// From the outermost step to the innermost. Valid until the path changes.
    [[nodiscard]] const std::vector<CodingKey>& keys() const noexcept { return keys_; }
    /// Whether it leads to the whole value.
    [[nodiscard]] bool empty() const noexcept { return keys_.empty(); }
    /// Adds the step before all others: paths are gathered from the inside outwards.
    void prepend(CodingKey key) { keys_.insert(keys_.begin(), std::move(key)); }
    /// "$" for the whole value, then ".key" or "[index]" for each step; keys that are no plain names are quoted: `$["a
    /// b"]`.
    [[nodiscard]] std::string text() const;

    friend bool operator==(const CodingPath&, const CodingPath&) = default;

  private:
    std::vector<CodingKey> keys_;
};

/// A place in a document. The offset counts bytes from 0; line and column count from 1, the column in characters.
struct TextPosition {
    /// In bytes, from 0.
    std::size_t offset{};
    /// From 1. Lines end with a line feed.
    std::size_t line{1};
    /// From 1, in characters.
    std::size_t column{1};

    friend bool operator==(const TextPosition&, const TextPosition&) = default;
};

/// Why a document did not become a value.
struct DecodingError {
    /// What is wrong, for programs that tell failures apart.
    enum class Kind {
        typeMismatch,   ///< the value at the path is of another JSON kind, or of no case that the type knows
        valueNotFound,  ///< null where a value is required
        keyNotFound,    ///< the object at the path lacks a required key, which the description names
        dataCorrupted,  ///< the document is malformed, or the value is of the right kind and yet not acceptable
    };

    /// What is wrong.
    Kind kind{};
    /// Where in the value.
    CodingPath codingPath{};
    /// A sentence for developers. Never localised.
    std::string description{};
    /// Where the trouble starts in the document.
    TextPosition position{};

    /// "KIND at PATH: DESCRIPTION (line L, column C)", in one line: control characters are written out, and a very long
    /// description is cut.
    [[nodiscard]] std::string message() const;
    friend bool operator==(const DecodingError&, const DecodingError&) = default;
};

/// Why a value could not be written.
struct EncodingError {
    /// What is wrong, for programs that tell failures apart.
    enum class Kind {
        invalidValue,  ///< the value at the path has no keyed form
    };
    /// What could not be written, where it is more than a description tells.
    using OffendingValue = std::variant<std::monostate, UUID, ObjectIdentifier, double>;

    /// What is wrong.
    Kind kind{};
    /// Where in the value.
    CodingPath codingPath{};
    /// A sentence for developers. Never localised.
    std::string description{};
    /// The value itself: the UUID or the identity of an unsaved identifier, a number that is not finite.
    OffendingValue value{};

    /// "invalidValue at PATH: DESCRIPTION", in one line.
    [[nodiscard]] std::string message() const;
    friend bool operator==(const EncodingError&, const EncodingError&) = default;
};

/// The common forms of both: the kind as code, the message as description, which is English.
[[nodiscard]] PlatformError platformError(const DecodingError& error);
/// The kind as code, the message as description, which is English.
[[nodiscard]] PlatformError platformError(const EncodingError& error);

}  // namespace kestrel
