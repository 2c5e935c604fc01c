#pragma once

#include <initializer_list>
#include <source_location>
#include <string>
#include <string_view>

namespace kestrel {

// The texts that the library shows to people.
//
// A call names the text in the development language, English, and a comment for translators:
//
//     localized("Due Date", "Sort key of a pipeline board.")
//     localized("Extra Field %@", "Default name of a field, 1: its index", {std::to_string(index)})
//
// Both have to be string literals, for `scripts/update-texts` reads them out of the source. The text alone is the
// key: the comment never takes part in a lookup, and two calls with the same text get the same translation.
//
// Every call looks up anew, in the language that is current at that moment (resource_bundle.h), so what is kept
// should be the text's key and not its translation. All functions may be called from any thread. A lookup is a hash
// lookup in memory; the first one of a language reads that language's catalogue. It stops the program through fatal()
// if the library's resource bundle is missing, incomplete or damaged.

/// The text in the current language, as UTF-8; the text itself if the language lacks it.
[[nodiscard]] std::string localized(std::string_view text, std::string_view comment);

/// The text in the current language with its placeholders filled.
///
/// `%@` stands for the next argument in order and `%1$@`, `%2$@` and so on for the first, the second and so on, which
/// lets a translation change the order. `%lld` and `%1$lld` are the same and tell translators that an integer stands
/// there; the caller gives its decimal text. `%%` is a percent sign, and any other percent sign stands for itself. What
/// an argument contains is never looked at. Arguments without a placeholder are left out.
///
/// A placeholder without an argument is a mistake in the program: fatal(), naming the caller's line.
[[nodiscard]] std::string localized(std::string_view text, std::string_view comment,
                                    std::initializer_list<std::string_view> arguments,
                                    std::source_location where = std::source_location::current());

/// A text that is known at compile time and looked up later, for tables:
///
///     constexpr std::array names{localizable("Ascending", ""), localizable("Descending", "")};
///     ... localized(names[index]) ...
struct LocalizableText {
    /// In the development language; the key. Never empty.
    std::string_view text;
    /// For translators only.
    std::string_view comment;

    friend bool operator==(const LocalizableText&, const LocalizableText&) = default;
};

/// Marks a text for extraction without looking it up. An empty text does not compile.
[[nodiscard]] consteval LocalizableText localizable(std::string_view text, std::string_view comment) {
    if (text.empty()) throw "there is nothing to translate in an empty text";
    return {.text = text, .comment = comment};
}

/// The text in the current language; the text itself if the language lacks it.
[[nodiscard]] std::string localized(const LocalizableText& text);

}  // namespace kestrel
