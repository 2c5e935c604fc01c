#pragma once

#include <kestrel/reactive/publisher.h>
#include <kestrel/runtime/service_protocol.h>
#include <kestrel/session/database_preference.h>
#include <kestrel/session/service_errors.h>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kestrel {

/// Preferences of the database, the same for all its users.
class OptionsService : public ServiceProtocol {
  public:
    /// Its value; absent when the database has none.
    [[nodiscard]] virtual AnyPublisher<std::optional<std::string>, ReadError> fetchOption(std::string name) = 0;
    /// All of them, by name.
    [[nodiscard]] virtual AnyPublisher<std::vector<DatabasePreference>, ReadError> fetchOptions() = 0;
    /// Absent takes it away.
    [[nodiscard]] virtual AnyPublisher<DatabasePreference, UpdateError> storeOption(
        std::string name, std::optional<std::string> value) = 0;
    /// Its value, now and after every change.
    [[nodiscard]] virtual AnyPublisher<std::optional<std::string>> observeOption(std::string name) = 0;
};

template <>
class Forwarding<OptionsService> : public OptionsService {
  public:
    [[nodiscard]] virtual std::shared_ptr<OptionsService> target() const = 0;

    [[nodiscard]] AnyPublisher<std::optional<std::string>, ReadError> fetchOption(std::string name) override {
        return target()->fetchOption(std::move(name));
    }
    [[nodiscard]] AnyPublisher<std::vector<DatabasePreference>, ReadError> fetchOptions() override {
        return target()->fetchOptions();
    }
    [[nodiscard]] AnyPublisher<DatabasePreference, UpdateError> storeOption(std::string name,
                                                                            std::optional<std::string> value) override {
        return target()->storeOption(std::move(name), std::move(value));
    }
    [[nodiscard]] AnyPublisher<std::optional<std::string>> observeOption(std::string name) override {
        return target()->observeOption(std::move(name));
    }
};

namespace services {
inline constexpr ServiceKey<OptionsService> options;
}

}  // namespace kestrel
