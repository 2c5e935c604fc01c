#pragma once

#include <host/terminal/output.h>
#include <optional>
#include <string>
#include <vector>

namespace kestrel::host {

/// `kestrel login [EMAIL]`, `kestrel logout` and `kestrel account …`.
struct LoginOptions {
    /// The file of accounts; the user's own when empty.
    std::string accounts{};
    std::string email{};
    /// Of the account's companies the one to enter; asked for when there are several.
    std::string company{};
    std::string oneTimeCode{};
    std::string recoveryCode{};
    /// Tells who is signed in, and ends a session that may not go on.
    bool asksForStatus{};
    /// Asks for the password of the user who is signed in.
    bool unlocks{};
    bool isJSON{};
};

struct AccountOptions {
    std::string accounts{};
    std::string email{};
    std::string company{};
    std::string database{};
    /// Who the account's user is in the company's database.
    std::string user{};
    bool requiresOneTimeCode{};
    bool isJSON{};
};

/// Signs in, step by step, writing each state; what is not in the options is asked for. A Failure with what the user
/// sees when a step fails, or the user gives up.
void loginCommand(const LoginOptions& options, Output& output, const Terminal& terminal);
void logoutCommand(const LoginOptions& options, Output& output, const Terminal& terminal);

void addAccountCommand(const AccountOptions& options);
void setPasswordCommand(const AccountOptions& options);
/// Writes the secret and the recovery codes, once.
void secondFactorCommand(const AccountOptions& options, Output& output, const Terminal& terminal);
void addCompanyCommand(const AccountOptions& options);
void joinCompanyCommand(const AccountOptions& options);
void setActiveCommand(const AccountOptions& options, bool isActive);
void revokeDevicesCommand(const AccountOptions& options, Output& output);
void listAccountsCommand(const AccountOptions& options, Output& output, const Terminal& terminal);

}  // namespace kestrel::host
