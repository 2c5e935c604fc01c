#pragma once

#include <kestrel/services/analytics_service.h>
#include <kestrel/testing/stub.h>

namespace kestrel {

/// An AnalyticsService that answers as a test prepares it, and keeps what it is asked.
class RecordingAnalyticsService final : public AnalyticsService {
  public:
    struct Stubs {
        Stub<void(std::string_view)> identifyUser;
        Stub<void(std::string_view, const AnalyticsProperties&)> trackEvent;
        Stub<void(std::string_view, const AnalyticsProperties&)> trackScreen;
        Stub<void()> flush;
    };
    mutable Stubs on{};

    void identifyUser(std::string_view userID) override { on.identifyUser(userID); }
    void trackEvent(std::string_view name, const AnalyticsProperties& properties) override {
        on.trackEvent(name, properties);
    }
    void trackScreen(std::string_view name, const AnalyticsProperties& properties) override {
        on.trackScreen(name, properties);
    }
    void flush() override { on.flush(); }
};

}  // namespace kestrel
