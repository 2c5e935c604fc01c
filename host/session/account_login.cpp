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

LoginError missing(const Membership& membership) {
    return LoginError::offlineSetupError(
        setupError(fmt::format("{}: there is no such database.", membership.database.native())));
}

/// The name to show for the company's user.
std::expected<std::string, LoginError> nameOf(const Membership& membership) {
    try {
        ReadingStore store(membership.database);
        return shownName(Directory(store.database()).user(membership.username));
    } catch (const Failure& problem) {
        return std::unexpected(LoginError::offlineSetupError(setupError(problem.what())));
    }
}

int schemaVersionOf(const std::filesystem::path& file) {
    return SQLite::Database(std::filesystem::absolute(file).native(), SQLite::OPEN_READONLY)
        .execAndGet("PRAGMA user_version")
        .getInt();
}

}  // namespace

struct AccountLogin::Device {
    std::filesystem::path file;
    std::shared_ptr<SystemUserDefaultsService> defaults;
    std::optional<AccountStore> opened{};

    [[nodiscard]] AccountStore& accounts() {
        if (!opened) opened.emplace(file);
        return *opened;
    }
    /// The token by which these accounts know the device; absent when it is not signed in with them.
    [[nodiscard]] std::optional<std::string> token() const {
        const auto stored = defaults->get(DeviceTokenKey{});
        const std::string suffix = " " + file.native();
        if (!stored || !stored->ends_with(suffix)) return std::nullopt;
        return stored->substr(0, stored->size() - suffix.size());
    }
    [[nodiscard]] DefaultsWritten keep(const std::string& token) const {
        return defaults->set(token + " " + file.native(), DeviceTokenKey{});
    }
    /// Signs the device out: first here, so that it is out whatever becomes of the accounts.
    void forget() noexcept {
        try {
            const auto known = token();
            if (!known) return;
            (void)defaults->remove(DeviceTokenKey::key);
            accounts().removeDevice(*known);
        } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch)
            // The accounts keep a device that nobody has a token of.
        }
    }
};

AccountLogin::AccountLogin(std::filesystem::path accountsFile, std::shared_ptr<SystemClockService> systemClock,
                           std::shared_ptr<SystemUserDefaultsService> systemDefaults)
    : clock_(std::move(systemClock)),
      defaults_(std::move(systemDefaults)),
      device_(std::make_shared<Device>(std::filesystem::absolute(accountsFile), defaults_)),
      storage_(std::make_shared<DefaultsLoginStorage>(defaults_)),
      session_(std::make_shared<LocalSession>([device = device_] { device->forget(); })) {
    states_.send(std::nullopt);
}

AnyPublisher<std::optional<LoginState>> AccountLogin::loginState() const {
    return states_.eraseToAnyPublisher().removeDuplicates();
}

void AccountLogin::move(std::optional<LoginState> state) {
    state_ = std::move(state);
    states_.send(state_);
}

void AccountLogin::beginLogin() {
    if (!state_) before_ = session_->current();
    session_->move(SessionState::loggingIn());
}

AnyPublisher<LoginState, LoginError> AccountLogin::step(std::function<Step()> take) {
    return create<LoginState, LoginError>(
        [self = shared_from_this(), take = std::move(take)](const Emitter<LoginState, LoginError>& emitter) {
            const auto before = self->state_;
            const auto taken = [&]() -> Step {
                try {
                    return take();
                } catch (const std::bad_alloc&) {
                    throw;
                } catch (const std::exception& problem) {
                    return std::unexpected(LoginError::environmentError(setupError(problem.what())));
                }
            }();
            self->move(taken ? *taken : before);
            if (!taken) {
                // A login that has not begun leaves the session as it was.
                self->session_->move(before ? SessionState::loggingIn() : self->before_);
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
        beginLogin();
        if (!device_->accounts().has(email)) {
            return std::unexpected(LoginError::localizedError(
                accountError(AccountErrorCode::noAccount, fmt::format("There is no account of {}.", email),
                             "Check the address; `kestrel account add` makes an account.")));
        }
        authenticated_.reset();
        return LoginState::userEmailIdentified(email);
    });
}

std::expected<void, LoginError> AccountLogin::check(const std::string& email, const std::string& password) {
    move(LoginState::authenticating());
    switch (device_->accounts().checkPassword(email, password, clock_->now())) {
        case CredentialCheck::right: break;
        case CredentialCheck::throttled:
            return std::unexpected(LoginError::localizedError(CredentialValidationError::throttled()));
        case CredentialCheck::wrong:
            return std::unexpected(LoginError::localizedError(CredentialValidationError::cannotAuthenticate(
                accountError(AccountErrorCode::wrongCredential, "The e-mail address or the password is wrong.",
                             "Check both, and try again."))));
    }
    return {};
}

AnyPublisher<LoginState, LoginError> AccountLogin::authenticate(const AuthenticationCredentialSet& credentials) {
    return step([this, credentials] {
        beginLogin();
        const auto withCode = [this](const std::string& email, const std::string& password, CredentialCheck checked,
                                     const LoginError& wrong) -> Step {
            if (checked == CredentialCheck::throttled)
                return std::unexpected(LoginError::localizedError(CredentialValidationError::throttled()));
            if (checked == CredentialCheck::wrong) return std::unexpected(wrong);
            return chooseCompany({.email = email, .password = password, .hasSecondFactor = true});
        };
        return credentials.match(
            [&](const BasicCredential& basic) -> Step {
                if (const auto checked = check(basic.email, basic.password); !checked)
                    return std::unexpected(checked.error());
                if (device_->accounts().hasSecondFactor(basic.email)) return LoginState::enterOneTimeCode();
                return chooseCompany({.email = basic.email, .password = basic.password});
            },
            [&](const OneTimeCodeCredential& coded) -> Step {
                if (const auto checked = check(coded.email, coded.password); !checked)
                    return std::unexpected(checked.error());
                return withCode(coded.email, coded.password,
                                device_->accounts().useOneTimeCode(coded.email, coded.oneTimeCode, clock_->now()),
                                LoginError::invalidVerificationCode());
            },
            [&](const RecoveryCodeCredential& coded) -> Step {
                if (const auto checked = check(coded.email, coded.password); !checked)
                    return std::unexpected(checked.error());
                return withCode(coded.email, coded.password,
                                device_->accounts().useRecoveryCode(coded.email, coded.recoveryCode, clock_->now()),
                                LoginError::invalidRecoveryCode());
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

AccountLogin::Step AccountLogin::chooseCompany(Authenticated authenticated) {
    authenticated_ = std::move(authenticated);
    auto memberships = device_->accounts().memberships(authenticated_->email);
    std::erase_if(memberships, [](const Membership& each) { return !each.isActive; });
    if (memberships.empty()) {
        return std::unexpected(LoginError::localizedError(
            accountError(AccountErrorCode::noCompany, fmt::format("{} belongs to no company.", authenticated_->email),
                         "Ask an administrator to add you: `kestrel account join`.")));
    }
    if (memberships.size() > 1) return LoginState::selectCompany(companiesOf(memberships));
    return enter(memberships.front());
}

AnyPublisher<LoginState, LoginError> AccountLogin::selectCompany(const LoginState::Company& company) {
    return step([this, company]() -> Step {
        const auto offered = state_ ? state_->selectCompany() : std::nullopt;
        if (!offered || !authenticated_ || std::ranges::find(*offered, company) == offered->end())
            return std::unexpected(LoginError::unknown());
        const auto memberships = device_->accounts().memberships(authenticated_->email);
        const auto chosen = std::ranges::find(memberships, company.id, &Membership::companyID);
        if (chosen == memberships.end() || !chosen->isActive) return std::unexpected(LoginError::unknown());
        return enter(*chosen);
    });
}

std::optional<LoginError> AccountLogin::checkDatabase(const Membership& membership) {
    const auto report = [&](std::int64_t done, std::int64_t total) {
        move(LoginState::downloading({.companyName = membership.companyName,
                                      .email = authenticated_->email,
                                      .progress = ProgressSnapshot::of(done, total)}));
    };
    std::error_code problem;
    if (!std::filesystem::exists(membership.database, problem)) return missing(membership);
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
    const SessionState before = session_->current();
    try {
        if (schemaVersionOf(membership.database) == schemaVersion) return true;
        session_->move(SessionState::loggedIn(SessionState::LoggedIn::migratingSchema));
        WritingStore store(membership.database);
        store.commit();
        return true;
    } catch (const Failure&) {
        return false;
    } catch (const SQLite::Exception& problem) {
        if (problem.getErrorCode() != SQLITE_BUSY && problem.getErrorCode() != SQLITE_LOCKED) return false;
        // What passes is not this database's last word.
        session_->move(before);
        throw;
    }
}

AccountLogin::Step AccountLogin::enter(const Membership& membership) {
    const Authenticated& who = *authenticated_;
    if (membership.requiresOneTimeCode && !who.hasSecondFactor)
        return std::unexpected(LoginError::mfaRequired(membership.companyName));
    if (const auto problem = checkDatabase(membership)) return std::unexpected(*problem);
    if (!migrate(membership)) {
        return std::unexpected(LoginError::offlineSetupError(
            setupError(fmt::format("{}: cannot be brought to the current schema.", membership.database.native()))));
    }
    const auto userName = nameOf(membership);
    if (!userName) return std::unexpected(userName.error());

    std::optional<LoginError> problem;
    const auto storing = storage_->storeCredential({.username = who.email, .password = who.password})
                             .sink([&](const Completion<UpdateError>& end) {
                                 if (end.failure()) problem = LoginError::environmentError(*end.failure());
                             });
    if (problem) return std::unexpected(*problem);
    // Whoever was signed in on this device is not any more. The token comes last: it is what signs in.
    device_->forget();
    const std::string token = device_->accounts().addDevice(who.email, membership.companyID, clock_->now());
    if (const auto written = device_->keep(token); !written) {
        device_->accounts().removeDevice(token);
        return std::unexpected(LoginError::environmentError(written.error()));
    }
    setSignedIn(who.email, membership, *userName);
    authenticated_.reset();
    return std::nullopt;
}

void AccountLogin::setSignedIn(const std::string& email, const Membership& membership, const std::string& userName) {
    signedInEmail_ = email;
    signedInTo_ = membership;
    session_->setCurrentUser(CurrentUserInfo{
        .username = userName, .companyID = membership.companyID, .companyName = membership.companyName});
    session_->move(SessionState::loggedIn(SessionState::LoggedIn::ready));
}

AnyPublisher<Never> AccountLogin::cancelLogin() {
    return create<Never>([self = shared_from_this()](const Emitter<Never, Never>& emitter) {
        if (self->state_) self->session_->move(self->before_);
        self->authenticated_.reset();
        self->move(std::nullopt);
        emitter.finish();
        return AnyCancellable();
    });
}

AnyPublisher<ForcedLogout, LoginError> AccountLogin::resume() {
    using Resuming = Emitter<ForcedLogout, LoginError>;
    return create<ForcedLogout, LoginError>([self = shared_from_this()](const Resuming& emitter) {
        const auto resumed = [&]() -> std::expected<std::optional<ForcedLogout>, LoginError> {
            try {
                return self->takeUp();
            } catch (const std::bad_alloc&) {
                throw;
            } catch (const std::exception& problem) {
                return std::unexpected(LoginError::environmentError(setupError(problem.what())));
            }
        }();
        if (!resumed) {
            emitter.fail(resumed.error());
            return AnyCancellable();
        }
        if (*resumed) {
            const auto ending = self->session_->logOut(**resumed).sink([](const Completion<Never>&) {});
            emitter.send(**resumed);
        }
        emitter.finish();
        return AnyCancellable();
    });
}

std::expected<std::optional<ForcedLogout>, LoginError> AccountLogin::takeUp() {
    const auto token = device_->token();
    if (!token) return std::nullopt;
    const auto device = device_->accounts().device(*token);
    if (!device) {
        // The accounts do not know the device any more.
        device_->forget();
        return std::nullopt;
    }
    const Membership& membership = device->membership;
    if (device->isRevoked) return ForcedLogout::from(membership.companyName, SyncError::deviceRevoked());
    if (!membership.isActive) return ForcedLogout::from(membership.companyName, SyncError::userDeactivated());
    std::error_code problem;
    if (!std::filesystem::exists(membership.database, problem)) return std::unexpected(missing(membership));
    if (!migrate(membership)) return ForcedLogout{membership.companyName, ForcedLogoutReason::migrationFailure};
    const auto userName = nameOf(membership);
    if (!userName) return std::unexpected(userName.error());
    setSignedIn(device->email, membership, *userName);
    return std::nullopt;
}

std::optional<Membership> AccountLogin::signedInTo() const {
    return session_->current().loggedIn() ? signedInTo_ : std::nullopt;
}

AnyPublisher<Never, CredentialValidationError> AccountLogin::unlock(std::string password) {
    return create<Never, CredentialValidationError>([self = shared_from_this(), password = std::move(password)](
                                                        const Emitter<Never, CredentialValidationError>& emitter) {
        const auto refuse = [&](PlatformError error) {
            emitter.fail(CredentialValidationError::cannotAuthenticate(AnyError(std::move(error))));
        };
        try {
            switch (self->device_->accounts().checkPassword(self->signedInEmail_, password, self->clock_->now())) {
                case CredentialCheck::right: emitter.finish(); break;
                case CredentialCheck::throttled: emitter.fail(CredentialValidationError::throttled()); break;
                case CredentialCheck::wrong:
                    refuse(accountError(AccountErrorCode::wrongCredential, "The password is wrong.", "Try again."));
                    break;
            }
        } catch (const std::bad_alloc&) {
            throw;
        } catch (const std::exception& problem) {
            refuse(setupError(problem.what()));
        }
        return AnyCancellable();
    });
}

}  // namespace kestrel::host
