#pragma once

#include <host/accounts/accounts_service.h>
#include <utility>

namespace kestrel::host {

/// The accounts of a file, which is opened for each call.
class FileAccountsService final : public AccountsService {
  public:
    explicit FileAccountsService(std::filesystem::path file) : file_(std::move(file)) {}

    [[nodiscard]] AnyPublisher<std::vector<Account>, ReadError> fetchAccounts() override;
    [[nodiscard]] AnyPublisher<Never, UpdateError> addAccount(std::string email, std::string password) override;
    [[nodiscard]] AnyPublisher<Never, UpdateError> setPassword(std::string email, std::string password) override;
    [[nodiscard]] AnyPublisher<SecondFactor, UpdateError> addSecondFactor(std::string email) override;
    [[nodiscard]] AnyPublisher<Never, UpdateError> addCompany(std::string name, std::filesystem::path database,
                                                              bool requiresOneTimeCode) override;
    [[nodiscard]] AnyPublisher<Never, UpdateError> join(std::string email, std::string companyName,
                                                        std::string username) override;
    [[nodiscard]] AnyPublisher<Never, UpdateError> setActive(std::string email, std::string companyName,
                                                             bool isActive) override;
    [[nodiscard]] AnyPublisher<std::size_t, UpdateError> revokeDevices(std::string email) override;

  private:
    std::filesystem::path file_;
};

}  // namespace kestrel::host
