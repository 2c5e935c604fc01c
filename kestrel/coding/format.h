#pragma once

#include <fmt/format.h>
#include <kestrel/coding/codec.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/enumeration.h>
#include <kestrel/foundation/url.h>
#include <kestrel/foundation/uuid.h>
#include <concepts>
#include <string>
#include <string_view>
#include <type_traits>

/// The library's values in the format strings of {fmt}, for logs and messages to developers: `fmt::print("{}",
/// contact)`. A host that includes this links fmt itself; nothing else of the library needs it.
///
/// An identifier is shown as "Contact/12", a date as its UTC moment, an enumeration by the name of its case, a UUID and
/// a URL as their text, everything else as its debug mirror, over several lines. The specifications are those of
/// strings: `{:>20}` aligns. Nothing parses what comes out, and it may change.
namespace kestrel {

namespace format_detail {

/// Whether the library declares a type, and not the host or another library.
template <class T>
consteval bool isOfLibrary() {
    const std::string_view name = __PRETTY_FUNCTION__;
    const std::size_t start = name.find("T = ") + std::string_view("T = ").size();
    return name.substr(start).starts_with("kestrel::");
}

}  // namespace format_detail

/// What of the library, or of a host's own coded types, has a form to be shown in.
template <class T>
concept Formattable =
    Coded<T> || std::same_as<T, Date> || std::same_as<T, UUID> || std::same_as<T, URL> ||
    (format_detail::isOfLibrary<T>() && (std::is_enum_v<T> || requires(const T& value) { value.stringValue(); }));

/// How a value is shown.
template <Formattable T>
[[nodiscard]] std::string formatted(const T& value) {
    if constexpr (std::is_enum_v<T>) {
        return std::string(caseName(value));
    } else if constexpr (requires { value.stringValue(); }) {
        return value.stringValue();
    } else if constexpr (std::same_as<T, Date>) {
        return value.description();
    } else if constexpr (!Coded<T>) {
        return value.text();
    } else {
        return debugMirror(value);
    }
}

}  // namespace kestrel

namespace fmt {

/// Formats as the text that `kestrel::formatted` gives.
template <kestrel::Formattable T>
struct formatter<T> : formatter<std::string_view> {
    /// As for strings.
    template <class Context>
    auto format(const T& value, Context& context) const {
        return formatter<std::string_view>::format(kestrel::formatted(value), context);
    }
};

}  // namespace fmt
