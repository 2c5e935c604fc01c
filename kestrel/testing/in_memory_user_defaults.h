#pragma once

#include <kestrel/platform/user_defaults_store.h>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace kestrel {

/// Preferences that last as long as the object.
class InMemoryUserDefaults final : public UserDefaultsStore {
  public:
    [[nodiscard]] std::optional<DefaultsValue> object(std::string_view key) const override;
    std::expected<void, PlatformError> set(std::string_view key, DefaultsValue value) override;
    std::expected<void, PlatformError> removeObject(std::string_view key) override;
    [[nodiscard]] std::vector<std::string> keys() const override;

    /// Has every write fail from now on, or succeed again.
    void failWrites(std::optional<PlatformError> error);

  private:
    using Values = std::map<std::string, DefaultsValue, std::less<>>;

    std::expected<void, PlatformError> change(const std::function<bool(Values&)>& apply);

    mutable std::mutex mutex_;
    Values values_;
    std::optional<PlatformError> failure_;
};

}  // namespace kestrel
