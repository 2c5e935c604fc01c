#pragma once

#include <kestrel/calendar/alert_object.h>
#include <kestrel/reactive/publisher.h>
#include <kestrel/runtime/service_protocol.h>
#include <cstdint>
#include <memory>
#include <vector>

namespace kestrel {

/// Messages of the application to its user.
class AlertService : public ServiceProtocol {
  public:
    /// Those that are neither dismissed nor hidden, the newest first; now and after every change.
    [[nodiscard]] virtual AnyPublisher<std::vector<AlertObject>> alerts() const = 0;
    /// How many of them are unread; now and after every change.
    [[nodiscard]] virtual AnyPublisher<std::int64_t> unreadCount() const = 0;
};

template <>
class Forwarding<AlertService> : public AlertService {
  public:
    [[nodiscard]] virtual std::shared_ptr<AlertService> target() const = 0;

    [[nodiscard]] AnyPublisher<std::vector<AlertObject>> alerts() const override { return target()->alerts(); }
    [[nodiscard]] AnyPublisher<std::int64_t> unreadCount() const override { return target()->unreadCount(); }
};

namespace services {
inline constexpr ServiceKey<AlertService> alert;
}

}  // namespace kestrel
