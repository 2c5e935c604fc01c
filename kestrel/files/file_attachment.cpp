#include <kestrel/coding/wire_form.h>
#include <kestrel/files/file_attachment.h>

namespace kestrel {

KESTREL_FIELDS(FileAttachment, fileAttachmentID, attachmentNote, createDate, deletionDate, deletionIdentifier,
               deletionUserID, mimeType, modifyDate, name, size, title, permissions);

}  // namespace kestrel
