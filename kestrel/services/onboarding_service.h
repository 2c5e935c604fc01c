#pragma once

#include <kestrel/foundation/data.h>
#include <kestrel/foundation/progress_snapshot.h>
#include <kestrel/foundation/url.h>
#include <kestrel/reactive/publisher.h>
#include <kestrel/runtime/service_protocol.h>
#include <kestrel/services/onboarding_preferences.h>
#include <kestrel/session/credentials.h>
#include <kestrel/session/current_user_info.h>
#include <kestrel/session/login_error.h>
#include <kestrel/session/login_state.h>
#include <kestrel/session/service_errors.h>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kestrel {

/// Takes a user from the first start to a database that is ready: signing in, creating an account, downloading, and
/// what is shown once to newcomers.
class OnboardingService : public ServiceProtocol {
  public:
    /// Where the login stands, now and after every step; absent while none is under way.
    [[nodiscard]] virtual AnyPublisher<std::optional<LoginState>> loginState() const = 0;
    /// The first step: who wants to sign in.
    [[nodiscard]] virtual AnyPublisher<LoginState, LoginError> identifyUser(std::string email) = 0;
    /// Submits credentials; the step that comes next.
    [[nodiscard]] virtual AnyPublisher<LoginState, LoginError> authenticate(
        const AuthenticationCredentialSet& credentials) = 0;
    /// Picks one of the companies of the account.
    [[nodiscard]] virtual AnyPublisher<LoginState, LoginError> selectCompany(const LoginState::Company& company) = 0;
    /// Gives the login up.
    [[nodiscard]] virtual AnyPublisher<Never> cancelLogin() = 0;
    /// How far the download is, while there is one.
    [[nodiscard]] virtual AnyPublisher<ProgressSnapshot> downloadProgress() const = 0;
    /// Downloads the company's data for use offline; finishes when it is there.
    [[nodiscard]] virtual AnyPublisher<Never, LoginError> startDownload() = 0;
    /// Stops it, and removes what is there of it.
    [[nodiscard]] virtual AnyPublisher<Never> cancelDownload() = 0;
    /// The challenge that a passkey has to sign.
    [[nodiscard]] virtual AnyPublisher<Data, LoginError> requestPasskeyChallenge(std::string email) = 0;
    /// Adds a passkey to the account that is signed in.
    [[nodiscard]] virtual AnyPublisher<Never, LoginError> registerPasskey(
        const PasskeyAuthorizationPublicKeyCredential& credential) = 0;
    /// Has a message sent that leads to a new password.
    [[nodiscard]] virtual AnyPublisher<Never, PasswordResetError> requestPasswordReset(std::string email) = 0;
    /// Has another one-time code sent.
    [[nodiscard]] virtual AnyPublisher<Never, LoginError> requestOneTimeCode() = 0;
    /// Makes a company and its first user.
    [[nodiscard]] virtual AnyPublisher<Never, CloudError> createAccount(const PasswordCredential& credential,
                                                                        std::string companyName) = 0;
    /// Confirms the address of a new account.
    [[nodiscard]] virtual AnyPublisher<Never, CloudError> verifyEmail(std::string code) = 0;
    /// Records that the user accepts the terms of use.
    [[nodiscard]] virtual AnyPublisher<Never, CloudError> acceptTerms(std::string version) = 0;
    /// Who is signed in, now and after every change.
    [[nodiscard]] virtual AnyPublisher<std::optional<CurrentUserInfo>> currentUser() const = 0;
    /// Whether the user has been through all of it.
    [[nodiscard]] virtual bool isCompleted() const = 0;
    /// The user has been through all of it.
    [[nodiscard]] virtual AnyPublisher<Never> markCompleted() = 0;
    /// Begins anew: nothing has been shown yet.
    [[nodiscard]] virtual AnyPublisher<Never> reset() = 0;
    /// Whether the banner for newcomers is to be shown now.
    [[nodiscard]] virtual bool shouldShowGetStartedBanner() const = 0;
    /// The user has closed the banner.
    virtual void dismissGetStartedBanner() = 0;
    /// Whether the sheet of the first login is to be shown now.
    [[nodiscard]] virtual bool shouldShowGetStartedSheet() const = 0;
    /// The user has closed the sheet.
    virtual void dismissGetStartedSheet() = 0;
    /// What is remembered about the banner.
    [[nodiscard]] virtual UserDefaultGetStartedBanner getStartedBanner() const = 0;
    /// Remembers it.
    virtual void setGetStartedBanner(UserDefaultGetStartedBanner value) = 0;
    /// Reads, changes and stores it in one step.
    virtual void modifyGetStartedBanner(const std::function<void(UserDefaultGetStartedBanner&)>& change) = 0;
    /// What is remembered about the sheet.
    [[nodiscard]] virtual UserDefaultGetStartedSheetOnFirstLogin getStartedSheetOnFirstLogin() const = 0;
    /// Remembers it.
    virtual void setGetStartedSheetOnFirstLogin(UserDefaultGetStartedSheetOnFirstLogin value) = 0;
    /// Reads, changes and stores it in one step.
    virtual void modifyGetStartedSheetOnFirstLogin(
        const std::function<void(UserDefaultGetStartedSheetOnFirstLogin&)>& change) = 0;
    /// Whether the user has said to have a Mac.
    [[nodiscard]] virtual UserDefaultHasMac readHasMac() const = 0;
    /// Remembers it.
    virtual void storeHasMac(UserDefaultHasMac value) = 0;
    /// Invites them to the company.
    [[nodiscard]] virtual AnyPublisher<Never, CloudError> inviteColleagues(std::vector<std::string> emails) = 0;
    /// Fills an empty database with examples.
    [[nodiscard]] virtual AnyPublisher<Never, UpdateError> addSampleRecords() = 0;
    /// Removes the examples that nobody has changed.
    [[nodiscard]] virtual AnyPublisher<Never, UpdateError> removeSampleRecords() = 0;
    /// Sends what the user thinks of it.
    [[nodiscard]] virtual AnyPublisher<Never, CloudError> sendFeedback(std::string text) = 0;
    /// Where the help on a topic is.
    [[nodiscard]] virtual AnyPublisher<URL, CloudError> fetchHelpURL(std::string topic) = 0;
};

template <>
class Forwarding<OnboardingService> : public OnboardingService {
  public:
    [[nodiscard]] virtual std::shared_ptr<OnboardingService> target() const = 0;

    [[nodiscard]] AnyPublisher<std::optional<LoginState>> loginState() const override { return target()->loginState(); }
    [[nodiscard]] AnyPublisher<LoginState, LoginError> identifyUser(std::string email) override {
        return target()->identifyUser(std::move(email));
    }
    [[nodiscard]] AnyPublisher<LoginState, LoginError> authenticate(
        const AuthenticationCredentialSet& credentials) override {
        return target()->authenticate(credentials);
    }
    [[nodiscard]] AnyPublisher<LoginState, LoginError> selectCompany(const LoginState::Company& company) override {
        return target()->selectCompany(company);
    }
    [[nodiscard]] AnyPublisher<Never> cancelLogin() override { return target()->cancelLogin(); }
    [[nodiscard]] AnyPublisher<ProgressSnapshot> downloadProgress() const override {
        return target()->downloadProgress();
    }
    [[nodiscard]] AnyPublisher<Never, LoginError> startDownload() override { return target()->startDownload(); }
    [[nodiscard]] AnyPublisher<Never> cancelDownload() override { return target()->cancelDownload(); }
    [[nodiscard]] AnyPublisher<Data, LoginError> requestPasskeyChallenge(std::string email) override {
        return target()->requestPasskeyChallenge(std::move(email));
    }
    [[nodiscard]] AnyPublisher<Never, LoginError> registerPasskey(
        const PasskeyAuthorizationPublicKeyCredential& credential) override {
        return target()->registerPasskey(credential);
    }
    [[nodiscard]] AnyPublisher<Never, PasswordResetError> requestPasswordReset(std::string email) override {
        return target()->requestPasswordReset(std::move(email));
    }
    [[nodiscard]] AnyPublisher<Never, LoginError> requestOneTimeCode() override {
        return target()->requestOneTimeCode();
    }
    [[nodiscard]] AnyPublisher<Never, CloudError> createAccount(const PasswordCredential& credential,
                                                                std::string companyName) override {
        return target()->createAccount(credential, std::move(companyName));
    }
    [[nodiscard]] AnyPublisher<Never, CloudError> verifyEmail(std::string code) override {
        return target()->verifyEmail(std::move(code));
    }
    [[nodiscard]] AnyPublisher<Never, CloudError> acceptTerms(std::string version) override {
        return target()->acceptTerms(std::move(version));
    }
    [[nodiscard]] AnyPublisher<std::optional<CurrentUserInfo>> currentUser() const override {
        return target()->currentUser();
    }
    [[nodiscard]] bool isCompleted() const override { return target()->isCompleted(); }
    [[nodiscard]] AnyPublisher<Never> markCompleted() override { return target()->markCompleted(); }
    [[nodiscard]] AnyPublisher<Never> reset() override { return target()->reset(); }
    [[nodiscard]] bool shouldShowGetStartedBanner() const override { return target()->shouldShowGetStartedBanner(); }
    void dismissGetStartedBanner() override { target()->dismissGetStartedBanner(); }
    [[nodiscard]] bool shouldShowGetStartedSheet() const override { return target()->shouldShowGetStartedSheet(); }
    void dismissGetStartedSheet() override { target()->dismissGetStartedSheet(); }
    [[nodiscard]] UserDefaultGetStartedBanner getStartedBanner() const override { return target()->getStartedBanner(); }
    void setGetStartedBanner(UserDefaultGetStartedBanner value) override { target()->setGetStartedBanner(value); }
    void modifyGetStartedBanner(const std::function<void(UserDefaultGetStartedBanner&)>& change) override {
        target()->modifyGetStartedBanner(change);
    }
    [[nodiscard]] UserDefaultGetStartedSheetOnFirstLogin getStartedSheetOnFirstLogin() const override {
        return target()->getStartedSheetOnFirstLogin();
    }
    void setGetStartedSheetOnFirstLogin(UserDefaultGetStartedSheetOnFirstLogin value) override {
        target()->setGetStartedSheetOnFirstLogin(value);
    }
    void modifyGetStartedSheetOnFirstLogin(
        const std::function<void(UserDefaultGetStartedSheetOnFirstLogin&)>& change) override {
        target()->modifyGetStartedSheetOnFirstLogin(change);
    }
    [[nodiscard]] UserDefaultHasMac readHasMac() const override { return target()->readHasMac(); }
    void storeHasMac(UserDefaultHasMac value) override { target()->storeHasMac(value); }
    [[nodiscard]] AnyPublisher<Never, CloudError> inviteColleagues(std::vector<std::string> emails) override {
        return target()->inviteColleagues(std::move(emails));
    }
    [[nodiscard]] AnyPublisher<Never, UpdateError> addSampleRecords() override { return target()->addSampleRecords(); }
    [[nodiscard]] AnyPublisher<Never, UpdateError> removeSampleRecords() override {
        return target()->removeSampleRecords();
    }
    [[nodiscard]] AnyPublisher<Never, CloudError> sendFeedback(std::string text) override {
        return target()->sendFeedback(std::move(text));
    }
    [[nodiscard]] AnyPublisher<URL, CloudError> fetchHelpURL(std::string topic) override {
        return target()->fetchHelpURL(std::move(topic));
    }
};

namespace services {
inline constexpr ServiceKey<OnboardingService> onboarding;
}

}  // namespace kestrel
