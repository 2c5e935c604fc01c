#pragma once

#include <kestrel/foundation/any_error.h>
#include <kestrel/foundation/read_only.h>
#include <concepts>
#include <optional>
#include <string>

namespace kestrel {

/// What the interface shows for an error: a title and, where there is more to say, a message. In the language that was
/// current when it was made.
struct UserErrorMessage {
    /// An empty message is none.
    UserErrorMessage(std::string titleText, std::optional<std::string> messageText);

    /// What happened, in a line.
    ReadOnly<std::string, UserErrorMessage> title;
    /// Never empty.
    ReadOnly<std::optional<std::string>, UserErrorMessage> message;

    /// Without a message.
    [[nodiscard]] static UserErrorMessage titleOnly(std::string titleText);
    /// The description alone.
    [[nodiscard]] static UserErrorMessage usingDescription(const AnyError& from);
    /// The description, and what the user can do about it.
    [[nodiscard]] static UserErrorMessage usingDescriptionAndRecoverySuggestion(const AnyError& from);
    /// The description, and why it happened.
    [[nodiscard]] static UserErrorMessage usingDescriptionAndFailureReason(const AnyError& from);
    /// For an error of which nothing better is known.
    [[nodiscard]] static UserErrorMessage unexpectedError();
    /// For any trouble between this program and the server.
    [[nodiscard]] static UserErrorMessage genericNetworkError();

    friend bool operator==(const UserErrorMessage&, const UserErrorMessage&) = default;
};

/// An error that says what the user sees of it: nothing when absent, as when the user cancelled.
template <class E>
concept UserErrorMessageConvertible = ErrorValue<E> && requires(const E& error) {
    { error.userErrorMessage() } -> std::same_as<std::optional<UserErrorMessage>>;
};

}  // namespace kestrel
