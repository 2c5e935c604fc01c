#include <kestrel/localization/localized.h>
#include <kestrel/session/user_error_message.h>

#include <utility>

namespace kestrel {

UserErrorMessage::UserErrorMessage(std::string titleText, std::optional<std::string> messageText)
    : title(std::move(titleText)),
      message(messageText && messageText->empty() ? std::nullopt : std::move(messageText)) {}

UserErrorMessage UserErrorMessage::titleOnly(std::string titleText) {
    return {std::move(titleText), std::nullopt};
}

UserErrorMessage UserErrorMessage::usingDescription(const AnyError& from) {
    return titleOnly(from.platformError().localizedDescription);
}

UserErrorMessage UserErrorMessage::usingDescriptionAndRecoverySuggestion(const AnyError& from) {
    PlatformError error = from.platformError();
    return {std::move(error.localizedDescription), std::move(error.localizedRecoverySuggestion)};
}

UserErrorMessage UserErrorMessage::usingDescriptionAndFailureReason(const AnyError& from) {
    PlatformError error = from.platformError();
    return {std::move(error.localizedDescription), std::move(error.localizedFailureReason)};
}

UserErrorMessage UserErrorMessage::unexpectedError() {
    return titleOnly(localized("An unexpected error occurred.", "Fallback error message"));
}

UserErrorMessage UserErrorMessage::genericNetworkError() {
    return {localized("There was an error communicating with the server.",
                      "Title for an error message for a generic network error"),
            localized("Please try again later.", "Recovery suggestion for a generic network error")};
}

}  // namespace kestrel
