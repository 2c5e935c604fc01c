#include <kestrel/session/common_form.h>
#include <kestrel/session/service_errors.h>

namespace kestrel {

using namespace session_detail;

PlatformError platformError(const ReadError& error) {
    return error.match(
        [&]<std::size_t Which>(const ErrorPayload<Which>& payload) { return formAround(error, payload.error); },
        [&](const ReadError::UnexpectedType& type) { return formWith(error, "explanation", type.explanation); },
        [&]<std::size_t Which>(NoPayload<Which>) { return plainForm(error); });
}

PlatformError platformError(const UpdateError& error) {
    return error.match(
        [&]<std::size_t Which>(const ErrorPayload<Which>& payload) { return formAround(error, payload.error); },
        [&](const UpdateError::InternalError& internal) { return formWith(error, "reason", internal.reason); },
        [&]<std::size_t Which>(NoPayload<Which>) { return plainForm(error); });
}

PlatformError platformError(const CloudError& error) {
    const auto localized = error.localizedError();
    return localized ? localized->platformError() : plainForm(error);
}

PlatformError platformError(const PasswordResetError& error) {
    return formAround(error, error.networkError());
}

PlatformError platformError(const GeocodeError& error) {
    return formAround(error, error.underlyingError());
}

}  // namespace kestrel
