#include <gtest/gtest.h>
#include <kestrel/localization/resource_bundle.h>
#include <kestrel/session/credential_validation_error.h>
#include <kestrel/session/login_error.h>
#include <kestrel/session/on_demand.h>
#include <kestrel/session/service_errors.h>
#include <kestrel/session/sync_status.h>
#include <kestrel/session/user_error_message.h>

namespace {

using namespace kestrel;

class UserErrorMessages : public testing::Test {
  protected:
    UserErrorMessages() { ResourceBundle::setPreferredLanguages({"en"}); }
    ~UserErrorMessages() override { ResourceBundle::setPreferredLanguages({}); }
};

TEST_F(UserErrorMessages, haveNoEmptyMessage) {
    EXPECT_EQ(UserErrorMessage("Title", ""), UserErrorMessage::titleOnly("Title"));
    EXPECT_FALSE(UserErrorMessage("Title", "").message);
    EXPECT_EQ(*UserErrorMessage("Title", " ").message, " ");

    PlatformError error{.localizedDescription = "It broke.",
                        .localizedRecoverySuggestion = "Mend it.",
                        .localizedFailureReason = "It was old."};
    EXPECT_EQ(UserErrorMessage::usingDescription(error), UserErrorMessage::titleOnly("It broke."));
    EXPECT_EQ(UserErrorMessage::usingDescriptionAndRecoverySuggestion(error),
              UserErrorMessage("It broke.", "Mend it."));
    EXPECT_EQ(UserErrorMessage::usingDescriptionAndFailureReason(error), UserErrorMessage("It broke.", "It was old."));
    error.localizedRecoverySuggestion = "";
    error.localizedFailureReason.reset();
    EXPECT_EQ(UserErrorMessage::usingDescriptionAndRecoverySuggestion(error), UserErrorMessage::titleOnly("It broke."));
    EXPECT_EQ(UserErrorMessage::usingDescriptionAndFailureReason(error), UserErrorMessage::titleOnly("It broke."));
}

TEST_F(UserErrorMessages, speakTheLanguageOfTheMoment) {
    EXPECT_EQ(UserErrorMessage::unexpectedError(), UserErrorMessage::titleOnly("An unexpected error occurred."));
    EXPECT_EQ(UserErrorMessage::genericNetworkError(),
              UserErrorMessage("There was an error communicating with the server.", "Please try again later."));
    ResourceBundle::setPreferredLanguages({"de"});
    EXPECT_EQ(*UserErrorMessage::unexpectedError().title, "Ein unerwarteter Fehler ist aufgetreten.");
    EXPECT_EQ(*UserErrorMessage::genericNetworkError().message, "Bitte versuchen Sie es später erneut.");
}

TEST_F(UserErrorMessages, tellWhyAPasswordCouldNotBeVerified) {
    using Error = CredentialValidationError;
    const auto failed = [](std::int64_t code) {
        return *Error::cannotAuthenticate(PlatformError{.domain = "HTTP", .code = code}).userErrorMessage();
    };
    EXPECT_EQ(failed(401), UserErrorMessage("Authentication Error", "Cannot authenticate the user.\nError Code: 401"));
    EXPECT_EQ(*failed(-1009).message, "Cannot authenticate the user.\nError Code: -1009");
    EXPECT_EQ(*failed(INT64_MIN).message, "Cannot authenticate the user.\nError Code: -9223372036854775808");
    const UserErrorMessage plain("Authentication Error", "Cannot authenticate the user");
    EXPECT_EQ(Error::cannotAuthenticate(std::nullopt).userErrorMessage(), plain);
    EXPECT_EQ(Error::throttled().userErrorMessage(), plain);
    EXPECT_EQ(Error::noInternetConnection().userErrorMessage(),
              UserErrorMessage("No Internet Connection",
                               "An Internet connection is required to verify your password to unlock Kestrel."));
    EXPECT_FALSE(Error::cancelled().userErrorMessage());
    ResourceBundle::setPreferredLanguages({"de"});
    EXPECT_EQ(failed(-1009), UserErrorMessage("Authentifizierungsfehler",
                                              "Der Benutzer kann nicht authentifiziert werden.\nFehlercode: -1009"));
}

TEST(LoginErrors, haveATokenOnlyWhenALocalizedErrorHasItAsData) {
    const Data token = Data::fromText("t0ken");
    const auto with = [](const std::string& key, PlatformError::Value value) {
        return PlatformError{.domain = "Server", .userInfo = {{key, std::move(value)}}};
    };
    EXPECT_EQ(LoginError::localizedError(with("token", token)).tokenData(), token);
    EXPECT_EQ(LoginError::localizedError(with("token", Data{})).tokenData(), Data{});
    EXPECT_FALSE(LoginError::localizedError(with("token", "t0ken")).tokenData());
    EXPECT_FALSE(LoginError::localizedError(with("Token", token)).tokenData());
    EXPECT_FALSE(LoginError::authorizationError(with("token", token)).tokenData());
    EXPECT_FALSE(LoginError::invalidToken().tokenData());
    // A localized error around a localized error still is the innermost one.
    EXPECT_EQ(LoginError::localizedError(CloudError::localizedError(with("token", token))).tokenData(), token);
}

TEST(CommonForms, keepWhatAnErrorCarries) {
    const PlatformError inner{.domain = "HTTP",
                              .code = 503,
                              .localizedDescription = "The server is busy.",
                              .localizedRecoverySuggestion = "Wait.",
                              .userInfo = {{"url", "https://example.org"}}};
    EXPECT_EQ(AnyError(LoginError::localizedError(inner)).platformError(), inner);
    EXPECT_EQ(AnyError(CloudError::localizedError(inner)).platformError(), inner);

    PlatformError around = inner;
    around.userInfo["underlyingDomain"] = "HTTP";
    around.userInfo["underlyingCode"] = 503;
    const auto expectAround = [&](const AnyError& error, const char* domain, std::int64_t code) {
        around.domain = domain;
        around.code = code;
        EXPECT_EQ(error.platformError(), around) << domain;
    };
    expectAround(LoginError::environmentError(inner), "KestrelService.LoginError", 10);
    expectAround(ReadError::fetchError(inner), "KestrelService.ReadError", 4);
    expectAround(UpdateError::underlyingError(inner), "KestrelService.UpdateError", 4);
    expectAround(PasswordResetError::networkError(inner), "KestrelService.PasswordResetError", 0);
    expectAround(GeocodeError::underlyingError(inner), "KestrelService.GeocodeError", 0);
    expectAround(CredentialValidationError::cannotAuthenticate(inner), "KestrelService.CredentialValidationError", 0);

    const auto textOf = [](const AnyError& error, const char* label) {
        return std::get<std::string>(error.platformError().userInfo.at(label));
    };
    EXPECT_EQ(textOf(LoginError::mfaRequired("Acme"), "companyName"), "Acme");
    EXPECT_EQ(textOf(LoginError::unsupportedAuthenticationMethod("SSO"), "message"), "SSO");
    EXPECT_EQ(textOf(ReadError::unexpectedType("a Note"), "explanation"), "a Note");
    EXPECT_EQ(textOf(UpdateError::internalError("full"), "reason"), "full");
    EXPECT_EQ(textOf(SyncError::syncFailure("offline"), "reason"), "offline");
}

TEST(CommonForms, countTheCasesOfWhatCarriesNothing) {
    const auto expectPlain = [](const AnyError& error, const std::string& domain, std::int64_t code) {
        const PlatformError form = error.platformError();
        EXPECT_EQ(form.domain, domain);
        EXPECT_EQ(form.code, code) << domain;
        EXPECT_FALSE(form.localizedDescription.empty());
        EXPECT_TRUE(form.userInfo.empty());
    };
    expectPlain(LoginError::unknown(), "KestrelService.LoginError", 15);
    expectPlain(CloudError::unknown(), "KestrelService.CloudError", 1);
    expectPlain(CredentialValidationError::throttled(), "KestrelService.CredentialValidationError", 3);
    expectPlain(CredentialValidationError::cannotAuthenticate(std::nullopt), "KestrelService.CredentialValidationError",
                0);
    expectPlain(SyncError::syncFailure(std::nullopt), "KestrelService.SyncError", 0);
    expectPlain(OnDemandError::objectNotFound, "KestrelService.OnDemandError", 6);
    EXPECT_NE(AnyError(ReadError::notFound()), AnyError(UpdateError::notFound()));
    EXPECT_EQ(AnyError(ReadError::notFound()).as<ReadError>()->caseName(), ReadError::CaseName::notFound);
}

}  // namespace
