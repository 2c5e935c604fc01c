#pragma once

#include <host/accounts/account_store.h>
#include <host/failure.h>
#include <kestrel/reactive/publisher.h>
#include <kestrel/runtime/runtime.h>
#include <kestrel/runtime/service_protocol.h>
#include <kestrel/session/credential_validation_error.h>
#include <kestrel/session/credentials.h>
#include <kestrel/session/forced_logout.h>
#include <kestrel/session/login_error.h>
#include <kestrel/session/login_state.h>
#include <kestrel/session/user_error_message.h>
#include <optional>
#include <string>

namespace kestrel::host {

/// Signs a user in, step by step. Each step gives the state that comes next, or finishes without one when the user is
/// signed in. A step that fails leaves the login where it was.
class LoginService : public ServiceProtocol {
  public:
    /// Where the login stands, now and after every step; absent while none is under way.
    [[nodiscard]] virtual AnyPublisher<std::optional<LoginState>> loginState() const = 0;
    /// The first step: who wants to sign in.
    [[nodiscard]] virtual AnyPublisher<LoginState, LoginError> identifyUser(std::string email) = 0;
    [[nodiscard]] virtual AnyPublisher<LoginState, LoginError> authenticate(
        const AuthenticationCredentialSet& credentials) = 0;
    /// In the place of a one-time code, for a user without the device.
    [[nodiscard]] virtual AnyPublisher<LoginState, LoginError> askForRecoveryCode() = 0;
    [[nodiscard]] virtual AnyPublisher<LoginState, LoginError> selectCompany(const LoginState::Company& company) = 0;
    [[nodiscard]] virtual AnyPublisher<Never> cancelLogin() = 0;

    /// Takes up the session that was left when the program last ended. Gives the order to sign out, carried out, when
    /// the session may not go on, else finishes; nothing happens when there is none. One that cannot be taken up now,
    /// for the accounts or the database cannot be read, is left for later: a failure.
    [[nodiscard]] virtual AnyPublisher<ForcedLogout, LoginError> resume() = 0;
    /// The company that the user is signed in to; absent while nobody is.
    [[nodiscard]] virtual std::optional<Membership> signedInTo() const = 0;
    /// Whether the password is that of the user who is signed in, to unlock the program.
    [[nodiscard]] virtual AnyPublisher<Never, CredentialValidationError> unlock(std::string password) = 0;
};

inline constexpr ServiceKey<LoginService> login;

/// What a user sees of a failed login; nothing when the user cancelled.
[[nodiscard]] std::optional<UserErrorMessage> userErrorMessage(const LoginError& error);
[[nodiscard]] UserErrorMessage userErrorMessage(const ForcedLogout& logout);

/// The message on one line.
[[nodiscard]] std::string lineOf(const UserErrorMessage& message);
/// What a step that failed is told as: its message and the name of its case.
[[nodiscard]] Failure failureOf(const LoginError& error);
/// Takes up the last session of a runtime with a LoginService. A Failure when it had to end, or cannot be taken up now.
void resumeSession(const Runtime& runtime);

}  // namespace kestrel::host
