#pragma once

#include <host/accounts/account_store.h>
#include <host/session/defaults_login_storage.h>
#include <host/session/local_session.h>
#include <host/session/login_service.h>
#include <kestrel/services/system_clock_service.h>
#include <kestrel/services/system_user_defaults_service.h>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace kestrel::host {

/// The login against the accounts of this machine.
///
/// A company's data are at hand, so the last step downloads nothing: it checks the company's database, table by table,
/// and says how far it is. Then the schema is brought up to date if it has to be, and the session is ready.
class AccountLogin final : public LoginService {
  public:
    /// The file of accounts is opened with the first step.
    AccountLogin(std::filesystem::path accountsFile, std::shared_ptr<SystemClockService> systemClock,
                 std::shared_ptr<SystemUserDefaultsService> systemDefaults);

    [[nodiscard]] const std::shared_ptr<LocalSession>& session() const noexcept { return session_; }
    [[nodiscard]] const std::shared_ptr<DefaultsLoginStorage>& storage() const noexcept { return storage_; }

    [[nodiscard]] AnyPublisher<std::optional<LoginState>> loginState() const override;
    [[nodiscard]] AnyPublisher<LoginState, LoginError> identifyUser(std::string email) override;
    [[nodiscard]] AnyPublisher<LoginState, LoginError> authenticate(
        const AuthenticationCredentialSet& credentials) override;
    [[nodiscard]] AnyPublisher<LoginState, LoginError> askForRecoveryCode() override;
    [[nodiscard]] AnyPublisher<LoginState, LoginError> selectCompany(const LoginState::Company& company) override;
    [[nodiscard]] AnyPublisher<Never> cancelLogin() override;
    [[nodiscard]] AnyPublisher<ForcedLogout> resume() override;
    [[nodiscard]] AnyPublisher<Never, CredentialValidationError> unlock(std::string password) override;

  private:
    /// What a step comes to: the next state, none when the user is signed in.
    using Step = std::expected<std::optional<LoginState>, LoginError>;

    [[nodiscard]] AnyPublisher<LoginState, LoginError> step(std::function<Step()> take);
    void move(std::optional<LoginState> state);
    [[nodiscard]] AccountStore& accounts();

    [[nodiscard]] Step checkPassword(const std::string& email, const std::string& password);
    [[nodiscard]] Step chooseCompany();
    [[nodiscard]] Step enter(const Membership& membership);
    /// What keeps the company's database from being used, if anything.
    [[nodiscard]] std::optional<LoginError> checkDatabase(const Membership& membership);
    /// Whether the schema is current now.
    [[nodiscard]] bool migrate(const Membership& membership);
    void forgetDevice();

    std::filesystem::path accountsFile_;
    std::shared_ptr<SystemClockService> clock_;
    std::shared_ptr<SystemUserDefaultsService> defaults_;
    std::shared_ptr<DefaultsLoginStorage> storage_;
    std::shared_ptr<LocalSession> session_;
    std::optional<AccountStore> accounts_;
    ReplaySubject<std::optional<LoginState>> states_{1};
    std::optional<LoginState> state_;
    /// Who is signing in, and the password that was right.
    std::string email_;
    std::string password_;
    bool hasSecondFactor_ = false;
};

}  // namespace kestrel::host
