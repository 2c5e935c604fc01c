#include <kestrel/session/common_form.h>
#include <kestrel/session/login_error.h>

#include <variant>

namespace kestrel {

std::optional<Data> LoginError::tokenData() const {
    const auto* localized = payloadOf<CaseName::localizedError>();
    if (localized == nullptr) return std::nullopt;
    const PlatformError form = localized->error.platformError();
    const auto token = form.userInfo.find("token");
    if (token == form.userInfo.end()) return std::nullopt;
    const auto* data = std::get_if<Data>(&token->second);
    return data != nullptr ? std::optional(*data) : std::nullopt;
}

PlatformError platformError(const LoginError& error) {
    using namespace session_detail;
    return error.match(
        [](const ErrorPayload<0>& localized) { return localized.error.platformError(); },
        [&]<std::size_t Which>(const ErrorPayload<Which>& other) { return formAround(error, other.error); },
        [&](const LoginError::MFARequired& required) { return formWith(error, "companyName", required.companyName); },
        [&](const LoginError::UnsupportedMethod& method) { return formWith(error, "message", method.message); },
        [&]<std::size_t Which>(NoPayload<Which>) { return plainForm(error); });
}

}  // namespace kestrel
