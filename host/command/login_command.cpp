#include <fmt/format.h>
#include <host/command/awaiting.h>
#include <host/command/login_command.h>
#include <host/failure.h>
#include <host/services/late_system_services.h>
#include <host/services/value_of.h>
#include <host/session/session_module.h>
#include <host/terminal/json_object.h>
#include <host/terminal/prompt.h>
#include <host/terminal/table.h>
#include <kestrel/services/system_services_module.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <tuple>
#include <utility>

namespace kestrel::host {
namespace {

std::filesystem::path accountsFile(const std::string& given) {
    return given.empty() ? AccountStore::standardFile() : std::filesystem::path(given);
}

/// Writes the states of login and session as they come.
class StateWriter {
  public:
    StateWriter(Runtime& runtime, bool isJSON, Output& output, const Terminal& terminal)
        : isJSON_(isJSON), output_(&output), terminal_(&terminal) {
        // What is the case now is nothing new.
        loginStates_ =
            std::as_const(runtime)[login].loginState().dropFirst().sink([this](const std::optional<LoginState>& state) {
                if (state) write(*state);
            });
        sessionStates_ =
            runtime[services::session].state().dropFirst().sink([this](const SessionState& state) { write(state); });
    }
    StateWriter(const StateWriter&) = delete;
    StateWriter& operator=(const StateWriter&) = delete;

  private:
    void write(const LoginState& state) {
        std::string detail;
        JSONObject object;
        object.add("login", rawValue(state.caseName()));
        if (const auto email = state.userEmailIdentified()) {
            detail = *email;
            object.add("email", *email);
        } else if (const auto companies = state.selectCompany()) {
            std::vector<std::string> names;
            for (const auto& company : *companies)
                names.push_back(company.name);
            detail = listed(names);
            object.add("companies", names);
        } else if (const auto download = state.downloading()) {
            const auto& progress = download->progress;
            detail = fmt::format("{}, {} of {}", download->companyName, progress.completedUnitCount,
                                 progress.totalUnitCount);
            object.add("company", download->companyName)
                .addJSON("completed", fmt::format("{}", progress.completedUnitCount))
                .addJSON("total", fmt::format("{}", progress.totalUnitCount));
        }
        writeLine(object, rawValue(state.caseName()), detail);
    }
    void write(const SessionState& state) {
        JSONObject object;
        object.add("session", rawValue(state.caseName()));
        const auto progress = state.loggedIn();
        if (progress) object.add("progress", caseName(*progress));
        writeLine(object, rawValue(state.caseName()), progress ? std::string(caseName(*progress)) : std::string());
    }
    void writeLine(const JSONObject& object, std::string_view name, const std::string& detail) {
        if (isJSON_) {
            writeJSONLine(object.json(), *output_, *terminal_);
        } else {
            Table table(2);
            table.add({padded(name, 20), detail});
            output_->write(table.rendered(*terminal_));
        }
        output_->flush();
    }

    bool isJSON_;
    Output* output_;
    const Terminal* terminal_;
    AnyCancellable loginStates_;
    AnyCancellable sessionStates_;
};

/// Walks through the states of a login.
class LoginWalk {
  public:
    LoginWalk(const LoginOptions& options, Runtime& runtime) : options_(&options), runtime_(&runtime) {}

    void run() {
        const std::string email = given(options_->email, [&] { return ask(emailQuestion()); });
        auto next = taken(service().identifyUser(email));
        const std::string password = given({}, [] { return askForSecret("Password: "); });
        next = taken(service().authenticate(AuthenticationCredentialSet::basic(email, password)));
        if (next == LoginState::enterOneTimeCode()) next = secondFactor(email, password);
        if (next && next->selectCompany()) next = taken(service().selectCompany(chosen(*next->selectCompany())));
    }

  private:
    [[nodiscard]] LoginService& service() const { return std::as_const(*runtime_)[login]; }

    /// What a step leads to; a step that fails ends the login.
    [[nodiscard]] std::optional<LoginState> taken(const AnyPublisher<LoginState, LoginError>& step) const {
        const auto states = awaited(step);
        if (!states) {
            giveUp();
            throw failureOf(states.error());
        }
        return states->empty() ? std::nullopt : std::optional(states->front());
    }
    void giveUp() const { std::ignore = awaited(service().cancelLogin()); }

    template <class Ask>
    [[nodiscard]] std::string given(const std::string& option, Ask&& askUser) const {
        if (!option.empty()) return option;
        if (const auto answer = askUser(); answer && !answer->empty()) return *answer;
        giveUp();
        throw failureOf(LoginError::cancelled());
    }
    [[nodiscard]] std::string emailQuestion() const { return "E-mail address: "; }

    [[nodiscard]] std::optional<LoginState> secondFactor(const std::string& email, const std::string& password) const {
        std::string code = options_->oneTimeCode;
        if (code.empty() && options_->recoveryCode.empty())
            code = given({}, [] { return ask("One-time code, or \"recovery\": "); });
        if (!code.empty() && code != "recovery")
            return taken(service().authenticate(AuthenticationCredentialSet::withOneTimeCode(email, password, code)));
        (void)taken(service().askForRecoveryCode());
        const std::string recovery = given(options_->recoveryCode, [] { return ask("Recovery code: "); });
        return taken(service().authenticate(AuthenticationCredentialSet::withRecoveryCode(email, password, recovery)));
    }

    [[nodiscard]] LoginState::Company chosen(const std::vector<LoginState::Company>& companies) const {
        std::vector<std::string> names;
        for (const auto& company : companies)
            names.push_back(company.name);
        const std::string name =
            given(options_->company, [&] { return ask(fmt::format("Company ({}): ", listed(names))); });
        for (const auto& company : companies) {
            if (foldedCase(company.name) == foldedCase(name)) return company;
        }
        giveUp();
        throw Failure(fmt::format("{} is none of your companies: {}", name, listed(names)));
    }

    const LoginOptions* options_;
    Runtime* runtime_;
};

/// Who is signed in; absent when nobody is.
std::optional<CurrentUserInfo> currentUser(Runtime& runtime) {
    return awaited(runtime[services::session].currentUser().first()).value().at(0);
}

void writeStatus(Runtime& runtime, bool isJSON, Output& output, const Terminal& terminal) {
    const auto user = currentUser(runtime);
    if (isJSON) {
        JSONObject object;
        object.add("isSignedIn", user.has_value());
        if (user) {
            object.add("user", user->username.value_or(""))
                .addJSON("companyID", fmt::format("{}", user->companyID.value_or(0)))
                .add("company", user->companyName.value_or(""));
        }
        return writeJSONLine(object.json(), output, terminal);
    }
    if (!user) return output.write("Nobody is signed in.\n");
    output.write(fmt::format("{} is signed in to {}.\n", printable(user->username.value_or("")),
                             printable(user->companyName.value_or(""))));
}

void unlock(Runtime& runtime) {
    if (!currentUser(runtime)) throw Failure("nobody is signed in");
    const auto password = askForSecret("Password: ");
    const auto unlocked = password ? awaited(std::as_const(runtime)[login].unlock(*password))
                                   : std::unexpected(CredentialValidationError::cancelled());
    if (unlocked) return;
    const auto message = unlocked.error().userErrorMessage();
    throw Failure(message ? lineOf(*message) : "the password was not given");
}

std::shared_ptr<AccountsService> accountsOf(const AccountOptions& options) {
    const Runtime runtime(LateSystemServicesModule{}, SessionModule{.accountsFile = accountsFile(options.accounts)});
    return runtime.find(host_services::accounts);
}

std::string newPassword() {
    const auto password = askForSecret("New password: ");
    if (!password || password->empty()) throw Failure("a password has at least one character");
    return *password;
}

}  // namespace

void loginCommand(const LoginOptions& options, Output& output, const Terminal& terminal) {
    Runtime runtime(SystemServicesModule{}, SessionModule{.accountsFile = accountsFile(options.accounts)});
    if (options.asksForStatus || options.unlocks) {
        resumeSession(runtime);
        return options.unlocks ? unlock(runtime) : writeStatus(runtime, options.isJSON, output, terminal);
    }
    LoginOptions walked = options;
    if (walked.email.empty()) {
        const auto last = awaited(runtime[services::loginStorage].fetchLastUsername());
        if (last && !last->empty()) walked.email = last->front().value_or("");
    }
    const StateWriter states(runtime, options.isJSON, output, terminal);
    LoginWalk(walked, runtime).run();
}

void logoutCommand(const LoginOptions& options, Output& output, const Terminal& terminal) {
    Runtime runtime(SystemServicesModule{}, SessionModule{.accountsFile = accountsFile(options.accounts)});
    resumeSession(runtime);
    if (!currentUser(runtime)) throw Failure("nobody is signed in");
    const StateWriter states(runtime, options.isJSON, output, terminal);
    std::ignore = awaited(runtime[services::session].logOut(std::nullopt));
}

void addAccountCommand(const AccountOptions& options) {
    carryOut(accountsOf(options)->addAccount(options.email, newPassword()));
}

void setPasswordCommand(const AccountOptions& options) {
    carryOut(accountsOf(options)->setPassword(options.email, newPassword()));
}

void secondFactorCommand(const AccountOptions& options, Output& output, const Terminal& terminal) {
    const SecondFactor factor = valueOf(accountsOf(options)->addSecondFactor(options.email));
    if (options.isJSON) {
        return writeJSONLine(
            JSONObject().add("secret", factor.secret).add("recoveryCodes", factor.recoveryCodes).json(), output,
            terminal);
    }
    output.write(fmt::format("Secret for the authenticator application: {}\nRecovery codes, each for one login:\n",
                             factor.secret));
    for (const std::string& code : factor.recoveryCodes)
        output.write("  " + code + "\n");
}

void addCompanyCommand(const AccountOptions& options) {
    carryOut(accountsOf(options)->addCompany(options.company, options.database, options.requiresOneTimeCode));
}

void joinCompanyCommand(const AccountOptions& options) {
    carryOut(accountsOf(options)->join(options.email, options.company, options.user));
}

void setActiveCommand(const AccountOptions& options, bool isActive) {
    carryOut(accountsOf(options)->setActive(options.email, options.company, isActive));
}

void revokeDevicesCommand(const AccountOptions& options, Output& output) {
    const std::size_t count = valueOf(accountsOf(options)->revokeDevices(options.email));
    output.write(fmt::format("{} {} signed out at the next start.\n", count, count == 1 ? "device is" : "devices are"));
}

void listAccountsCommand(const AccountOptions& options, Output& output, const Terminal& terminal) {
    std::vector<std::string> objects;
    Table table(4);
    for (const Account& account : valueOf(accountsOf(options)->fetchAccounts())) {
        std::vector<std::string> companies;
        for (const Membership& each : account.memberships)
            companies.push_back(each.companyName + (each.isActive ? "" : " (deactivated)"));
        table.add({account.email, listed(companies), account.hasSecondFactor ? "second factor" : ""});
        objects.push_back(JSONObject()
                              .add("email", account.email)
                              .add("companies", companies)
                              .add("hasSecondFactor", account.hasSecondFactor)
                              .json());
    }
    if (options.isJSON) return writeJSONLine(JSONObject::array(objects), output, terminal);
    output.write(table.rendered(terminal));
}

}  // namespace kestrel::host
