#pragma once

#include <kestrel/activity/email.h>
#include <kestrel/reactive/publisher.h>
#include <kestrel/runtime/service_protocol.h>
#include <kestrel/session/service_errors.h>
#include <memory>

namespace kestrel {

/// Messages.
class EmailsService : public ServiceProtocol {
  public:
    /// The message with its text.
    [[nodiscard]] virtual AnyPublisher<Email, ReadError> fetchEmail(const ObjectID<Email>& id) = 0;
};

template <>
class Forwarding<EmailsService> : public EmailsService {
  public:
    [[nodiscard]] virtual std::shared_ptr<EmailsService> target() const = 0;

    [[nodiscard]] AnyPublisher<Email, ReadError> fetchEmail(const ObjectID<Email>& id) override {
        return target()->fetchEmail(id);
    }
};

namespace services {
inline constexpr ServiceKey<EmailsService> emails;
}

}  // namespace kestrel
