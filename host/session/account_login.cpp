#include <SQLiteCpp/Statement.h>
#include <fmt/format.h>
#include <host/failure.h>
#include <host/session/account_login.h>
#include <host/store/directory.h>
#include <host/store/schema.h>
#include <host/store/store.h>
#include <sqlite3.h>

#include <algorithm>
#include <system_error>
#include <utility>
#include <vector>

namespace kestrel::host {
namespace {

struct DeviceTokenKey {
    using Value = std::optional<std::string>;
    static constexpr std::string_view key = "DeviceToken";
    static inline const Value defaultValue{};
};

/// The codes are those of HTTP, which a server would answer with.
enum class AccountErrorCode : std::int64_t { wrongCredential = 401, noCompany = 403, noAccount = 404 };

PlatformError accountError(AccountErrorCode code, std::string description, std::string suggestion) {
    return {.domain = "KestrelHost.Accounts",
            .code = static_cast<std::int64_t>(code),
            .localizedDescription = std::move(description),
            .localizedRecoverySuggestion = std::move(suggestion)};
}

PlatformError setupError(std::string description) {
    return {.domain = "KestrelHost.Database", .code = 1, .localizedDescription = std::move(description)};
}

std::vector<LoginState::Company> companiesOf(const std::vector<Membership>& memberships) {
    std::vector<LoginState::Company> companies;
    for (const Membership& each : memberships)
        companies.push_back({.id = each.companyID, .name = each.companyName});
    return companies;
}

int schemaVersionOf(const std::filesystem::path& file) {
    return SQLite::Database(std::filesystem::absolute(file).native(), SQLite::OPEN_READONLY)
        .execAndGet("PRAGMA user_version")
        .getInt();
}

}  // namespace

AccountLogin::AccountLogin(std::filesystem::path accountsFile, std::shared_ptr<SystemClockService> systemClock,
                           std::shared_ptr<SystemUserDefaultsService> systemDefaults)
    : accountsFile_(std::move(accountsFile)),
      clock_(std::move(systemClock)),
      defaults_(std::move(systemDefaults)),
      storage_(std::make_shared<DefaultsLoginStorage>(defaults_)),
      session_(std::make_shared<LocalSession>([this] { forgetDevice(); })) {
    states_.send(std::nullopt);
}

AnyPublisher<std::optional<LoginState>> AccountLogin::loginState() const {
    return states_.eraseToAnyPublisher().removeDuplicates();
}

AccountStore& AccountLogin::accounts() {
    if (!accounts_) accounts_.emplace(accountsFile_);
    return *accounts_;
}

void AccountLogin::move(std::optional<LoginState> state) {
    state_ = std::move(state);
    states_.send(state_);
}

AnyPublisher<LoginState, LoginError> AccountLogin::step(std::function<Step()> take) {
    return create<LoginState, LoginError>(
        [this, take = std::move(take)](const Emitter<LoginState, LoginError>& emitter) {
            const auto before = state_;
            const auto taken = [&]() -> Step {
                try {
                    return take();
                } catch (const std::bad_alloc&) {
                    throw;
                } catch (const std::exception& problem) {
                    return std::unexpected(LoginError::environmentError(setupError(problem.what())));
                }
            }();
            move(taken ? *taken : before);
            if (!taken) {
                emitter.fail(taken.error());
            } else {
                if (*taken) emitter.send(**taken);
                emitter.finish();
            }
            return AnyCancellable();
        });
}

AnyPublisher<LoginState, LoginError> AccountLogin::identifyUser(std::string email) {
    return step([this, email = std::move(email)]() -> Step {
        session_->move(SessionState::loggingIn());
        if (!accounts().has(email)) {
            return std::unexpected(LoginError::localizedError(
                accountError(AccountErrorCode::noAccount, fmt::format("There is no account of {}.", email),
                             "Check the address; `kestrel account add` makes an account.")));
        }
        email_ = email;
        password_.clear();
        hasSecondFactor_ = false;
        return LoginState::userEmailIdentified(email);
    });
}

AccountLogin::Step AccountLogin::checkPassword(const std::string& email, const std::string& password) {
    if (email != email_) {
        email_ = email;
        hasSecondFactor_ = false;
    }
    move(LoginState::authenticating());
    switch (accounts().checkPassword(email, password, clock_->now())) {
        case PasswordCheck::right: break;
        case PasswordCheck::throttled:
            return std::unexpected(LoginError::localizedError(CredentialValidationError::throttled()));
        case PasswordCheck::wrong:
            return std::unexpected(LoginError::localizedError(CredentialValidationError::cannotAuthenticate(
                accountError(AccountErrorCode::wrongCredential, "The e-mail address or the password is wrong.",
                             "Check both, and try again."))));
    }
    password_ = password;
    return std::nullopt;
}

AnyPublisher<LoginState, LoginError> AccountLogin::authenticate(const AuthenticationCredentialSet& credentials) {
    return step([this, credentials] {
        session_->move(SessionState::loggingIn());
        return credentials.match(
            [&](const BasicCredential& basic) -> Step {
                const Step checked = checkPassword(basic.email, basic.password);
                if (!checked) return checked;
                if (accounts().hasSecondFactor(basic.email)) return LoginState::enterOneTimeCode();
                return chooseCompany();
            },
            [&](const OneTimeCodeCredential& coded) -> Step {
                const Step checked = checkPassword(coded.email, coded.password);
                if (!checked) return checked;
                if (!accounts().useOneTimeCode(coded.email, coded.oneTimeCode, clock_->now()))
                    return std::unexpected(LoginError::invalidVerificationCode());
                hasSecondFactor_ = true;
                return chooseCompany();
            },
            [&](const RecoveryCodeCredential& coded) -> Step {
                const Step checked = checkPassword(coded.email, coded.password);
                if (!checked) return checked;
                if (!accounts().useRecoveryCode(coded.email, coded.recoveryCode, clock_->now()))
                    return std::unexpected(LoginError::invalidRecoveryCode());
                hasSecondFactor_ = true;
                return chooseCompany();
            },
            [](const PasskeyAuthorizationPublicKeyCredential&) -> Step {
                return std::unexpected(
                    LoginError::unsupportedAuthenticationMethod("The accounts of this machine have no passkeys."));
            },
            // Nobody gives such tokens out here.
            [](const std::string&) -> Step { return std::unexpected(LoginError::invalidToken()); });
    });
}

AnyPublisher<LoginState, LoginError> AccountLogin::askForRecoveryCode() {
    return step([this]() -> Step {
        if (state_ != LoginState::enterOneTimeCode()) return std::unexpected(LoginError::unknown());
        return LoginState::enterRecoveryCode();
    });
}

AccountLogin::Step AccountLogin::chooseCompany() {
    auto memberships = accounts().memberships(email_);
    std::erase_if(memberships, [](const Membership& each) { return !each.isActive; });
    if (memberships.empty()) {
        return std::unexpected(LoginError::localizedError(
            accountError(AccountErrorCode::noCompany, fmt::format("{} belongs to no company.", email_),
                         "Ask an administrator to add you: `kestrel account join`.")));
    }
    if (memberships.size() > 1) return LoginState::selectCompany(companiesOf(memberships));
    return enter(memberships.front());
}

AnyPublisher<LoginState, LoginError> AccountLogin::selectCompany(const LoginState::Company& company) {
    return step([this, company]() -> Step {
        const auto offered = state_ ? state_->selectCompany() : std::nullopt;
        if (!offered || std::ranges::find(*offered, company) == offered->end())
            return std::unexpected(LoginError::unknown());
        const auto memberships = accounts().memberships(email_);
        const auto chosen = std::ranges::find(memberships, company.id, &Membership::companyID);
        if (chosen == memberships.end() || !chosen->isActive) return std::unexpected(LoginError::unknown());
        return enter(*chosen);
    });
}

std::optional<LoginError> AccountLogin::checkDatabase(const Membership& membership) {
    const auto report = [&](std::int64_t done, std::int64_t total) {
        move(LoginState::downloading(
            {.companyName = membership.companyName, .email = email_, .progress = ProgressSnapshot::of(done, total)}));
    };
    std::error_code problem;
    if (!std::filesystem::exists(membership.database, problem)) {
        return LoginError::offlineSetupError(
            setupError(fmt::format("{}: there is no such database.", membership.database.native())));
    }
    try {
        SQLite::Database database(membership.database.native(), SQLite::OPEN_READONLY, 5000);
        std::vector<std::string> tables;
        SQLite::Statement names(database, "SELECT name FROM sqlite_schema WHERE type = 'table' ORDER BY name");
        while (names.executeStep())
            tables.push_back(names.getColumn(0).getString());
        const auto total = static_cast<std::int64_t>(tables.size());
        std::int64_t done = 0;
        report(done, total);
        for (const std::string& table : tables) {
            SQLite::Statement check(database, "SELECT quick_check FROM pragma_quick_check(?)");
            check.bind(1, table);
            if (!check.executeStep() || check.getColumn(0).getString() != "ok") return LoginError::corruptDatabase();
            report(++done, total);
        }
        return std::nullopt;
    } catch (const SQLite::Exception& error) {
        const int code = error.getErrorCode();
        if (code == SQLITE_NOTADB || code == SQLITE_CORRUPT) return LoginError::corruptDatabase();
        return LoginError::offlineDownloadError(
            setupError(fmt::format("{}: {}", membership.database.native(), error.what())));
    }
}

bool AccountLogin::migrate(const Membership& membership) {
    try {
        if (schemaVersionOf(membership.database) == schemaVersion) return true;
        session_->move(SessionState::loggedIn(SessionState::LoggedIn::migratingSchema));
        WritingStore store(membership.database);
        store.commit();
        return true;
    } catch (const Failure&) {
        return false;
    } catch (const SQLite::Exception&) {
        return false;
    }
}

AccountLogin::Step AccountLogin::enter(const Membership& membership) {
    if (membership.requiresOneTimeCode && !hasSecondFactor_)
        return std::unexpected(LoginError::mfaRequired(membership.companyName));
    if (const auto problem = checkDatabase(membership)) return std::unexpected(*problem);
    if (!migrate(membership)) {
        (void)session_->logOut(ForcedLogout{membership.companyName, ForcedLogoutReason::migrationFailure})
            .sink([](const Never&) {});
        return std::unexpected(LoginError::offlineSetupError(
            setupError(fmt::format("{}: cannot be brought to the current schema.", membership.database.native()))));
    }
    try {
        ReadingStore store(membership.database);
        const Directory directory(store.database());
        const User& user = directory.user(membership.username);
        // Whoever was signed in on this device is not any more.
        forgetDevice();
        const std::string token = accounts().addDevice(email_, membership.companyID, clock_->now());
        if (const auto written = defaults_->set(token, DeviceTokenKey{}); !written) {
            accounts().removeDevice(token);
            return std::unexpected(LoginError::environmentError(written.error()));
        }
        std::optional<LoginError> problem;
        (void)storage_->storeCredential({.username = email_, .password = password_})
            .sink([](const Never&) {},
                  [&](const Completion<UpdateError>& end) {
                      if (end.failure()) problem = LoginError::environmentError(*end.failure());
                  });
        if (problem) return std::unexpected(*problem);
        session_->setCurrentUser(CurrentUserInfo{
            .username = shownName(user), .companyID = membership.companyID, .companyName = membership.companyName});
    } catch (const Failure& problem) {
        return std::unexpected(LoginError::offlineSetupError(setupError(problem.what())));
    }
    password_.clear();
    session_->move(SessionState::loggedIn(SessionState::LoggedIn::ready));
    return std::nullopt;
}

AnyPublisher<Never> AccountLogin::cancelLogin() {
    return create<Never>([this](const Emitter<Never, Never>& emitter) {
        email_.clear();
        password_.clear();
        hasSecondFactor_ = false;
        if (state_) session_->move(SessionState::loggedOut());
        move(std::nullopt);
        emitter.finish();
        return AnyCancellable();
    });
}

AnyPublisher<ForcedLogout> AccountLogin::resume() {
    return create<ForcedLogout>([this](const Emitter<ForcedLogout, Never>& emitter) {
        const auto token = defaults_->get(DeviceTokenKey{});
        const auto device = token ? accounts().device(*token) : std::nullopt;
        if (!device) {
            // Nobody was signed in, or the device is not known any more.
            forgetDevice();
            emitter.finish();
            return AnyCancellable();
        }
        const Membership& membership = device->membership;
        std::optional<ForcedLogout> forced;
        if (device->isRevoked) {
            forced = ForcedLogout::from(membership.companyName, SyncError::deviceRevoked());
        } else if (!membership.isActive) {
            forced = ForcedLogout::from(membership.companyName, SyncError::userDeactivated());
        } else if (!migrate(membership)) {
            forced = ForcedLogout{membership.companyName, ForcedLogoutReason::migrationFailure};
        }
        if (forced) {
            (void)session_->logOut(forced).sink([](const Never&) {});
            emitter.send(*forced);
        } else {
            session_->setCurrentUser(CurrentUserInfo{.username = membership.username,
                                                     .companyID = membership.companyID,
                                                     .companyName = membership.companyName});
            email_ = device->email;
            session_->move(SessionState::loggedIn(SessionState::LoggedIn::ready));
        }
        emitter.finish();
        return AnyCancellable();
    });
}

AnyPublisher<Never, CredentialValidationError> AccountLogin::unlock(std::string password) {
    return create<Never, CredentialValidationError>(
        [this, password = std::move(password)](const Emitter<Never, CredentialValidationError>& emitter) {
            switch (accounts().checkPassword(email_, password, clock_->now())) {
                case PasswordCheck::right: emitter.finish(); break;
                case PasswordCheck::throttled: emitter.fail(CredentialValidationError::throttled()); break;
                case PasswordCheck::wrong:
                    emitter.fail(CredentialValidationError::cannotAuthenticate(
                        accountError(AccountErrorCode::wrongCredential, "The password is wrong.", "Try again.")));
                    break;
            }
            return AnyCancellable();
        });
}

void AccountLogin::forgetDevice() {
    if (const auto token = defaults_->get(DeviceTokenKey{})) {
        accounts().removeDevice(*token);
        (void)defaults_->remove(DeviceTokenKey::key);
    }
}

}  // namespace kestrel::host
