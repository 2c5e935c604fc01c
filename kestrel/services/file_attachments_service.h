#pragma once

#include <kestrel/files/file_attachment.h>
#include <kestrel/reactive/publisher.h>
#include <kestrel/runtime/service_protocol.h>
#include <kestrel/session/on_demand.h>
#include <filesystem>
#include <memory>

namespace kestrel {

/// Files that are attached to records.
class FileAttachmentsService : public ServiceProtocol {
  public:
    /// Where the file lies on this machine, fetched when it is not there.
    [[nodiscard]] virtual AnyPublisher<std::filesystem::path, OnDemandError> fetchFile(
        const ObjectID<FileAttachment>& id) = 0;
};

template <>
class Forwarding<FileAttachmentsService> : public FileAttachmentsService {
  public:
    [[nodiscard]] virtual std::shared_ptr<FileAttachmentsService> target() const = 0;

    [[nodiscard]] AnyPublisher<std::filesystem::path, OnDemandError> fetchFile(
        const ObjectID<FileAttachment>& id) override {
        return target()->fetchFile(id);
    }
};

namespace services {
inline constexpr ServiceKey<FileAttachmentsService> fileAttachments;
}

}  // namespace kestrel
