#pragma once

#include <SQLiteCpp/Database.h>
#include <kestrel/foundation/date.h>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel::host {

/// A company that an account belongs to: a database of records, and who the account's user is there.
struct Membership {
    std::int64_t companyID{};
    std::string companyName{};
    std::filesystem::path database{};
    /// The name that the user signs in with in the database.
    std::string username{};
    /// False when the company has deactivated the user.
    bool isActive{true};
    /// Whether the company asks for a second factor.
    bool requiresOneTimeCode{};

    friend bool operator==(const Membership&, const Membership&) = default;
};

/// A device that is signed in.
struct SignedInDevice {
    std::string email{};
    Membership membership{};
    /// Whether its access was withdrawn.
    bool isRevoked{};
};

enum class CredentialCheck : std::uint8_t {
    right,
    wrong,
    throttled,  ///< too many wrong ones lately: it was not looked at
};

/// What an account gets when a second factor is switched on; neither can be read again.
struct SecondFactor {
    /// For an authenticator application, in base32.
    std::string secret{};
    /// Each good for one login without the device.
    std::vector<std::string> recoveryCodes{};
};

/// The accounts of this machine: who may sign in, how that is proved, and the companies. In a file of its own, which
/// only its owner can read; made when there is none. E-mail addresses do not tell cases of letters apart. What cannot
/// be done is a Failure; trouble with the file is what SQLite throws.
class AccountStore {
  public:
    explicit AccountStore(std::filesystem::path file);

    /// $XDG_DATA_HOME/kestrel/accounts.sqlite, below ~/.local/share without the variable.
    [[nodiscard]] static std::filesystem::path standardFile();

    void addAccount(const std::string& email, std::string_view password);
    void setPassword(const std::string& email, std::string_view password);
    /// In the place of the one before, if any.
    [[nodiscard]] SecondFactor addSecondFactor(const std::string& email);
    void addCompany(const std::string& name, const std::filesystem::path& database, bool requiresOneTimeCode);
    /// Adds an account to a company, or makes it another user there. A Failure when it was deactivated there, which
    /// only `setActive` takes back.
    void join(const std::string& email, const std::string& companyName, const std::string& username);
    /// The database of a company. A Failure when there is no such company.
    [[nodiscard]] std::filesystem::path databaseOf(const std::string& companyName);
    void setActive(const std::string& email, const std::string& companyName, bool isActive);
    /// Withdraws the access of every device that is signed in. How many there were.
    std::size_t revokeDevices(const std::string& email);

    [[nodiscard]] std::vector<std::string> accounts();
    [[nodiscard]] bool has(const std::string& email);
    /// Those that the user is in, by name, deactivated ones included.
    [[nodiscard]] std::vector<Membership> memberships(const std::string& email);

    // Five wrong passwords and codes within five minutes, and none is looked at until the first of them is that old.

    [[nodiscard]] CredentialCheck checkPassword(const std::string& email, std::string_view password, Date now);
    [[nodiscard]] bool hasSecondFactor(const std::string& email);
    /// Right when it is the code of the moment and was not used before.
    [[nodiscard]] CredentialCheck useOneTimeCode(const std::string& email, std::string_view code, Date now);
    /// Right when it is one of those that are left; it is not any more.
    [[nodiscard]] CredentialCheck useRecoveryCode(const std::string& email, std::string_view code, Date now);

    /// Signs a device in; the token by which it is known.
    [[nodiscard]] std::string addDevice(const std::string& email, std::int64_t companyID, Date now);
    /// Absent for a token that was never given out, or was signed out.
    [[nodiscard]] std::optional<SignedInDevice> device(std::string_view token);
    void removeDevice(std::string_view token);

  private:
    void requireAccount(const std::string& email);
    [[nodiscard]] std::int64_t requiredCompany(const std::string& name);
    [[nodiscard]] CredentialCheck check(const std::string& email, Date now, const std::function<bool()>& isRight);

    std::filesystem::path file_;
    SQLite::Database database_;
};

}  // namespace kestrel::host
