#pragma once

#include <kestrel/services/login_storage_service.h>
#include <kestrel/services/system_user_defaults_service.h>
#include <memory>
#include <utility>

namespace kestrel::host {

/// Who signed in last, kept in the user's preferences with a hash of the password, by which it can be verified without
/// the accounts.
class DefaultsLoginStorage final : public LoginStorageService {
  public:
    explicit DefaultsLoginStorage(std::shared_ptr<SystemUserDefaultsService> defaults)
        : defaults_(std::move(defaults)) {}

    [[nodiscard]] AnyPublisher<std::optional<std::string>, ReadError> fetchLastUsername() override;
    [[nodiscard]] AnyPublisher<Never, UpdateError> storeCredential(const PasswordCredential& credential) override;
    [[nodiscard]] AnyPublisher<Never, UpdateError> deleteCredential(std::string username) override;

    /// Whether that is the password that was stored for the user.
    [[nodiscard]] bool isStored(const PasswordCredential& credential) const;

  private:
    std::shared_ptr<SystemUserDefaultsService> defaults_;
};

}  // namespace kestrel::host
