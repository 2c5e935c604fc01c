#pragma once

#include <kestrel/foundation/any_error.h>
#include <kestrel/foundation/choice.h>
#include <kestrel/session/user_error_message.h>
#include <concepts>
#include <optional>
#include <utility>

namespace kestrel {

/// The payload of CredentialValidationError::cannotAuthenticate.
struct CannotAuthenticate {
    /// Not from every error, for the reason that ErrorPayload gives (named_choice.h).
    template <std::same_as<std::optional<AnyError>> E>
    explicit CannotAuthenticate(E carried) : error(std::move(carried)) {}

    /// What went wrong, when known.
    std::optional<AnyError> error;

    friend bool operator==(const CannotAuthenticate&, const CannotAuthenticate&) = default;
};

/// Why the password that is to unlock the application could not be verified.
class CredentialValidationError
    : public Choice<CredentialValidationError, CannotAuthenticate, NoPayload<1>, NoPayload<2>, NoPayload<3>> {
  public:
    /// The payload of the case of that name.
    using CannotAuthenticate = kestrel::CannotAuthenticate;

    /// The password is wrong, or checking it failed.
    [[nodiscard]] static CredentialValidationError cannotAuthenticate(std::optional<AnyError> error) {
        return CredentialValidationError(CannotAuthenticate{std::move(error)});
    }
    /// The server cannot be reached.
    [[nodiscard]] static CredentialValidationError noInternetConnection() {
        return CredentialValidationError(NoPayload<1>{});
    }
    /// The user cancelled.
    [[nodiscard]] static CredentialValidationError cancelled() { return CredentialValidationError(NoPayload<2>{}); }
    /// The server refuses further attempts for now.
    [[nodiscard]] static CredentialValidationError throttled() { return CredentialValidationError(NoPayload<3>{}); }

    [[nodiscard]] std::optional<CannotAuthenticate> cannotAuthenticate() const { return payload<CannotAuthenticate>(); }

    /// What the user sees, in the current language; nothing when the user cancelled.
    [[nodiscard]] std::optional<UserErrorMessage> userErrorMessage() const;

    friend bool operator==(const CredentialValidationError&, const CredentialValidationError&) = default;

  private:
    explicit CredentialValidationError(Variant value) : Choice(std::move(value)) {}
};

/// Its own form, around that of the error that it carries (common_form.h).
[[nodiscard]] PlatformError platformError(const CredentialValidationError& error);

static_assert(UserErrorMessageConvertible<CredentialValidationError>);

}  // namespace kestrel
