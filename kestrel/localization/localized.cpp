#include <kestrel/foundation/any_error.h>
#include <kestrel/foundation/fatal.h>
#include <kestrel/localization/localized.h>
#include <kestrel/localization/text_store.h>

#include <charconv>
#include <cstddef>
#include <system_error>

namespace kestrel {

namespace {

using Arguments = std::initializer_list<std::string_view>;

// What starts with the percent sign at the front of `rest`.
struct Directive {
    enum class Kind { literal, next, numbered } kind;
    std::size_t length;
    // From 1; of a numbered placeholder only. Zero if it is too large for any list of arguments.
    std::size_t number = 0;
};

// The length of the conversion at the front of `rest`: of a text or of an integer. Zero when there is none.
std::size_t conversionLength(std::string_view rest) {
    for (const std::string_view conversion : {"@", "lld"}) {
        if (rest.starts_with(conversion)) return conversion.size();
    }
    return 0;
}

Directive parseDirective(std::string_view rest) {
    using enum Directive::Kind;
    if (rest.starts_with("%%")) return {.kind = literal, .length = 2};
    if (const auto length = conversionLength(rest.substr(1)); length > 0) return {.kind = next, .length = length + 1};
    const auto end = rest.find_first_not_of("0123456789", 1);
    if (end == 1 || end == std::string_view::npos || rest[end] != '$') return {.kind = literal, .length = 1};
    const auto length = conversionLength(rest.substr(end + 1));
    if (length == 0) return {.kind = literal, .length = 1};
    std::size_t number = 0;
    if (std::from_chars(rest.data() + 1, rest.data() + end, number).ec != std::errc{}) number = 0;
    return {.kind = numbered, .length = end + 1 + length, .number = number};
}

std::string filled(std::string_view pattern, Arguments arguments, std::source_location where) {
    std::string result;
    std::size_t taken = 0;
    for (auto rest = pattern; !rest.empty();) {
        const auto percent = rest.find('%');
        result += rest.substr(0, percent);
        if (percent == std::string_view::npos) break;
        rest.remove_prefix(percent);

        const auto [kind, length, number] = parseDirective(rest);
        rest.remove_prefix(length);
        if (kind == Directive::Kind::literal) {
            result += '%';
            continue;
        }
        const auto wanted = kind == Directive::Kind::next ? ++taken : number;
        if (wanted < 1 || wanted > arguments.size()) {
            fatal("the text \"" + std::string{pattern} + "\" asks for more than the " +
                      std::to_string(arguments.size()) + " arguments of its call",
                  where);
        }
        result += arguments.begin()[wanted - 1];
    }
    return result;
}

}  // namespace

std::string localized(std::string_view text, std::string_view /*comment*/) {
    auto found = localization::TextStore::shared().find(text);
    return found ? *std::move(found) : std::string{text};
}

std::string localized(std::string_view text, std::string_view comment, Arguments arguments,
                      std::source_location where) {
    return filled(localized(text, comment), arguments, where);
}

std::string localized(const LocalizableText& text) {
    return localized(text.text, text.comment);
}

std::string error_detail::describePlainForm(std::string_view domain, std::int64_t code) {
    return localized("The operation couldn’t be completed. (%1$@ error %2$@.)",
                     "Error of which nothing more is known, 1: its domain, 2: its number",
                     {domain, std::to_string(code)});
}

}  // namespace kestrel
