#pragma once

#include <host/accounts/account_store.h>
#include <host/session/defaults_login_storage.h>
#include <host/session/local_session.h>
#include <host/session/login_service.h>
#include <kestrel/services/system_clock_service.h>
#include <kestrel/services/system_user_defaults_service.h>
#include <expected>
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
class AccountLogin final : public LoginService, public std::enable_shared_from_this<AccountLogin> {
  public:
    /// The file of accounts is opened with the first step. To be held by a shared pointer, which steps under way keep.
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
    [[nodiscard]] AnyPublisher<ForcedLogout, LoginError> resume() override;
    [[nodiscard]] std::optional<Membership> signedInTo() const override;
    [[nodiscard]] AnyPublisher<Never, CredentialValidationError> unlock(std::string password) override;

  private:
    /// What a step comes to: the next state, none when the user is signed in.
    using Step = std::expected<std::optional<LoginState>, LoginError>;

    /// Who has proved to be somebody, and how.
    struct Authenticated {
        std::string email{};
        std::string password{};
        bool hasSecondFactor{};
    };
    /// What signs this device in again, and what takes that away. Shared with the session, which may last longer.
    struct Device;

    [[nodiscard]] AnyPublisher<LoginState, LoginError> step(std::function<Step()> take);
    void move(std::optional<LoginState> state);
    void beginLogin();

    /// Proves the password, and the code where there is one; nothing of the login has changed when it is wrong.
    [[nodiscard]] std::expected<void, LoginError> check(const std::string& email, const std::string& password);
    [[nodiscard]] Step chooseCompany(Authenticated authenticated);
    [[nodiscard]] Step enter(const Membership& membership);
    /// What keeps the company's database from being used, if anything.
    [[nodiscard]] std::optional<LoginError> checkDatabase(const Membership& membership);
    /// Whether the schema is current now.
    [[nodiscard]] bool migrate(const Membership& membership);
    /// Takes the last session up; the reason when it has to end, absent also when there is none.
    [[nodiscard]] std::expected<std::optional<ForcedLogout>, LoginError> takeUp();
    void setSignedIn(const std::string& email, const Membership& membership, const std::string& userName);

    std::shared_ptr<SystemClockService> clock_;
    std::shared_ptr<SystemUserDefaultsService> defaults_;
    std::shared_ptr<Device> device_;
    std::shared_ptr<DefaultsLoginStorage> storage_;
    std::shared_ptr<LocalSession> session_;
    ReplaySubject<std::optional<LoginState>> states_{1};
    std::optional<LoginState> state_;
    /// The session as it was when the login began.
    SessionState before_ = SessionState::loggedOut();
    /// Whom the companies were offered to.
    std::optional<Authenticated> authenticated_;
    /// The account of who is signed in, and the company.
    std::string signedInEmail_;
    std::optional<Membership> signedInTo_;
};

}  // namespace kestrel::host
