#include <kestrel/localization/localized.h>
#include <kestrel/session/common_form.h>
#include <kestrel/session/credential_validation_error.h>

#include <string>

namespace kestrel {

namespace {

UserErrorMessage authenticationError(std::string message) {
    return {localized("Authentication Error", "Authentication error title"), std::move(message)};
}

std::string cannotAuthenticateText() {
    return localized("Cannot authenticate the user", "Authentication error message");
}

}  // namespace

std::optional<UserErrorMessage> CredentialValidationError::userErrorMessage() const {
    using Message = std::optional<UserErrorMessage>;
    return match(
        [](const CannotAuthenticate& failure) -> Message {
            if (!failure.error) return authenticationError(cannotAuthenticateText());
            const std::string code = std::to_string(failure.error->platformError().code);
            return authenticationError(
                localized("Cannot authenticate the user.\nError Code: %lld", "Authentication error message", {code}));
        },
        [](NoPayload<1>) -> Message {
            return UserErrorMessage(
                localized("No Internet Connection", "Authentication error title"),
                localized("An Internet connection is required to verify your password to unlock Kestrel.",
                          "Authentication error message"));
        },
        [](NoPayload<2>) -> Message { return std::nullopt; },
        [](NoPayload<3>) -> Message { return authenticationError(cannotAuthenticateText()); });
}

PlatformError platformError(const CredentialValidationError& error) {
    const auto failure = error.cannotAuthenticate();
    return session_detail::formAround(error, failure ? failure->error : std::nullopt);
}

}  // namespace kestrel
