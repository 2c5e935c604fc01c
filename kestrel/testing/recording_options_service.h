#pragma once

#include <kestrel/services/options_service.h>
#include <kestrel/testing/stub.h>
#include <utility>

namespace kestrel {

/// An OptionsService that answers as a test prepares it, and keeps what it is asked.
class RecordingOptionsService final : public OptionsService {
  public:
    struct Stubs {
        Stub<AnyPublisher<std::optional<std::string>, ReadError>(std::string)> fetchOption;
        Stub<AnyPublisher<std::vector<DatabasePreference>, ReadError>()> fetchOptions;
        Stub<AnyPublisher<DatabasePreference, UpdateError>(std::string, std::optional<std::string>)> storeOption;
        Stub<AnyPublisher<std::optional<std::string>>(std::string)> observeOption;
    };
    mutable Stubs on{};

    [[nodiscard]] AnyPublisher<std::optional<std::string>, ReadError> fetchOption(std::string name) override {
        return on.fetchOption(std::move(name));
    }
    [[nodiscard]] AnyPublisher<std::vector<DatabasePreference>, ReadError> fetchOptions() override {
        return on.fetchOptions();
    }
    [[nodiscard]] AnyPublisher<DatabasePreference, UpdateError> storeOption(std::string name,
                                                                            std::optional<std::string> value) override {
        return on.storeOption(std::move(name), std::move(value));
    }
    [[nodiscard]] AnyPublisher<std::optional<std::string>> observeOption(std::string name) override {
        return on.observeOption(std::move(name));
    }
};

}  // namespace kestrel
