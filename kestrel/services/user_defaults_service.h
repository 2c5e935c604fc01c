#pragma once

#include <kestrel/foundation/required.h>
#include <kestrel/services/system_user_defaults_service.h>
#include <memory>
#include <utility>

namespace kestrel {

/// The preferences in a store.
class UserDefaultsService final : public SystemUserDefaultsService {
  public:
    /// In that store. Null is a mistake in the program: fatal().
    explicit UserDefaultsService(std::shared_ptr<UserDefaultsStore> store)
        : userDefaults_(required(std::move(store), "The store of user defaults")) {}

    /// The store; never null.
    [[nodiscard]] const std::shared_ptr<UserDefaultsStore>& userDefaults() const noexcept { return userDefaults_; }

    [[nodiscard]] std::optional<DefaultsValue> readStored(std::string_view name,
                                                          StoredValueReader reader) const override;
    DefaultsWritten writeStored(std::optional<DefaultsValue> value, std::string_view name) override;
    DefaultsWritten remove(std::string_view name) override;
    /// Values come on the thread on which the store was changed.
    [[nodiscard]] AnyPublisher<std::optional<DefaultsValue>> observeStored(std::string_view name,
                                                                           StoredValueType type) override;

  private:
    std::shared_ptr<UserDefaultsStore> userDefaults_;
};

}  // namespace kestrel
