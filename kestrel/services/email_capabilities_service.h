#pragma once

#include <kestrel/reactive/publisher.h>
#include <kestrel/runtime/service_protocol.h>
#include <kestrel/services/email_capabilities.h>
#include <memory>

namespace kestrel {

/// Which mail clients can send mail.
class EmailCapabilitiesService : public ServiceProtocol {
  public:
    /// As they are now.
    [[nodiscard]] virtual EmailCapabilities currentEmailCapabilities() const = 0;
    /// As they are now, and after every change.
    [[nodiscard]] virtual AnyPublisher<EmailCapabilities> subscribeEmailCapabilities() = 0;
};

template <>
class Forwarding<EmailCapabilitiesService> : public EmailCapabilitiesService {
  public:
    [[nodiscard]] virtual std::shared_ptr<EmailCapabilitiesService> target() const = 0;

    [[nodiscard]] EmailCapabilities currentEmailCapabilities() const override {
        return target()->currentEmailCapabilities();
    }
    [[nodiscard]] AnyPublisher<EmailCapabilities> subscribeEmailCapabilities() override {
        return target()->subscribeEmailCapabilities();
    }
};

namespace services {
inline constexpr ServiceKey<EmailCapabilitiesService> emailCapabilities;
}

}  // namespace kestrel
