#pragma once

#include <host/services/host_context.h>
#include <kestrel/services/options_service.h>
#include <memory>
#include <utility>

namespace kestrel::host {

/// The preferences of a database, a DatabasePreference each. They are read whoever looks, and stored by whoever is
/// signed in. One that is taken away is marked as deleted, and lives again when it is stored again.
class SQLiteOptionsService final : public OptionsService {
  public:
    explicit SQLiteOptionsService(std::shared_ptr<HostContext> context) : context_(std::move(context)) {}

    [[nodiscard]] AnyPublisher<std::optional<std::string>, ReadError> fetchOption(std::string name) override;
    [[nodiscard]] AnyPublisher<std::vector<DatabasePreference>, ReadError> fetchOptions() override;
    /// Taking away one that there is not is `notFound`.
    [[nodiscard]] AnyPublisher<DatabasePreference, UpdateError> storeOption(std::string name,
                                                                            std::optional<std::string> value) override;
    /// Absent also while the database cannot be read.
    [[nodiscard]] AnyPublisher<std::optional<std::string>> observeOption(std::string name) override;

  private:
    std::shared_ptr<HostContext> context_;
};

}  // namespace kestrel::host
