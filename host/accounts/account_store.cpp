#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <host/accounts/account_store.h>
#include <host/accounts/secrets.h>
#include <host/failure.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <system_error>
#include <utility>

namespace kestrel::host {
namespace {

constexpr int busyTimeout = 5000;
constexpr int applicationID = 0x4b534143;  // "KSAC"
constexpr int wrongOnesAllowed = 5;
constexpr double wrongOnesCountFor = 300;
constexpr int recoveryCodeCount = 8;

constexpr const char* schema = R"sql(
    CREATE TABLE IF NOT EXISTS Account (
        email TEXT PRIMARY KEY COLLATE NOCASE,
        password TEXT NOT NULL,
        oneTimeSecret TEXT,
        lastOneTimePeriod INTEGER NOT NULL DEFAULT -1);
    CREATE TABLE IF NOT EXISTS RecoveryCode (
        email TEXT NOT NULL COLLATE NOCASE REFERENCES Account ON DELETE CASCADE,
        digest TEXT NOT NULL);
    CREATE TABLE IF NOT EXISTS Company (
        id INTEGER PRIMARY KEY AUTOINCREMENT,
        name TEXT NOT NULL UNIQUE COLLATE NOCASE,
        file TEXT NOT NULL,
        requiresOneTimeCode INTEGER NOT NULL);
    CREATE TABLE IF NOT EXISTS Membership (
        email TEXT NOT NULL COLLATE NOCASE REFERENCES Account ON DELETE CASCADE,
        company INTEGER NOT NULL REFERENCES Company ON DELETE CASCADE,
        username TEXT NOT NULL,
        isActive INTEGER NOT NULL DEFAULT 1,
        PRIMARY KEY (email, company));
    CREATE TABLE IF NOT EXISTS Device (
        digest TEXT PRIMARY KEY,
        email TEXT NOT NULL COLLATE NOCASE,
        company INTEGER NOT NULL,
        createDate REAL NOT NULL,
        isRevoked INTEGER NOT NULL DEFAULT 0,
        FOREIGN KEY (email, company) REFERENCES Membership ON DELETE CASCADE);
    CREATE TABLE IF NOT EXISTS WrongCredential (
        email TEXT NOT NULL COLLATE NOCASE,
        date REAL NOT NULL);
)sql";

/// Opens the file, which is made for its owner alone before SQLite sees it.
SQLite::Database openAccounts(const std::filesystem::path& file) {
    std::error_code problem;
    std::filesystem::create_directories(file.parent_path(), problem);
    // Only when it is new: closing a file lets go of the locks that this process has on it.
    const int descriptor = ::open(file.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (descriptor >= 0) {
        ::close(descriptor);
    } else if (errno != EEXIST) {
        throw Failure(fmt::format("{}: cannot be opened: {}", file.native(), std::strerror(errno)));
    }
    try {
        SQLite::Database database(file.native(), SQLite::OPEN_READWRITE, busyTimeout);
        const int application = database.execAndGet("PRAGMA application_id").getInt();
        const bool isEmpty = database.execAndGet("SELECT count(*) FROM sqlite_schema").getInt() == 0;
        if (application != applicationID && !isEmpty)
            throw Failure(fmt::format("{}: holds no accounts", file.native()));
        (void)database.execAndGet("PRAGMA journal_mode = WAL");
        database.exec("PRAGMA foreign_keys = ON");
        SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
        database.exec(fmt::format("PRAGMA application_id = {}", applicationID));
        database.exec(schema);
        transaction.commit();
        return database;
    } catch (const SQLite::Exception& error) {
        throw Failure(fmt::format("{}: {}", file.native(), error.what()));
    }
}

template <class... Values>
SQLite::Statement bound(SQLite::Database& database, const char* sql, const Values&... values) {
    SQLite::Statement statement(database, sql);
    int place = 0;
    (statement.bind(++place, values), ...);
    return statement;
}

/// How many rows it changed.
template <class... Values>
int execute(SQLite::Database& database, const char* sql, const Values&... values) {
    return bound(database, sql, values...).exec();
}

Membership membershipOf(SQLite::Statement& row, int first) {
    return {.companyID = row.getColumn(first).getInt64(),
            .companyName = row.getColumn(first + 1).getString(),
            .database = row.getColumn(first + 2).getString(),
            .username = row.getColumn(first + 3).getString(),
            .isActive = row.getColumn(first + 4).getInt() != 0,
            .requiresOneTimeCode = row.getColumn(first + 5).getInt() != 0};
}

/// What people type is not told apart by case, blanks and dashes.
std::string typedCode(std::string_view code) {
    std::string plain;
    for (const char c : code) {
        if (c >= 'A' && c <= 'Z') {
            plain += static_cast<char>(c - 'A' + 'a');
        } else if (c != '-' && c != ' ') {
            plain += c;
        }
    }
    return plain;
}

}  // namespace

AccountStore::AccountStore(std::filesystem::path file) : file_(std::move(file)), database_(openAccounts(file_)) {}

std::filesystem::path AccountStore::standardFile() {
    std::filesystem::path folder;
    if (const char* data = std::getenv("XDG_DATA_HOME"); data != nullptr && *data == '/') {
        folder = data;
    } else if (const char* home = std::getenv("HOME"); home != nullptr) {
        folder = std::filesystem::path(home) / ".local/share";
    }
    return folder / "kestrel/accounts.sqlite";
}

void AccountStore::addAccount(const std::string& email, std::string_view password) {
    if (email.find('@') == std::string::npos) throw Failure(fmt::format("\"{}\" is no e-mail address", email));
    if (password.empty()) throw Failure("a password has at least one character");
    if (has(email)) throw Failure(fmt::format("there is an account of {} already", email));
    execute(database_, "INSERT INTO Account (email, password) VALUES (?, ?)", email, hashedPassword(password));
}

void AccountStore::setPassword(const std::string& email, std::string_view password) {
    requireAccount(email);
    if (password.empty()) throw Failure("a password has at least one character");
    execute(database_, "UPDATE Account SET password = ? WHERE email = ?", hashedPassword(password), email);
}

SecondFactor AccountStore::addSecondFactor(const std::string& email) {
    requireAccount(email);
    SecondFactor factor{.secret = newOneTimeSecret()};
    SQLite::Transaction transaction(database_, SQLite::TransactionBehavior::IMMEDIATE);
    execute(database_, "UPDATE Account SET oneTimeSecret = ?, lastOneTimePeriod = -1 WHERE email = ?", factor.secret,
            email);
    execute(database_, "DELETE FROM RecoveryCode WHERE email = ?", email);
    for (int i = 0; i < recoveryCodeCount; ++i) {
        factor.recoveryCodes.push_back(newRecoveryCode());
        execute(database_, "INSERT INTO RecoveryCode (email, digest) VALUES (?, ?)", email,
                tokenDigest(typedCode(factor.recoveryCodes.back())));
    }
    transaction.commit();
    return factor;
}

void AccountStore::addCompany(const std::string& name, const std::filesystem::path& database,
                              bool requiresOneTimeCode) {
    if (name.empty()) throw Failure("a company has a name");
    if (bound(database_, "SELECT 1 FROM Company WHERE name = ?", name).executeStep())
        throw Failure(fmt::format("there is a company {} already", name));
    execute(database_, "INSERT INTO Company (name, file, requiresOneTimeCode) VALUES (?, ?, ?)", name,
            std::filesystem::absolute(database).native(), requiresOneTimeCode ? 1 : 0);
}

void AccountStore::join(const std::string& email, const std::string& companyName, const std::string& username) {
    requireAccount(email);
    const int joined = execute(database_,
                               "INSERT INTO Membership (email, company, username) VALUES (?, ?, ?) "
                               "ON CONFLICT DO UPDATE SET username = excluded.username WHERE isActive = 1",
                               email, requiredCompany(companyName), username);
    if (joined == 0) {
        throw Failure(
            fmt::format("{} was deactivated in {}; `kestrel account activate` takes that back", email, companyName));
    }
}

std::filesystem::path AccountStore::databaseOf(const std::string& companyName) {
    auto row = bound(database_, "SELECT file FROM Company WHERE id = ?", requiredCompany(companyName));
    row.executeStep();
    return row.getColumn(0).getString();
}

void AccountStore::setActive(const std::string& email, const std::string& companyName, bool isActive) {
    if (execute(database_, "UPDATE Membership SET isActive = ? WHERE email = ? AND company = ?", isActive ? 1 : 0,
                email, requiredCompany(companyName)) == 0)
        throw Failure(fmt::format("{} is not in {}", email, companyName));
}

std::size_t AccountStore::revokeDevices(const std::string& email) {
    requireAccount(email);
    return static_cast<std::size_t>(
        execute(database_, "UPDATE Device SET isRevoked = 1 WHERE email = ? AND isRevoked = 0", email));
}

std::vector<std::string> AccountStore::accounts() {
    std::vector<std::string> emails;
    SQLite::Statement rows(database_, "SELECT email FROM Account ORDER BY email");
    while (rows.executeStep())
        emails.push_back(rows.getColumn(0).getString());
    return emails;
}

bool AccountStore::has(const std::string& email) {
    return bound(database_, "SELECT 1 FROM Account WHERE email = ?", email).executeStep();
}

std::vector<Membership> AccountStore::memberships(const std::string& email) {
    auto rows = bound(database_,
                      "SELECT c.id, c.name, c.file, m.username, m.isActive, c.requiresOneTimeCode FROM Membership m "
                      "JOIN Company c ON c.id = m.company WHERE m.email = ? ORDER BY c.name",
                      email);
    std::vector<Membership> all;
    while (rows.executeStep())
        all.push_back(membershipOf(rows, 0));
    return all;
}

CredentialCheck AccountStore::check(const std::string& email, Date now, const std::function<bool()>& isRight) {
    std::int64_t attempt = 0;
    {
        // Counted as wrong before it is looked at: attempts at the same time count each other.
        SQLite::Transaction transaction(database_, SQLite::TransactionBehavior::IMMEDIATE);
        execute(database_, "DELETE FROM WrongCredential WHERE date <= ?", now.since1970() - wrongOnesCountFor);
        auto row = bound(database_, "SELECT count(*) FROM WrongCredential WHERE email = ?", email);
        if (row.executeStep() && row.getColumn(0).getInt() >= wrongOnesAllowed) return CredentialCheck::throttled;
        row.reset();
        execute(database_, "INSERT INTO WrongCredential (email, date) VALUES (?, ?)", email, now.since1970());
        attempt = database_.getLastInsertRowid();
        transaction.commit();
    }
    if (!isRight()) return CredentialCheck::wrong;
    execute(database_, "DELETE FROM WrongCredential WHERE rowid = ?", attempt);
    return CredentialCheck::right;
}

CredentialCheck AccountStore::checkPassword(const std::string& email, std::string_view password, Date now) {
    return check(email, now, [&] {
        auto row = bound(database_, "SELECT password FROM Account WHERE email = ?", email);
        return row.executeStep() && isPassword(row.getColumn(0).getString(), password);
    });
}

bool AccountStore::hasSecondFactor(const std::string& email) {
    return bound(database_, "SELECT 1 FROM Account WHERE email = ? AND oneTimeSecret IS NOT NULL", email).executeStep();
}

CredentialCheck AccountStore::useOneTimeCode(const std::string& email, std::string_view code, Date now) {
    return check(email, now, [&] {
        SQLite::Transaction transaction(database_, SQLite::TransactionBehavior::IMMEDIATE);
        std::optional<std::int64_t> period;
        {
            auto row = bound(database_, "SELECT oneTimeSecret, lastOneTimePeriod FROM Account WHERE email = ?", email);
            if (row.executeStep()) period = oneTimePeriod(row.getColumn(0).getString(), typedCode(code), now);
            if (period && *period <= row.getColumn(1).getInt64()) period.reset();
        }
        if (!period) return false;
        execute(database_, "UPDATE Account SET lastOneTimePeriod = ? WHERE email = ?", *period, email);
        transaction.commit();
        return true;
    });
}

CredentialCheck AccountStore::useRecoveryCode(const std::string& email, std::string_view code, Date now) {
    return check(email, now, [&] {
        return execute(database_, "DELETE FROM RecoveryCode WHERE email = ? AND digest = ?", email,
                       tokenDigest(typedCode(code))) > 0;
    });
}

std::string AccountStore::addDevice(const std::string& email, std::int64_t companyID, Date now) {
    std::string token = newToken();
    execute(database_, "INSERT INTO Device (digest, email, company, createDate) VALUES (?, ?, ?, ?)",
            tokenDigest(token), email, companyID, now.since1970());
    return token;
}

std::optional<SignedInDevice> AccountStore::device(std::string_view token) {
    auto row = bound(database_,
                     "SELECT d.email, d.isRevoked, c.id, c.name, c.file, m.username, m.isActive, c.requiresOneTimeCode "
                     "FROM Device d JOIN Membership m ON m.email = d.email AND m.company = d.company "
                     "JOIN Company c ON c.id = d.company WHERE d.digest = ?",
                     tokenDigest(token));
    if (!row.executeStep()) return std::nullopt;
    return SignedInDevice{.email = row.getColumn(0).getString(),
                          .membership = membershipOf(row, 2),
                          .isRevoked = row.getColumn(1).getInt() != 0};
}

void AccountStore::removeDevice(std::string_view token) {
    execute(database_, "DELETE FROM Device WHERE digest = ?", tokenDigest(token));
}

void AccountStore::requireAccount(const std::string& email) {
    if (!has(email)) throw Failure(fmt::format("there is no account of {}", email));
}

std::int64_t AccountStore::requiredCompany(const std::string& name) {
    auto row = bound(database_, "SELECT id FROM Company WHERE name = ?", name);
    if (!row.executeStep()) throw Failure(fmt::format("there is no company {}", name));
    return row.getColumn(0).getInt64();
}

}  // namespace kestrel::host
