#pragma once

#include <kestrel/services/onboarding_service.h>
#include <kestrel/testing/stub.h>
#include <utility>

namespace kestrel {

/// An OnboardingService that answers as a test prepares it, and keeps what it is asked.
class RecordingOnboardingService final : public OnboardingService {
  public:
    struct Stubs {
        Stub<AnyPublisher<std::optional<LoginState>>()> loginState;
        Stub<AnyPublisher<LoginState, LoginError>(std::string)> identifyUser;
        Stub<AnyPublisher<LoginState, LoginError>(const AuthenticationCredentialSet&)> authenticate;
        Stub<AnyPublisher<LoginState, LoginError>(const LoginState::Company&)> selectCompany;
        Stub<AnyPublisher<Never>()> cancelLogin;
        Stub<AnyPublisher<ProgressSnapshot>()> downloadProgress;
        Stub<AnyPublisher<Never, LoginError>()> startDownload;
        Stub<AnyPublisher<Never>()> cancelDownload;
        Stub<AnyPublisher<Data, LoginError>(std::string)> requestPasskeyChallenge;
        Stub<AnyPublisher<Never, LoginError>(const PasskeyAuthorizationPublicKeyCredential&)> registerPasskey;
        Stub<AnyPublisher<Never, PasswordResetError>(std::string)> requestPasswordReset;
        Stub<AnyPublisher<Never, LoginError>()> requestOneTimeCode;
        Stub<AnyPublisher<Never, CloudError>(const PasswordCredential&, std::string)> createAccount;
        Stub<AnyPublisher<Never, CloudError>(std::string)> verifyEmail;
        Stub<AnyPublisher<Never, CloudError>(std::string)> acceptTerms;
        Stub<AnyPublisher<std::optional<CurrentUserInfo>>()> currentUser;
        Stub<bool()> isCompleted;
        Stub<AnyPublisher<Never>()> markCompleted;
        Stub<AnyPublisher<Never>()> reset;
        Stub<bool()> shouldShowGetStartedBanner;
        Stub<void()> dismissGetStartedBanner;
        Stub<bool()> shouldShowGetStartedSheet;
        Stub<void()> dismissGetStartedSheet;
        Stub<UserDefaultGetStartedBanner()> getStartedBanner;
        Stub<void(UserDefaultGetStartedBanner)> setGetStartedBanner;
        Stub<void(const std::function<void(UserDefaultGetStartedBanner&)>&)> modifyGetStartedBanner;
        Stub<UserDefaultGetStartedSheetOnFirstLogin()> getStartedSheetOnFirstLogin;
        Stub<void(UserDefaultGetStartedSheetOnFirstLogin)> setGetStartedSheetOnFirstLogin;
        Stub<void(const std::function<void(UserDefaultGetStartedSheetOnFirstLogin&)>&)>
            modifyGetStartedSheetOnFirstLogin;
        Stub<UserDefaultHasMac()> readHasMac;
        Stub<void(UserDefaultHasMac)> storeHasMac;
        Stub<AnyPublisher<Never, CloudError>(std::vector<std::string>)> inviteColleagues;
        Stub<AnyPublisher<Never, UpdateError>()> addSampleRecords;
        Stub<AnyPublisher<Never, UpdateError>()> removeSampleRecords;
        Stub<AnyPublisher<Never, CloudError>(std::string)> sendFeedback;
        Stub<AnyPublisher<URL, CloudError>(std::string)> fetchHelpURL;
    };
    mutable Stubs on{};

    [[nodiscard]] AnyPublisher<std::optional<LoginState>> loginState() const override { return on.loginState(); }
    [[nodiscard]] AnyPublisher<LoginState, LoginError> identifyUser(std::string email) override {
        return on.identifyUser(std::move(email));
    }
    [[nodiscard]] AnyPublisher<LoginState, LoginError> authenticate(
        const AuthenticationCredentialSet& credentials) override {
        return on.authenticate(credentials);
    }
    [[nodiscard]] AnyPublisher<LoginState, LoginError> selectCompany(const LoginState::Company& company) override {
        return on.selectCompany(company);
    }
    [[nodiscard]] AnyPublisher<Never> cancelLogin() override { return on.cancelLogin(); }
    [[nodiscard]] AnyPublisher<ProgressSnapshot> downloadProgress() const override { return on.downloadProgress(); }
    [[nodiscard]] AnyPublisher<Never, LoginError> startDownload() override { return on.startDownload(); }
    [[nodiscard]] AnyPublisher<Never> cancelDownload() override { return on.cancelDownload(); }
    [[nodiscard]] AnyPublisher<Data, LoginError> requestPasskeyChallenge(std::string email) override {
        return on.requestPasskeyChallenge(std::move(email));
    }
    [[nodiscard]] AnyPublisher<Never, LoginError> registerPasskey(
        const PasskeyAuthorizationPublicKeyCredential& credential) override {
        return on.registerPasskey(credential);
    }
    [[nodiscard]] AnyPublisher<Never, PasswordResetError> requestPasswordReset(std::string email) override {
        return on.requestPasswordReset(std::move(email));
    }
    [[nodiscard]] AnyPublisher<Never, LoginError> requestOneTimeCode() override { return on.requestOneTimeCode(); }
    [[nodiscard]] AnyPublisher<Never, CloudError> createAccount(const PasswordCredential& credential,
                                                                std::string companyName) override {
        return on.createAccount(credential, std::move(companyName));
    }
    [[nodiscard]] AnyPublisher<Never, CloudError> verifyEmail(std::string code) override {
        return on.verifyEmail(std::move(code));
    }
    [[nodiscard]] AnyPublisher<Never, CloudError> acceptTerms(std::string version) override {
        return on.acceptTerms(std::move(version));
    }
    [[nodiscard]] AnyPublisher<std::optional<CurrentUserInfo>> currentUser() const override { return on.currentUser(); }
    [[nodiscard]] bool isCompleted() const override { return on.isCompleted(); }
    [[nodiscard]] AnyPublisher<Never> markCompleted() override { return on.markCompleted(); }
    [[nodiscard]] AnyPublisher<Never> reset() override { return on.reset(); }
    [[nodiscard]] bool shouldShowGetStartedBanner() const override { return on.shouldShowGetStartedBanner(); }
    void dismissGetStartedBanner() override { on.dismissGetStartedBanner(); }
    [[nodiscard]] bool shouldShowGetStartedSheet() const override { return on.shouldShowGetStartedSheet(); }
    void dismissGetStartedSheet() override { on.dismissGetStartedSheet(); }
    [[nodiscard]] UserDefaultGetStartedBanner getStartedBanner() const override { return on.getStartedBanner(); }
    void setGetStartedBanner(UserDefaultGetStartedBanner value) override { on.setGetStartedBanner(value); }
    void modifyGetStartedBanner(const std::function<void(UserDefaultGetStartedBanner&)>& change) override {
        on.modifyGetStartedBanner(change);
    }
    [[nodiscard]] UserDefaultGetStartedSheetOnFirstLogin getStartedSheetOnFirstLogin() const override {
        return on.getStartedSheetOnFirstLogin();
    }
    void setGetStartedSheetOnFirstLogin(UserDefaultGetStartedSheetOnFirstLogin value) override {
        on.setGetStartedSheetOnFirstLogin(value);
    }
    void modifyGetStartedSheetOnFirstLogin(
        const std::function<void(UserDefaultGetStartedSheetOnFirstLogin&)>& change) override {
        on.modifyGetStartedSheetOnFirstLogin(change);
    }
    [[nodiscard]] UserDefaultHasMac readHasMac() const override { return on.readHasMac(); }
    void storeHasMac(UserDefaultHasMac value) override { on.storeHasMac(value); }
    [[nodiscard]] AnyPublisher<Never, CloudError> inviteColleagues(std::vector<std::string> emails) override {
        return on.inviteColleagues(std::move(emails));
    }
    [[nodiscard]] AnyPublisher<Never, UpdateError> addSampleRecords() override { return on.addSampleRecords(); }
    [[nodiscard]] AnyPublisher<Never, UpdateError> removeSampleRecords() override { return on.removeSampleRecords(); }
    [[nodiscard]] AnyPublisher<Never, CloudError> sendFeedback(std::string text) override {
        return on.sendFeedback(std::move(text));
    }
    [[nodiscard]] AnyPublisher<URL, CloudError> fetchHelpURL(std::string topic) override {
        return on.fetchHelpURL(std::move(topic));
    }
};

}  // namespace kestrel
