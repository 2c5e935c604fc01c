#include <gtest/gtest.h>
#include <host/accounts/account_store.h>
#include <host/accounts/secrets.h>
#include <host/failure.h>
#include <host/session/account_login.h>
#include <host/session/session_module.h>
#include <kestrel/testing/test_services_module.h>
#include <sys/stat.h>

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "services.h"

namespace kestrel::host::test {
namespace {

/// A desktop of its own: accounts, preferences, and a company with a small database.
class Login : public testing::Test {
  protected:
    Login() {
        writeExport(folder / "export", smallExport);
        EXPECT_EQ(run({"import", folder / "export", "--database", database}).exitCode, 0);
        EXPECT_EQ(run({"account", "add", "moses@example.com"}, "secret\n").errors, "");
        EXPECT_EQ(run({"account", "add-company", "Acme", "--database", database}).errors, "");
        EXPECT_EQ(run({"account", "join", "moses@example.com", "Acme", "--user", "Moses Frase"}).errors, "");
    }
    Outcome run(const std::vector<std::string>& arguments, const std::string& input = "",
                const std::string& language = "en") const {
        return kestrel(arguments, {.input = input,
                                   .environment = {{"XDG_DATA_HOME", folder / "data"},
                                                   {"XDG_CONFIG_HOME", folder / "config"},
                                                   {"LANGUAGE", language}}});
    }
    /// The names of the states that a login writes, each once in a row.
    static std::vector<std::string> statesOf(const Outcome& outcome) {
        std::vector<std::string> states;
        std::istringstream lines(outcome.output);
        for (std::string line; std::getline(lines, line);) {
            const std::string state = line.substr(0, line.find(' '));
            if (states.empty() || states.back() != state) states.push_back(state);
        }
        return states;
    }
    static std::string lastLine(const std::string& text) {
        const std::string lines = text.substr(0, text.size() - 1);
        return lines.substr(lines.rfind('\n') + 1);
    }
    std::string status() const { return run({"login", "--status"}).output; }

    TemporaryFolder folder;
    Path database = folder / "crm.db";
    Path accounts = folder / "data/kestrel/accounts.sqlite";
};

using States = std::vector<std::string>;

TEST_F(Login, walksTheStatesAndLastsUntilTheUserSignsOut) {
    EXPECT_EQ(status(), "Nobody is signed in.\n");
    const Outcome login = run({"login", "Moses@Example.com"}, "secret\n");
    EXPECT_EQ(login.errors, "");
    EXPECT_EQ(login.exitCode, 0);
    EXPECT_EQ(statesOf(login),
              (States{"loggingIn", "userEmailIdentified", "authenticating", "downloading", "loggedIn"}));
    EXPECT_EQ(lastLine(login.output), "loggedIn              ready");
    EXPECT_EQ(status(), "Moses Frase is signed in to Acme.\n");

    EXPECT_EQ(run({"login", "--unlock"}, "secret\n").exitCode, 0);
    const Outcome refused = run({"login", "--unlock"}, "wrong\n");
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_EQ(refused.errors, "kestrel: Authentication Error: Cannot authenticate the user. Error Code: 401\n");

    // Who signed in last need not be named again.
    EXPECT_EQ(run({"login"}, "secret\n").exitCode, 0);
    const Outcome logout = run({"logout"});
    EXPECT_EQ(statesOf(logout), (States{"loggingOut", "loggedOut"}));
    EXPECT_EQ(status(), "Nobody is signed in.\n");
    EXPECT_EQ(run({"logout"}).exitCode, 1);
}

TEST_F(Login, saysWhoLooksAtWhichDatabase) {
    EXPECT_EQ(run({"contacts"}).exitCode, 2);
    EXPECT_EQ(run({"board", "--user", "Moses Frase"}).exitCode, 2);
    ASSERT_EQ(run({"login", "moses@example.com"}, "secret\n").exitCode, 0);
    const Outcome named = run({"board", "--database", database, "--user", "Moses Frase"});
    ASSERT_NE(named.output.find("GTX Pro"), named.output.npos) << named.errors;
    EXPECT_EQ(run({"board"}).output, named.output);
    EXPECT_EQ(run({"board", "--database", database}).output, named.output);
    std::filesystem::copy_file(database, folder / "other.db");
    EXPECT_EQ(run({"board", "--database", folder / "other.db"}).exitCode, 2) << "names mean others elsewhere";
    ASSERT_EQ(run({"account", "revoke", "moses@example.com"}).exitCode, 0);
    EXPECT_NE(run({"board"}).errors.find("(deviceRevoked)"), std::string::npos);
    EXPECT_EQ(run({"board"}).exitCode, 2);
}

TEST_F(Login, saysInTheUsersLanguageWhyItFailedAndThrottlesGuesses) {
    EXPECT_EQ(run({"login", "moses@example.com"}, "wrong\n").errors,
              "kestrel: Authentication Error: Cannot authenticate the user. Error Code: 401 (localizedError)\n");
    const std::string german = run({"login", "moses@example.com"}, "wrong\n", "de").errors;
    EXPECT_EQ(german.find("Authentication Error"), german.npos) << german;
    EXPECT_NE(german.find("401"), german.npos) << german;
    EXPECT_EQ(run({"login", "nobody@example.com"}, "secret\n").errors,
              "kestrel: There is no account of nobody@example.com. Check the address; `kestrel account add` makes an "
              "account. (localizedError)\n");
    EXPECT_EQ(run({"login", "moses@example.com"}).errors, "kestrel: the login was given up (cancelled)\n");
    for (int i = 0; i < 3; ++i)
        (void)run({"login", "moses@example.com"}, "wrong\n");
    EXPECT_EQ(run({"login", "moses@example.com"}, "secret\n").errors,
              "kestrel: Authentication Error: Cannot authenticate the user (localizedError)\n")
        << "not even the right one is looked at";
    EXPECT_EQ(status(), "Nobody is signed in.\n");
}

TEST_F(Login, asksForASecondFactorAndTakesEachCodeOnce) {
    const Outcome switched = run({"account", "second-factor", "moses@example.com", "--json"});
    const auto textBehind = [&](const std::string& key) {
        const auto start = switched.output.find(key) + key.size();
        return switched.output.substr(start, switched.output.find('"', start) - start);
    };
    const std::string secret = textBehind("\"secret\":\"");
    const std::string recovery = textBehind("\"recoveryCodes\":[\"");
    const std::string code = oneTimeCode(secret, Date::now());

    const Outcome login = run({"login", "moses@example.com"}, "secret\n" + code + "\n");
    EXPECT_EQ(login.errors, "");
    EXPECT_EQ(statesOf(login), (States{"loggingIn", "userEmailIdentified", "authenticating", "enterOneTimeCode",
                                       "authenticating", "downloading", "loggedIn"}));
    EXPECT_EQ(run({"login", "moses@example.com", "--one-time-code", code}, "secret\n").errors,
              "kestrel: The one-time code is not valid. Enter the one that your device shows now. "
              "(invalidVerificationCode)\n");
    const Outcome recovered = run({"login", "moses@example.com"}, "secret\nrecovery\n" + recovery + "\n");
    EXPECT_EQ(recovered.exitCode, 0) << recovered.errors;
    EXPECT_NE(recovered.output.find("enterRecoveryCode"), recovered.output.npos);
    EXPECT_EQ(run({"login", "moses@example.com", "--recovery-code", recovery}, "secret\n").errors,
              "kestrel: The recovery code is not valid. Each is good for one login. (invalidRecoveryCode)\n");
}

TEST_F(Login, letsTheUserOfSeveralCompaniesPickOne) {
    ASSERT_EQ(run({"account", "add-company", "Zenith", "--database", database, "--require-one-time-code"}).exitCode, 0);
    ASSERT_EQ(run({"account", "join", "moses@example.com", "Zenith", "--user", "Donn Cantrell"}).exitCode, 0);
    const Outcome login = run({"login", "moses@example.com"}, "secret\nacme\n");
    EXPECT_EQ(login.errors, "");
    EXPECT_NE(login.output.find("selectCompany         Acme, Zenith\n"), login.output.npos) << login.output;
    EXPECT_EQ(status(), "Moses Frase is signed in to Acme.\n");
    EXPECT_EQ(run({"login", "moses@example.com", "--company", "Zenith"}, "secret\n").errors,
              "kestrel: Zenith asks for a second factor. Add one to your account: `kestrel account second-factor`. "
              "(mfaRequired)\n");
    EXPECT_EQ(run({"login", "moses@example.com", "--company", "Other"}, "secret\n").errors,
              "kestrel: Other is none of your companies: Acme, Zenith\n");
}

TEST_F(Login, isEndedWhenTheCompanyOrTheOwnerOfTheAccountSaysSo) {
    ASSERT_EQ(run({"login", "moses@example.com"}, "secret\n").exitCode, 0);
    ASSERT_EQ(run({"account", "deactivate", "moses@example.com", "Acme"}).exitCode, 0);
    const Outcome deactivated = run({"login", "--status"});
    EXPECT_EQ(deactivated.exitCode, 1);
    EXPECT_EQ(deactivated.errors,
              "kestrel: You were signed out of Acme. Your account there was deactivated. (userDeactivated)\n");
    EXPECT_EQ(status(), "Nobody is signed in.\n") << "signed out for good";
    EXPECT_NE(run({"login", "moses@example.com"}, "secret\n").errors.find("belongs to no company"), std::string::npos);

    ASSERT_EQ(run({"account", "activate", "moses@example.com", "Acme"}).exitCode, 0);
    EXPECT_EQ(status(), "Nobody is signed in.\n");
    ASSERT_EQ(run({"login", "moses@example.com"}, "secret\n").exitCode, 0);
    EXPECT_EQ(run({"account", "revoke", "moses@example.com"}).output, "1 device is signed out at the next start.\n");
    EXPECT_EQ(run({"login", "--status"}).errors,
              "kestrel: You were signed out of Acme. The access of this device was withdrawn. (deviceRevoked)\n");
}

TEST_F(Login, refusesDatabasesThatAreGoneOrDamagedAndBringsOldOnesUpToDate) {
    const auto login = [&] { return run({"login", "moses@example.com"}, "secret\n"); };
    for (const char* suffix : {"-wal", "-shm"})
        std::filesystem::remove(database.native() + suffix);
    writeText(database, "This was a database once, and is not any more.");
    EXPECT_EQ(login().errors,
              "kestrel: The company's database is damaged. Restore it from a backup. (corruptDatabase)\n");
    std::filesystem::remove(database);
    EXPECT_EQ(login().errors, "kestrel: The company's data cannot be used. " + database.native() +
                                  ": there is no such database. (offlineSetupError)\n");
    EXPECT_FALSE(std::filesystem::exists(database)) << "looking for it does not make it";

    SQLite::Database(database, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE)
        .exec(readFile(Path(KESTREL_SOURCE_DIR) / "tests" / "host" / "version1.sql"));
    const Outcome migrated = login();
    EXPECT_EQ(migrated.errors, "");
    EXPECT_NE(migrated.output.find("loggedIn              migratingSchema\n"), migrated.output.npos) << migrated.output;
    EXPECT_EQ(status(), "Moses Frase is signed in to Acme.\n");

    SQLite::Database(database, SQLite::OPEN_READWRITE).exec("DELETE FROM User");
    EXPECT_NE(login().errors.find("(offlineSetupError)"), std::string::npos);
}

TEST_F(Login, isEndedWhenTheDatabaseCannotBeBroughtToTheCurrentSchema) {
    ASSERT_EQ(run({"login", "moses@example.com"}, "secret\n").exitCode, 0);
    // A newer version has been at work.
    SQLite::Database(database, SQLite::OPEN_READWRITE).exec("PRAGMA user_version = 99");
    const Outcome ended = run({"login", "--status"});
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_EQ(ended.errors,
              "kestrel: You were signed out of Acme. The database could not be brought to the current schema. "
              "(migrationFailure)\n");
    EXPECT_EQ(status(), "Nobody is signed in.\n") << "signed out for good";
    EXPECT_NE(run({"login", "moses@example.com"}, "secret\n").errors.find("(offlineSetupError)"), std::string::npos);
}

TEST_F(Login, isNotGivenBackByJoiningAgain) {
    const auto join = [&] { return run({"account", "join", "moses@example.com", "Acme", "--user", "Donn Cantrell"}); };
    ASSERT_EQ(run({"account", "deactivate", "moses@example.com", "Acme"}).exitCode, 0);
    EXPECT_EQ(join().errors,
              "kestrel: moses@example.com was deactivated in Acme; `kestrel account activate` takes that back\n");
    EXPECT_EQ(run({"account", "list"}).output, "moses@example.com  Acme (deactivated)\n");
    EXPECT_EQ(run({"login", "moses@example.com"}, "secret\n").exitCode, 1);
    ASSERT_EQ(run({"account", "activate", "moses@example.com", "Acme"}).exitCode, 0);
    ASSERT_EQ(join().errors, "");
    ASSERT_EQ(run({"login", "moses@example.com"}, "secret\n").exitCode, 0);
    EXPECT_EQ(status(), "Donn Cantrell is signed in to Acme.\n");
}

TEST_F(Login, isOnlySetUpForUsersAndDatabasesThatAreThere) {
    const auto join = [&](const char* user) {
        return run({"account", "join", "moses@example.com", "Acme", "--user", user}).errors;
    };
    EXPECT_EQ(join("Nobody At All"), "kestrel: there is no user \"Nobody At All\"\n");
    EXPECT_EQ(run({"account", "join", "moses@example.com", "Zenith", "--user", "Moses Frase"}).errors,
              "kestrel: there is no company Zenith\n");
    EXPECT_EQ(run({"login", "moses@example.com"}, "secret\n").exitCode, 0);
    EXPECT_EQ(status(), "Moses Frase is signed in to Acme.\n") << "as before";

    const auto addCompany = [&](const Path& file) {
        return run({"account", "add-company", "Zenith", "--database", file}).errors;
    };
    const Path missing = folder / "missing.db";
    EXPECT_EQ(addCompany(missing),
              "kestrel: " + missing.native() + ": there is no such database; `kestrel import` makes one\n");
    EXPECT_FALSE(std::filesystem::exists(missing));
    const Path text = folder / "text.db";
    writeText(text, "Dear diary, this is certainly no database at all, however long it gets.");
    EXPECT_EQ(addCompany(text), "kestrel: " + text.native() + ": is no database\n");
    EXPECT_EQ(addCompany(database), "") << "and the name is still free";
}

TEST_F(Login, hasItsAccountsManagedByAServiceOfTheRuntime) {
    const Runtime runtime(TestServicesModule{}, SessionModule{.accountsFile = accounts});
    AccountsService& service = runtime[host_services::accounts];
    EXPECT_EQ(failureFrom(service.addAccount("ada@example.com", "word")), std::nullopt);
    EXPECT_EQ(refusalIn(failureFrom(service.addAccount("ada@example.com", "word"))),
              "there is an account of ada@example.com already");
    EXPECT_EQ(failureFrom(service.addCompany("Zenith", database, true)), std::nullopt);
    EXPECT_EQ(failureFrom(service.join("ada@example.com", "Zenith", "Donn Cantrell")), std::nullopt);
    EXPECT_EQ(failureFrom(service.setActive("ada@example.com", "Zenith", false)), std::nullopt);
    EXPECT_EQ(valueFrom(service.addSecondFactor("ada@example.com")).recoveryCodes.size(), 8U);
    const Account expected{.email = "ada@example.com",
                           .hasSecondFactor = true,
                           .memberships = {{.companyID = 2,
                                            .companyName = "Zenith",
                                            .database = database,
                                            .username = "Donn Cantrell",
                                            .isActive = false,
                                            .requiresOneTimeCode = true}}};
    EXPECT_EQ(valueFrom(service.fetchAccounts()).at(0), expected);

    EXPECT_EQ(failureFrom(service.setPassword("moses@example.com", "changed")), std::nullopt);
    ASSERT_EQ(run({"login", "moses@example.com"}, "changed\n").exitCode, 0);
    EXPECT_EQ(valueFrom(service.revokeDevices("moses@example.com")), 1U);
    EXPECT_NE(run({"login", "--status"}).errors.find("(deviceRevoked)"), std::string::npos);
}

TEST_F(Login, keepsSecretsOutOfItsFiles) {
    ASSERT_EQ(run({"login", "moses@example.com"}, "secret\n").exitCode, 0);
    std::size_t files = 0;
    for (const auto& root : {folder / "data", folder / "config"}) {
        for (const auto& file : std::filesystem::recursive_directory_iterator(root)) {
            if (!file.is_regular_file()) continue;
            ++files;
            EXPECT_EQ(readFile(file.path()).find("secret"), std::string::npos) << file.path();
            struct stat state{};
            ASSERT_EQ(::stat(file.path().c_str(), &state), 0);
            EXPECT_EQ(state.st_mode & 077U, 0U) << file.path() << " is for its owner alone";
        }
    }
    EXPECT_GE(files, 2U);
    const std::string shown = run({"defaults", "get"}).output;
    EXPECT_NE(shown.find("LastUsername"), shown.npos);
    EXPECT_EQ(shown.find("DeviceToken"), shown.npos) << shown;
    EXPECT_EQ(shown.find("argon2"), shown.npos) << shown;
    EXPECT_EQ(run({"defaults", "get", "DeviceToken"}).exitCode, 1);
}

TEST_F(Login, isTakenUpOnlyWithItsOwnAccountsAndWaitsWhileTheyCannotBeRead) {
    ASSERT_EQ(run({"login", "moses@example.com"}, "secret\n").exitCode, 0);
    EXPECT_EQ(run({"login", "--status", "--accounts", folder / "others.sqlite"}).output, "Nobody is signed in.\n");
    EXPECT_EQ(status(), "Moses Frase is signed in to Acme.\n") << "another file changes nothing";

    std::filesystem::rename(accounts, folder / "kept.sqlite");
    for (const char* suffix : {"-wal", "-shm"})
        std::filesystem::remove(accounts.native() + suffix);
    writeText(accounts, "This is no file of accounts, however long it may be.");
    EXPECT_NE(run({"login", "--status"}).errors.find("The accounts cannot be read."), std::string::npos);
    std::filesystem::rename(folder / "kept.sqlite", accounts);
    EXPECT_EQ(status(), "Moses Frase is signed in to Acme.\n");

    const Outcome failed = run({"login", "nobody@example.com"}, "secret\n");
    EXPECT_EQ(failed.exitCode, 1);
    EXPECT_EQ(statesOf(failed), (States{"loggingIn", "loggedOut"})) << "a login that has not begun ends at once";
}

TEST_F(Login, neverLetsOneUserInForAnother) {
    {
        AccountStore store(accounts);
        store.addCompany("Zenith", database, false);
        store.join("moses@example.com", "Zenith", "Moses Frase");
        store.addAccount("donn@example.com", "other");
        store.join("donn@example.com", "Acme", "Donn Cantrell");
        store.join("donn@example.com", "Zenith", "Donn Cantrell");
    }
    TestServicesModule desktop;
    Runtime runtime(desktop);
    std::shared_ptr<SessionService> session;
    std::optional<AnyPublisher<Never, CredentialValidationError>> unlocking;
    {
        const auto accountLogin = std::make_shared<AccountLogin>(accounts, runtime.find(services::systemClock),
                                                                 runtime.find(services::systemDefaults));
        session = accountLogin->session();
        const auto taken = [](const AnyPublisher<LoginState, LoginError>& step) {
            std::optional<LoginState> state;
            std::optional<LoginError> error;
            const auto taking = step.sink([&](const LoginState& next) { state = next; },
                                          [&](const Completion<LoginError>& end) { error = end.failure(); });
            return std::pair(state, error);
        };
        using Credentials = AuthenticationCredentialSet;
        const auto offered = taken(accountLogin->authenticate(Credentials::basic("moses@example.com", "secret"))).first;
        ASSERT_TRUE(offered && offered->selectCompany());
        EXPECT_TRUE(taken(accountLogin->authenticate(Credentials::basic("donn@example.com", "guess"))).second);
        const auto entered = taken(accountLogin->selectCompany(offered->selectCompany()->front()));
        EXPECT_EQ(entered.second, std::nullopt);
        EXPECT_EQ(accountLogin->session()->current().loggedIn(), SessionState::LoggedIn::ready);

        const auto unlocks = [&](const std::string& password) {
            bool isUnlocked = false;
            const auto trying = accountLogin->unlock(password).sink(
                [&](const Completion<CredentialValidationError>& end) { isUnlocked = end.isFinished(); });
            return isUnlocked;
        };
        (void)taken(accountLogin->authenticate(Credentials::basic("donn@example.com", "other")));
        const auto cancelling = accountLogin->cancelLogin().sink([](const Completion<Never>&) {});
        EXPECT_EQ(accountLogin->session()->current().loggedIn(), SessionState::LoggedIn::ready)
            << "a login that is given up leaves the session";
        EXPECT_FALSE(unlocks("other"));
        EXPECT_TRUE(unlocks("secret"));
        unlocking = accountLogin->unlock("secret");
    }
    std::optional<CurrentUserInfo> user;
    const auto watching = session->currentUser().sink([&](const auto& each) { user = each; });
    EXPECT_EQ(user ? user->username : std::nullopt, "Moses Frase");
    // The session and steps under way may last longer than the login.
    const auto unlocked = unlocking->sink([](const Completion<CredentialValidationError>&) {});
    const auto ending = session->logOut(std::nullopt).sink([](const Completion<Never>&) {});
    EXPECT_EQ(user, std::nullopt);
    EXPECT_EQ(desktop.userDefaults->object("DeviceToken"), std::nullopt);
}

TEST(Secrets, areTheOnesOfTheStandards) {
    // The vector of RFC 6238 for SHA-1, whose secret is "12345678901234567890".
    const std::string secret = "GEZDGNBVGY3TQOJQGEZDGNBVGY3TQOJQ";
    EXPECT_EQ(oneTimeCode(secret, Date::since1970(59)), "287082");
    EXPECT_EQ(oneTimeCode(secret, Date::since1970(1'111'111'109)), "081804");
    EXPECT_EQ(oneTimePeriod(secret, "287082", Date::since1970(59)), 1);
    EXPECT_EQ(oneTimePeriod(secret, "287082", Date::since1970(89)), 1) << "a clock may be a period off";
    EXPECT_EQ(oneTimePeriod(secret, "287082", Date::since1970(120)), std::nullopt);
    EXPECT_EQ(oneTimePeriod(secret, "28708", Date::since1970(59)), std::nullopt);
    EXPECT_EQ(oneTimePeriod("no base32!", "287082", Date::since1970(59)), std::nullopt);

    const std::string hash = hashedPassword("päss\nword");
    EXPECT_TRUE(hash.starts_with("$argon2id$")) << hash;
    EXPECT_TRUE(isPassword(hash, "päss\nword"));
    EXPECT_FALSE(isPassword(hash, "pässword"));
    EXPECT_FALSE(isPassword("damaged", "päss\nword"));
    EXPECT_NE(hashedPassword("same"), hashedPassword("same"));
    std::set<std::string> codes;
    for (int i = 0; i < 100; ++i)
        codes.insert(newRecoveryCode());
    EXPECT_EQ(codes.size(), 100U);
}

TEST(AccountStore, refusesTheFilesOfOthersAndKeepsThrottlingToTheAccount) {
    const TemporaryFolder folder;
    SQLite::Database(folder / "other.db", SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE).exec("CREATE TABLE T (x)");
    EXPECT_THROW(AccountStore(folder / "other.db"), Failure);
    EXPECT_THROW(AccountStore(folder.path()), Failure);

    AccountStore accounts(folder / "accounts.sqlite");
    accounts.addAccount("ada@example.com", "one");
    accounts.addAccount("bob@example.com", "two");
    EXPECT_THROW(accounts.addAccount("ADA@example.com", "three"), Failure);
    EXPECT_THROW(accounts.join("ada@example.com", "Nowhere", "Ada"), Failure);
    const Date now(1'000);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(accounts.checkPassword("ada@example.com", "x", now + i), CredentialCheck::wrong);
    EXPECT_EQ(accounts.checkPassword("Ada@example.com", "one", now + 10), CredentialCheck::throttled);
    EXPECT_EQ(accounts.checkPassword("bob@example.com", "two", now + 10), CredentialCheck::right);
    EXPECT_EQ(accounts.checkPassword("ada@example.com", "one", now + 300), CredentialCheck::right)
        << "the first wrong one is five minutes old";
    EXPECT_EQ(accounts.checkPassword("nobody@example.com", "one", now), CredentialCheck::wrong);
}

}  // namespace
}  // namespace kestrel::host::test
