#pragma once

#include <host/services/host_context.h>
#include <kestrel/services/emails_service.h>
#include <memory>
#include <utility>

namespace kestrel::host {

/// The messages of a database. Their texts are not kept: a message is its addressing, its header and its subject.
class SQLiteEmailsService final : public EmailsService {
  public:
    explicit SQLiteEmailsService(std::shared_ptr<HostContext> context) : context_(std::move(context)) {}

    [[nodiscard]] AnyPublisher<Email, ReadError> fetchEmail(const ObjectID<Email>& id) override;

  private:
    std::shared_ptr<HostContext> context_;
};

}  // namespace kestrel::host
