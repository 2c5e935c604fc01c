#pragma once

#include <host/services/host_context.h>
#include <host/services/records_service.h>
#include <memory>
#include <utility>

namespace kestrel::host {

/// The records of a database.
class SQLiteRecordsService final : public RecordsService {
  public:
    explicit SQLiteRecordsService(std::shared_ptr<HostContext> context) : context_(std::move(context)) {}

    [[nodiscard]] AnyPublisher<RecordText, ReadError> fetchRecord(const AnyObjectID& id) override;
    [[nodiscard]] AnyPublisher<RecordAccess, ReadError> decideAccess(const AnyObjectID& id) override;
    [[nodiscard]] AnyPublisher<std::string, ReadError> fetchTitle(const AnyObjectID& id) override;
    [[nodiscard]] AnyPublisher<ObjectID<Contact>, ReadError> findContact(std::string text, std::string locale) override;
    [[nodiscard]] AnyPublisher<ExtraFieldsNamer, ReadError> fetchContactFields() override;
    [[nodiscard]] AnyPublisher<Directory, ReadError> fetchDirectory() override;
    [[nodiscard]] AnyPublisher<User, ReadError> fetchUser() override;

  private:
    std::shared_ptr<HostContext> context_;
};

}  // namespace kestrel::host
