#include <fmt/format.h>
#include <host/session/login_service.h>

#include <algorithm>

namespace kestrel::host {

std::optional<UserErrorMessage> userErrorMessage(const LoginError& error) {
    using enum LoginErrorCaseName;
    switch (error.caseName()) {
        case localizedError: {
            const AnyError carried = *error.localizedError();
            if (const auto* validation = carried.as<CredentialValidationError>()) return validation->userErrorMessage();
            return UserErrorMessage::usingDescriptionAndRecoverySuggestion(carried);
        }
        case invalidToken: return UserErrorMessage("The token is not valid.", "Ask support for another one.");
        case oneTimeCodeRequired:
            return UserErrorMessage("A one-time code is required.", "Enter the one that your device shows.");
        case mfaRequired:
            return UserErrorMessage(fmt::format("{} asks for a second factor.", error.mfaRequired()->companyName),
                                    "Add one to your account: `kestrel account second-factor`.");
        case invalidVerificationCode:
            return UserErrorMessage("The one-time code is not valid.", "Enter the one that your device shows now.");
        case invalidRecoveryCode:
            return UserErrorMessage("The recovery code is not valid.", "Each is good for one login.");
        case unsupportedAuthenticationMethod:
            return UserErrorMessage::titleOnly(error.unsupportedAuthenticationMethod()->message);
        case offlineSetupError:
            return UserErrorMessage("The company's data cannot be used.",
                                    error.offlineSetupError()->platformError().localizedDescription);
        case offlineDownloadError:
            return UserErrorMessage("The company's data cannot be read.",
                                    error.offlineDownloadError()->platformError().localizedDescription);
        case corruptDatabase:
            return UserErrorMessage("The company's database is damaged.", "Restore it from a backup.");
        case environmentError:
            return UserErrorMessage("The accounts cannot be read.",
                                    error.environmentError()->platformError().localizedDescription);
        case cancelled:
        case authorizationCancelled: return std::nullopt;
        case invalidAuthenticationResponse:
        case authorizationError:
        case unknown: break;
    }
    return UserErrorMessage::unexpectedError();
}

UserErrorMessage userErrorMessage(const ForcedLogout& logout) {
    using enum ForcedLogoutReason;
    const auto titled = [&](std::string_view text) {
        return UserErrorMessage(fmt::format("You were signed out of {}.", logout.companyName), std::string(text));
    };
    switch (logout.reason) {
        case deviceRevoked: return titled("The access of this device was withdrawn.");
        case userDeactivated: return titled("Your account there was deactivated.");
        case migrationFailure: return titled("The database could not be brought to the current schema.");
    }
    return UserErrorMessage::unexpectedError();
}

std::string lineOf(const UserErrorMessage& message) {
    std::string line = message.title;
    const std::optional<std::string>& more = message.message;
    if (more) line += (line.ends_with('.') ? " " : ": ") + *more;
    std::ranges::replace(line, '\n', ' ');
    return line;
}

Failure failureOf(const LoginError& error) {
    const auto message = userErrorMessage(error);
    return Failure(
        fmt::format("{} ({})", message ? lineOf(*message) : "the login was given up", rawValue(error.caseName())));
}

void resumeSession(const Runtime& runtime) {
    std::optional<ForcedLogout> forced;
    std::optional<LoginError> problem;
    const auto resuming =
        runtime[login].resume().sink([&](const ForcedLogout& logout) { forced = logout; },
                                     [&](const Completion<LoginError>& end) { problem = end.failure(); });
    if (problem) throw failureOf(*problem);
    if (forced) throw Failure(fmt::format("{} ({})", lineOf(userErrorMessage(*forced)), rawValue(forced->reason)));
}

}  // namespace kestrel::host
