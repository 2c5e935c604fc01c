#include <fuzz/fuzzing.h>
#include <kestrel/coding/json.h>
#include <simdjson.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The reader's verdict on a document, and the texts, numbers and booleans it reads, against simdjson.
namespace {

using namespace kestrel;
using fuzzing::broken;
using fuzzing::require;

/// What `visit` makes of each token that could be a number, outside of strings; the rest as it stands.
template <class Visit>
std::string withNumbers(std::string_view document, Visit visit) {
    std::string made;
    bool isInText = false;
    for (std::size_t at = 0; at < document.size();) {
        const char c = document[at];
        if (isInText) {
            const std::size_t count = c == '\\' && at + 1 < document.size() ? 2 : 1;
            isInText = c != '"';
            made += document.substr(at, count);
            at += count;
            continue;
        }
        constexpr std::string_view numeric = "+-.0123456789eE";
        if ((c >= '0' && c <= '9') || c == '-') {
            const std::size_t end = std::min(document.find_first_not_of(numeric, at), document.size());
            made += visit(document.substr(at, end - at));
            at = end;
            continue;
        }
        isInText = c == '"';
        made += c;
        ++at;
    }
    return made;
}

/// By the grammar of RFC 8259, section 6.
bool isNumber(std::string_view text) {
    const auto digits = [&] {
        std::size_t count = 0;
        for (; !text.empty() && text[0] >= '0' && text[0] <= '9'; ++count)
            text.remove_prefix(1);
        return count;
    };
    if (text.starts_with('-')) text.remove_prefix(1);
    if (text.starts_with('0')) {
        text.remove_prefix(1);
    } else if (digits() == 0) {
        return false;
    }
    if (text.starts_with('.')) {
        text.remove_prefix(1);
        if (digits() == 0) return false;
    }
    if (text.starts_with('e') || text.starts_with('E')) {
        text.remove_prefix(1);
        if (text.starts_with('+') || text.starts_with('-')) text.remove_prefix(1);
        if (digits() == 0) return false;
    }
    return text.empty();
}

/// How deep the document nests at most, whether or not it is well-formed.
std::size_t depthOf(std::string_view document) {
    std::size_t depth = 0;
    std::size_t deepest = 0;
    bool isInText = false;
    for (std::size_t at = 0; at < document.size(); ++at) {
        const char c = document[at];
        if (isInText) {
            if (c == '\\') ++at;
            isInText = c != '"';
        } else if (c == '"') {
            isInText = true;
        } else if (c == '[' || c == '{') {
            deepest = std::max(deepest, ++depth);
        } else if ((c == ']' || c == '}') && depth > 0) {
            --depth;
        }
    }
    return deepest;
}

using Element = simdjson::dom::element;

std::optional<std::string> textIn(Element element) {
    std::string_view text;
    if (element.get_string().get(text) != simdjson::SUCCESS) return std::nullopt;
    return std::string(text);
}
std::optional<double> numberIn(Element element) {
    double number = 0;
    if (element.get_double().get(number) != simdjson::SUCCESS) return std::nullopt;
    return number;
}
std::optional<bool> booleanIn(Element element) {
    bool boolean = false;
    if (element.get_bool().get(boolean) != simdjson::SUCCESS) return std::nullopt;
    return boolean;
}
bool isSame(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

/// `T`, and arrays of it, are read where the other parser finds them, and nowhere else.
template <class T, class ValueIn>
void compare(std::string_view document, Element root, ValueIn valueIn) {
    const auto agrees = [](const T& read, const T& expected) {
        if constexpr (std::is_same_v<T, double>) {
            // "-0" is an integer for the other one.
            return isSame(read, expected) || (read == 0 && expected == 0);
        } else {
            return read == expected;
        }
    };
    const auto value = decodeJSON<T>(document);
    const auto expected = valueIn(root);
    require(value.has_value() == expected.has_value(), "a value is read as what it is", document);
    if (value) require(agrees(*value, *expected), "a value reads as it does elsewhere", document);

    simdjson::dom::array elements;
    const bool isArray = root.get_array().get(elements) == simdjson::SUCCESS;
    const auto values = decodeJSON<std::vector<T>>(document);
    bool isArrayOf = isArray;
    std::size_t index = 0;
    if (isArray) {
        for (const Element element : elements) {
            const auto each = valueIn(element);
            isArrayOf = isArrayOf && each.has_value();
            if (!isArrayOf) break;
            if (values)
                require(index < values->size() && agrees((*values)[index], *each), "an element reads as elsewhere",
                        document);
            ++index;
        }
    }
    require(values.has_value() == isArrayOf, "an array is read as what it is", document);
    if (values) require(values->size() == index, "an array has all its elements", document);
}

/// The integer that the other parser has found, be it written as 42, 42.0 or 4.2e1. Absent where that cannot be told
/// from what it gives back.
void compareInteger(std::string_view document, Element root) {
    const auto value = decodeJSON<std::int64_t>(document);
    std::int64_t integer = 0;
    double number = 0;
    if (root.is_int64()) {
        require(root.get_int64().get(integer) == simdjson::SUCCESS && value == integer, "an integer is exact",
                document);
    } else if (root.is_uint64()) {
        require(!value, "an integer beyond 64 bits with a sign is refused", document);
    } else if (root.get_double().get(number) == simdjson::SUCCESS) {
        // Written with a point or an exponent.
        const bool isWhole = std::trunc(number) == number && std::abs(number) < 0x1p63;
        if (value)
            require(isWhole ? static_cast<double>(*value) == number : std::abs(number) == 0x1p63,
                    "a whole number is read as it stands", document);
        // What has a fraction as a double has one as it is written.
        if (!isWhole && std::abs(number) != 0x1p63) require(!value, "no integer is made of a fraction", document);
    } else {
        require(!value, "only a number is an integer", document);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view document = fuzzing::textOf(data, size);
    const auto verdict = checkJSON(document);
    if (!verdict) {
        require(verdict.error().position.offset <= document.size(), "an error's place lies within the document",
                [&] { return verdict.error().message(); });
        require(verdict.error().message().find('\n') == std::string::npos, "an error is told in one line");
    }
    constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";
    const std::string_view unmarked =
        document.starts_with(byteOrderMark) ? document.substr(byteOrderMark.size()) : document;

    static simdjson::dom::parser parser;
    Element root;
    const auto error = parser.parse(unmarked.data(), unmarked.size()).get(root);
    if (verdict && error == simdjson::NUMBER_ERROR) {
        // Numbers of any size are well-formed here; what is no number is not.
        const std::string small =
            withNumbers(unmarked, [](std::string_view text) { return isNumber(text) ? "0" : std::string(text); });
        const auto again = parser.parse(small.data(), small.size()).error();
        require(again == simdjson::SUCCESS, "what is accepted is well-formed but for the size of its numbers",
                document);
        return 0;
    }
    if (!verdict && error == simdjson::SUCCESS) {
        require(depthOf(unmarked) > JSONReader::depthLimit, "what is well-formed is accepted",
                [&] { return verdict.error().message(); });
        return 0;
    }
    require(verdict.has_value() == (error == simdjson::SUCCESS), "what is accepted is well-formed", document);
    if (!verdict) {
        require(!decodeJSON<std::string>(document) && !decodeJSON<std::vector<double>>(document),
                "what is malformed is nothing", document);
        return 0;
    }
    compare<std::string>(document, root, textIn);
    compare<double>(document, root, numberIn);
    compare<bool>(document, root, booleanIn);
    compareInteger(document, root);
    return 0;
}
