#pragma once

#include <host/accounts/account_store.h>
#include <kestrel/reactive/publisher.h>
#include <kestrel/runtime/service_protocol.h>
#include <kestrel/session/service_errors.h>
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace kestrel::host {

/// Who may sign in, and to which companies.
struct Account {
    std::string email{};
    bool hasSecondFactor{};
    /// By the company's name, deactivated ones included.
    std::vector<Membership> memberships{};

    friend bool operator==(const Account&, const Account&) = default;
};

/// Manages the accounts that users sign in with. What cannot be done is an `underlyingError` with the Failure.
class AccountsService : public ServiceProtocol {
  public:
    /// By their e-mail addresses.
    [[nodiscard]] virtual AnyPublisher<std::vector<Account>, ReadError> fetchAccounts() = 0;
    [[nodiscard]] virtual AnyPublisher<Never, UpdateError> addAccount(std::string email, std::string password) = 0;
    [[nodiscard]] virtual AnyPublisher<Never, UpdateError> setPassword(std::string email, std::string password) = 0;
    /// In the place of the one before, if any.
    [[nodiscard]] virtual AnyPublisher<SecondFactor, UpdateError> addSecondFactor(std::string email) = 0;
    /// The database has to be there.
    [[nodiscard]] virtual AnyPublisher<Never, UpdateError> addCompany(std::string name, std::filesystem::path database,
                                                                      bool requiresOneTimeCode) = 0;
    /// Lets an account sign in to a company as a user of its database, who has to be there, or as another one than
    /// before; not one that is deactivated there.
    [[nodiscard]] virtual AnyPublisher<Never, UpdateError> join(std::string email, std::string companyName,
                                                                std::string username) = 0;
    [[nodiscard]] virtual AnyPublisher<Never, UpdateError> setActive(std::string email, std::string companyName,
                                                                     bool isActive) = 0;
    /// Withdraws the access of every device that is signed in. How many there were.
    [[nodiscard]] virtual AnyPublisher<std::size_t, UpdateError> revokeDevices(std::string email) = 0;
};

namespace host_services {
inline constexpr ServiceKey<AccountsService> accounts;
}

}  // namespace kestrel::host
