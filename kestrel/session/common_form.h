#pragma once

#include <kestrel/foundation/any_error.h>
#include <kestrel/foundation/platform_error.h>
#include <kestrel/foundation/type_name.h>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

/// The common forms of this library's errors that carry something. Domain and code are those of every error: the type's
/// name and the case's number. A text that a case carries stands in the user info under its label. An error that a case
/// carries gives its texts and its user info, to which its own domain and code come as "underlyingDomain" and
/// "underlyingCode". Only a case that is called `localizedError` has the form of the error that it carries, unchanged.
namespace kestrel::session_detail {

inline constexpr std::string_view underlyingDomainKey = "underlyingDomain";
inline constexpr std::string_view underlyingCodeKey = "underlyingCode";

/// The form of a case as if it carried nothing.
template <class E>
[[nodiscard]] PlatformError plainForm(const E& error) {
    return error_detail::plainForm(typeName<E>(), static_cast<std::int64_t>(error.caseIndex()));
}

[[nodiscard]] PlatformError withUnderlying(PlatformError form, const AnyError& underlying);
[[nodiscard]] PlatformError withText(PlatformError form, std::string_view label, const std::string& text);

template <class E>
[[nodiscard]] PlatformError formAround(const E& error, const AnyError& underlying) {
    return withUnderlying(plainForm(error), underlying);
}
template <class E>
[[nodiscard]] PlatformError formAround(const E& error, const std::optional<AnyError>& underlying) {
    return underlying ? withUnderlying(plainForm(error), *underlying) : plainForm(error);
}
template <class E>
[[nodiscard]] PlatformError formWith(const E& error, std::string_view label, const std::string& text) {
    return withText(plainForm(error), label, text);
}

}  // namespace kestrel::session_detail
