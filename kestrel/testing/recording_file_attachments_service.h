#pragma once

#include <kestrel/services/file_attachments_service.h>
#include <kestrel/testing/stub.h>

namespace kestrel {

/// A FileAttachmentsService that answers as a test prepares it, and keeps what it is asked.
class RecordingFileAttachmentsService final : public FileAttachmentsService {
  public:
    struct Stubs {
        Stub<AnyPublisher<std::filesystem::path, OnDemandError>(const ObjectID<FileAttachment>&)> fetchFile;
    };
    mutable Stubs on{};

    [[nodiscard]] AnyPublisher<std::filesystem::path, OnDemandError> fetchFile(
        const ObjectID<FileAttachment>& id) override {
        return on.fetchFile(id);
    }
};

}  // namespace kestrel
