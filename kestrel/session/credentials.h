#pragma once

#include <kestrel/foundation/choice.h>
#include <kestrel/foundation/data.h>
#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace kestrel {

/// What an authorisation by the platform, filling in a password or using a passkey, can return. A type says so with
/// `using AuthorizesLogin = void;`.
template <class T>
concept AuthorizationCredential = std::equality_comparable<T> && requires { typename T::AuthorizesLogin; };

/// A name and a password that the platform has filled in.
struct PasswordCredential {
    /// Says that an authorisation can return it.
    using AuthorizesLogin = void;

    /// The name to sign in with.
    std::string username{};
    /// Secret; not to be stored or logged.
    std::string password{};

    friend bool operator==(const PasswordCredential&, const PasswordCredential&) = default;
};
static_assert(AuthorizationCredential<PasswordCredential>);

/// The assertion of a passkey (WebAuthn).
struct PasskeyAuthorizationPublicKeyCredential {
    /// Says that an authorisation can return it.
    using AuthorizesLogin = void;

    /// Over the authenticator's data and the hash of the client's.
    Data signature{};
    /// What was signed for: the challenge and where it came from, as JSON.
    Data clientDataJSON{};
    /// What the authenticator says of itself.
    Data authenticatorData{};
    /// The user handle that was stored with the passkey.
    Data userID{};
    /// Identifies the passkey.
    Data credentialIdentifier{};

    /// Equal when all members are.
    friend bool operator==(const PasskeyAuthorizationPublicKeyCredential&,
                           const PasskeyAuthorizationPublicKeyCredential&) = default;
};
static_assert(AuthorizationCredential<PasskeyAuthorizationPublicKeyCredential>);

/// Why an authorisation with a passkey gave no credential.
enum class PasskeyAuthorizationTransactionError : std::uint8_t {
    noPublicKeyCredentialRequestFound,  ///< the platform finished without having asked for an assertion
    unexpectedCredentialType,           ///< the credential is of a kind that the login did not ask for
};

/// The payload of AuthenticationCredentialSet::basic.
struct BasicCredential {
    /// The address of the account.
    std::string email{};
    /// Secret; not to be stored or logged.
    std::string password{};

    friend bool operator==(const BasicCredential&, const BasicCredential&) = default;
};

/// The payload of AuthenticationCredentialSet::withOneTimeCode.
struct OneTimeCodeCredential {
    /// The address of the account.
    std::string email{};
    /// Secret; not to be stored or logged.
    std::string password{};
    /// As the user typed it.
    std::string oneTimeCode{};

    friend bool operator==(const OneTimeCodeCredential&, const OneTimeCodeCredential&) = default;
};

/// The payload of AuthenticationCredentialSet::withRecoveryCode.
struct RecoveryCodeCredential {
    /// The address of the account.
    std::string email{};
    /// Secret; not to be stored or logged.
    std::string password{};
    /// As the user typed it; a recovery code is good once.
    std::string recoveryCode{};

    friend bool operator==(const RecoveryCodeCredential&, const RecoveryCodeCredential&) = default;
};

/// What a step of a login submits. Holds secrets: neither coded nor printed.
class AuthenticationCredentialSet
    : public Choice<AuthenticationCredentialSet, BasicCredential, OneTimeCodeCredential, RecoveryCodeCredential,
                    PasskeyAuthorizationPublicKeyCredential, std::string> {
  public:
    /// Address and password.
    [[nodiscard]] static AuthenticationCredentialSet basic(std::string email, std::string password) {
        return AuthenticationCredentialSet(BasicCredential{.email = std::move(email), .password = std::move(password)});
    }
    /// Address, password and a code that is good for a short time, as second factor.
    [[nodiscard]] static AuthenticationCredentialSet withOneTimeCode(std::string email, std::string password,
                                                                     std::string oneTimeCode) {
        return AuthenticationCredentialSet(OneTimeCodeCredential{
            .email = std::move(email), .password = std::move(password), .oneTimeCode = std::move(oneTimeCode)});
    }
    /// Address, password and one of the codes for who has lost the second factor.
    [[nodiscard]] static AuthenticationCredentialSet withRecoveryCode(std::string email, std::string password,
                                                                      std::string recoveryCode) {
        return AuthenticationCredentialSet(RecoveryCodeCredential{
            .email = std::move(email), .password = std::move(password), .recoveryCode = std::move(recoveryCode)});
    }
    /// The assertion of a passkey.
    [[nodiscard]] static AuthenticationCredentialSet passkey(PasskeyAuthorizationPublicKeyCredential credential) {
        return AuthenticationCredentialSet(std::move(credential));
    }
    /// A token that support gave out.
    [[nodiscard]] static AuthenticationCredentialSet supportToken(std::string token) {
        return AuthenticationCredentialSet(std::move(token));
    }

    [[nodiscard]] std::optional<BasicCredential> basic() const { return payload<BasicCredential>(); }
    [[nodiscard]] std::optional<OneTimeCodeCredential> withOneTimeCode() const {
        return payload<OneTimeCodeCredential>();
    }
    [[nodiscard]] std::optional<RecoveryCodeCredential> withRecoveryCode() const {
        return payload<RecoveryCodeCredential>();
    }
    [[nodiscard]] std::optional<PasskeyAuthorizationPublicKeyCredential> passkey() const {
        return payload<PasskeyAuthorizationPublicKeyCredential>();
    }
    [[nodiscard]] std::optional<std::string> supportToken() const { return payload<std::string>(); }

    friend bool operator==(const AuthenticationCredentialSet&, const AuthenticationCredentialSet&) = default;

  private:
    explicit AuthenticationCredentialSet(Variant value) : Choice(std::move(value)) {}
};

}  // namespace kestrel
