#pragma once

#include <kestrel/services/emails_service.h>
#include <kestrel/testing/stub.h>

namespace kestrel {

/// An EmailsService that answers as a test prepares it, and keeps what it is asked.
class RecordingEmailsService final : public EmailsService {
  public:
    struct Stubs {
        Stub<AnyPublisher<Email, ReadError>(const ObjectID<Email>&)> fetchEmail;
    };
    mutable Stubs on{};

    [[nodiscard]] AnyPublisher<Email, ReadError> fetchEmail(const ObjectID<Email>& id) override {
        return on.fetchEmail(id);
    }
};

}  // namespace kestrel
