#pragma once

#include <kestrel/access/permissions.h>
#include <kestrel/coding/codec.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/record_types.h>
#include <cstdint>
#include <optional>
#include <string>

namespace kestrel {

/// A file that is attached to records. The file itself lies with the host.
struct FileAttachment {
    static constexpr auto recordName = recordNameOf<FileAttachment>;
    static constexpr auto entityName = entityNameOf<FileAttachment>;

    ReadOnly<ObjectID<FileAttachment>, FileAttachment> fileAttachmentID;
    /// What users say about it.
    std::optional<std::string> attachmentNote{};
    /// When the record was created.
    std::optional<Date> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// "application/pdf".
    std::optional<std::string> mimeType{};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// The name of the file.
    std::optional<std::string> name{};
    /// In bytes.
    std::int64_t size{};
    /// What users call it, where that is not the name of the file.
    std::optional<std::string> title{};
    /// Who may read and change it.
    Permissions permissions{};

    [[nodiscard]] const ObjectID<FileAttachment>& objectID() const noexcept { return fileAttachmentID.get(); }
    [[nodiscard]] const ObjectID<FileAttachment>& id() const noexcept { return fileAttachmentID.get(); }
    friend bool operator==(const FileAttachment&, const FileAttachment&) = default;
};
extern template struct Codec<FileAttachment>;

}  // namespace kestrel
