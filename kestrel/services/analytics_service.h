#pragma once

#include <kestrel/runtime/service_protocol.h>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

namespace kestrel {

/// What goes with an event, by name.
using AnalyticsProperties = std::map<std::string, std::variant<std::string, std::int64_t, double, bool>, std::less<>>;

/// How the application is used, where the user allows that.
class AnalyticsService : public ServiceProtocol {
  public:
    /// Who the following events are about; empty for nobody.
    virtual void identifyUser(std::string_view userID) = 0;
    /// Something the user did.
    virtual void trackEvent(std::string_view name, const AnalyticsProperties& properties) = 0;
    /// Something the user sees.
    virtual void trackScreen(std::string_view name, const AnalyticsProperties& properties) = 0;
    /// Sends what is waiting.
    virtual void flush() = 0;
};

template <>
class Forwarding<AnalyticsService> : public AnalyticsService {
  public:
    [[nodiscard]] virtual std::shared_ptr<AnalyticsService> target() const = 0;

    void identifyUser(std::string_view userID) override { target()->identifyUser(userID); }
    void trackEvent(std::string_view name, const AnalyticsProperties& properties) override {
        target()->trackEvent(name, properties);
    }
    void trackScreen(std::string_view name, const AnalyticsProperties& properties) override {
        target()->trackScreen(name, properties);
    }
    void flush() override { target()->flush(); }
};

namespace services {
inline constexpr ServiceKey<AnalyticsService> analytics;
}

}  // namespace kestrel
