#pragma once

#include <kestrel/foundation/data.h>
#include <kestrel/session/named_choice.h>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace kestrel {

/// The cases of LoginError, without what they carry.
enum class LoginErrorCaseName : std::uint8_t {
    localizedError,                   ///< LoginError::localizedError
    invalidToken,                     ///< LoginError::invalidToken
    oneTimeCodeRequired,              ///< LoginError::oneTimeCodeRequired
    mfaRequired,                      ///< LoginError::mfaRequired
    invalidVerificationCode,          ///< LoginError::invalidVerificationCode
    invalidRecoveryCode,              ///< LoginError::invalidRecoveryCode
    invalidAuthenticationResponse,    ///< LoginError::invalidAuthenticationResponse
    authorizationError,               ///< LoginError::authorizationError
    authorizationCancelled,           ///< LoginError::authorizationCancelled
    unsupportedAuthenticationMethod,  ///< LoginError::unsupportedAuthenticationMethod
    environmentError,                 ///< LoginError::environmentError
    offlineSetupError,                ///< LoginError::offlineSetupError
    offlineDownloadError,             ///< LoginError::offlineDownloadError
    corruptDatabase,                  ///< LoginError::corruptDatabase
    cancelled,                        ///< LoginError::cancelled
    unknown,                          ///< LoginError::unknown
};
template <>
inline constexpr auto enumerationForm<LoginErrorCaseName> = EnumerationForm::caseText;

/// The payload of LoginError::mfaRequired.
struct LoginErrorMFARequired {
    /// The company that asks for it.
    std::string companyName{};

    friend bool operator==(const LoginErrorMFARequired&, const LoginErrorMFARequired&) = default;
};

/// The payload of LoginError::unsupportedAuthenticationMethod.
struct LoginErrorUnsupportedMethod {
    /// What the server says about it.
    std::string message{};

    friend bool operator==(const LoginErrorUnsupportedMethod&, const LoginErrorUnsupportedMethod&) = default;
};

/// Why a step of a login failed.
class LoginError : public NamedChoice<LoginError, LoginErrorCaseName, ErrorPayload<0>, NoPayload<1>, NoPayload<2>,
                                      LoginErrorMFARequired, NoPayload<4>, NoPayload<5>, ErrorPayload<6>,
                                      ErrorPayload<7>, NoPayload<8>, LoginErrorUnsupportedMethod, ErrorPayload<10>,
                                      ErrorPayload<11>, ErrorPayload<12>, NoPayload<13>, NoPayload<14>, NoPayload<15>> {
  public:
    /// The payload of `mfaRequired`.
    using MFARequired = LoginErrorMFARequired;
    /// The payload of `unsupportedAuthenticationMethod`.
    using UnsupportedMethod = LoginErrorUnsupportedMethod;

    /// An error that has texts for the user.
    [[nodiscard]] static LoginError localizedError(AnyError error) {
        return make<CaseName::localizedError>(std::move(error));
    }
    /// The server does not accept the token, or no longer.
    [[nodiscard]] static LoginError invalidToken() { return make<CaseName::invalidToken>(); }
    /// The account asks for a one-time code beside the password.
    [[nodiscard]] static LoginError oneTimeCodeRequired() { return make<CaseName::oneTimeCodeRequired>(); }
    /// The company asks for a second factor.
    [[nodiscard]] static LoginError mfaRequired(std::string companyName) {
        return make<CaseName::mfaRequired>(std::move(companyName));
    }
    /// The one-time code is wrong, or its time is over.
    [[nodiscard]] static LoginError invalidVerificationCode() { return make<CaseName::invalidVerificationCode>(); }
    /// The recovery code is wrong, or was used.
    [[nodiscard]] static LoginError invalidRecoveryCode() { return make<CaseName::invalidRecoveryCode>(); }
    /// The server's answer could not be understood.
    [[nodiscard]] static LoginError invalidAuthenticationResponse(AnyError error) {
        return make<CaseName::invalidAuthenticationResponse>(std::move(error));
    }
    /// The platform's authorisation failed.
    [[nodiscard]] static LoginError authorizationError(AnyError error) {
        return make<CaseName::authorizationError>(std::move(error));
    }
    /// The user cancelled the platform's authorisation.
    [[nodiscard]] static LoginError authorizationCancelled() { return make<CaseName::authorizationCancelled>(); }
    /// The account signs in in a way that this client does not know.
    [[nodiscard]] static LoginError unsupportedAuthenticationMethod(std::string message) {
        return make<CaseName::unsupportedAuthenticationMethod>(std::move(message));
    }
    /// The place in which the program runs does not allow it.
    [[nodiscard]] static LoginError environmentError(AnyError error) {
        return make<CaseName::environmentError>(std::move(error));
    }
    /// The local database could not be set up.
    [[nodiscard]] static LoginError offlineSetupError(AnyError error) {
        return make<CaseName::offlineSetupError>(std::move(error));
    }
    /// The company's data could not be downloaded.
    [[nodiscard]] static LoginError offlineDownloadError(AnyError error) {
        return make<CaseName::offlineDownloadError>(std::move(error));
    }
    /// The local database cannot be read.
    [[nodiscard]] static LoginError corruptDatabase() { return make<CaseName::corruptDatabase>(); }
    /// The user cancelled the login.
    [[nodiscard]] static LoginError cancelled() { return make<CaseName::cancelled>(); }
    /// Nothing better is known.
    [[nodiscard]] static LoginError unknown() { return make<CaseName::unknown>(); }

    [[nodiscard]] std::optional<AnyError> localizedError() const { return errorOf<CaseName::localizedError>(); }
    [[nodiscard]] std::optional<MFARequired> mfaRequired() const { return payload<MFARequired>(); }
    [[nodiscard]] std::optional<AnyError> invalidAuthenticationResponse() const {
        return errorOf<CaseName::invalidAuthenticationResponse>();
    }
    [[nodiscard]] std::optional<AnyError> authorizationError() const { return errorOf<CaseName::authorizationError>(); }
    [[nodiscard]] std::optional<UnsupportedMethod> unsupportedAuthenticationMethod() const {
        return payload<UnsupportedMethod>();
    }
    [[nodiscard]] std::optional<AnyError> environmentError() const { return errorOf<CaseName::environmentError>(); }
    [[nodiscard]] std::optional<AnyError> offlineSetupError() const { return errorOf<CaseName::offlineSetupError>(); }
    [[nodiscard]] std::optional<AnyError> offlineDownloadError() const {
        return errorOf<CaseName::offlineDownloadError>();
    }

    /// The token that a `localizedError` brings along: what its payload's common form has in the user info under
    /// "token", when that is data. Absent for every other case.
    [[nodiscard]] std::optional<Data> tokenData() const;

    friend bool operator==(const LoginError&, const LoginError&) = default;

  private:
    friend CodingAccess;
    explicit LoginError(Variant value) : Base(std::move(value)) {}
};
static_assert(AutoCaseName<LoginError>);

/// That of the payload for `localizedError`; else its own (common_form.h).
[[nodiscard]] PlatformError platformError(const LoginError& error);

}  // namespace kestrel
