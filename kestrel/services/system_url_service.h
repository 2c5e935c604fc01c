#pragma once

#include <kestrel/foundation/platform_error.h>
#include <kestrel/foundation/url.h>
#include <kestrel/reactive/publisher.h>
#include <kestrel/runtime/service_protocol.h>
#include <memory>

namespace kestrel {

/// Opens URLs in the applications of the system. For use on the main thread.
class SystemURLService : public ServiceProtocol {
  public:
    /// Whether some application can.
    [[nodiscard]] virtual bool canOpenURL(const URL& url) const = 0;
    /// Opens the URL when somebody subscribes, and finishes when an application has it.
    [[nodiscard]] virtual AnyPublisher<Never, PlatformError> openURL(const URL& url) = 0;
};

template <>
class Forwarding<SystemURLService> : public SystemURLService {
  public:
    [[nodiscard]] virtual std::shared_ptr<SystemURLService> target() const = 0;

    [[nodiscard]] bool canOpenURL(const URL& url) const override { return target()->canOpenURL(url); }
    [[nodiscard]] AnyPublisher<Never, PlatformError> openURL(const URL& url) override { return target()->openURL(url); }
};

namespace services {
inline constexpr ServiceKey<SystemURLService> systemURL;
}

}  // namespace kestrel
