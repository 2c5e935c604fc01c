#pragma once

#include <kestrel/reactive/publisher.h>
#include <kestrel/runtime/service_protocol.h>
#include <kestrel/session/credentials.h>
#include <kestrel/session/service_errors.h>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace kestrel {

/// Keeps how the user signs in on this machine.
class LoginStorageService : public ServiceProtocol {
  public:
    /// Who signed in last, absent when nobody has, or whoever did is to be forgotten.
    [[nodiscard]] virtual AnyPublisher<std::optional<std::string>, ReadError> fetchLastUsername() = 0;
    /// After a successful login. A service may keep a proof of the password instead of the password.
    [[nodiscard]] virtual AnyPublisher<Never, UpdateError> storeCredential(const PasswordCredential& credential) = 0;
    /// Forgets the user.
    [[nodiscard]] virtual AnyPublisher<Never, UpdateError> deleteCredential(std::string username) = 0;
};

template <>
class Forwarding<LoginStorageService> : public LoginStorageService {
  public:
    [[nodiscard]] virtual std::shared_ptr<LoginStorageService> target() const = 0;

    [[nodiscard]] AnyPublisher<std::optional<std::string>, ReadError> fetchLastUsername() override {
        return target()->fetchLastUsername();
    }
    [[nodiscard]] AnyPublisher<Never, UpdateError> storeCredential(const PasswordCredential& credential) override {
        return target()->storeCredential(credential);
    }
    [[nodiscard]] AnyPublisher<Never, UpdateError> deleteCredential(std::string username) override {
        return target()->deleteCredential(std::move(username));
    }
};

namespace services {
inline constexpr ServiceKey<LoginStorageService> loginStorage;
}

}  // namespace kestrel
