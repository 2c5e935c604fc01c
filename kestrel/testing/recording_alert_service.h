#pragma once

#include <kestrel/services/alert_service.h>
#include <kestrel/testing/stub.h>

namespace kestrel {

/// An AlertService that answers as a test prepares it, and keeps what it is asked.
class RecordingAlertService final : public AlertService {
  public:
    struct Stubs {
        Stub<AnyPublisher<std::vector<AlertObject>>()> alerts;
        Stub<AnyPublisher<std::int64_t>()> unreadCount;
    };
    mutable Stubs on{};

    [[nodiscard]] AnyPublisher<std::vector<AlertObject>> alerts() const override { return on.alerts(); }
    [[nodiscard]] AnyPublisher<std::int64_t> unreadCount() const override { return on.unreadCount(); }
};

}  // namespace kestrel
