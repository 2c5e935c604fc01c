#pragma once

#include <kestrel/services/login_storage_service.h>
#include <kestrel/testing/stub.h>
#include <utility>

namespace kestrel {

/// A LoginStorageService that answers as a test prepares it, and keeps what it is asked.
class RecordingLoginStorageService final : public LoginStorageService {
  public:
    struct Stubs {
        Stub<AnyPublisher<std::optional<std::string>, ReadError>()> fetchLastUsername;
        Stub<AnyPublisher<Never, UpdateError>(const PasswordCredential&)> storeCredential;
        Stub<AnyPublisher<Never, UpdateError>(std::string)> deleteCredential;
    };
    mutable Stubs on{};

    [[nodiscard]] AnyPublisher<std::optional<std::string>, ReadError> fetchLastUsername() override {
        return on.fetchLastUsername();
    }
    [[nodiscard]] AnyPublisher<Never, UpdateError> storeCredential(const PasswordCredential& credential) override {
        return on.storeCredential(credential);
    }
    [[nodiscard]] AnyPublisher<Never, UpdateError> deleteCredential(std::string username) override {
        return on.deleteCredential(std::move(username));
    }
};

}  // namespace kestrel
