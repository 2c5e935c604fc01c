#include <fmt/format.h>
#include <host/people/file_text.h>
#include <host/people/mail_importer.h>

namespace kestrel::host {
namespace {

class MailImporter {
  public:
    explicit MailImporter(ImportStore& store) : store_(store), emails_(store.database()), files_(store.database()) {}

    void merge(const MailMessage& message, const std::string& source) {
        const std::int64_t key = store_.keyOf(source, emails_);
        const std::optional<Email> before = emails_.find(key);
        Email email = before ? *before : Email{.emailID = key, .createDate = message.date};
        email.bccString = present(message.bcc);
        email.ccString = present(message.cc);
        email.fromString = present(message.from);
        email.inReplyToMessageID = present(message.inReplyTo);
        email.messageDate = message.date;
        email.messageID = present(message.messageID);
        email.rawHeader = present(message.rawHeader);
        email.subject = present(message.subject);
        email.toString = present(message.to);
        if (before && email != *before) {
            // A message that was sent does not change: this is another one, or a forgery.
            store_.problems().warn(message.place,
                                   fmt::format("another message with this Message-ID, sender and date is "
                                               "stored as {}, which counts; left out",
                                               before->objectID().stringValue()));
            ++store_.counts(EntryKind::message).superseded;
            return;
        }
        const auto written = emails_.write(email, before);
        store_.addresses().set(email.objectID(), message.addresses);
        bool hasNewFiles = false;
        for (std::size_t i = 0; i < message.attachments.size(); ++i)
            hasNewFiles |= mergeFile(message, i, fmt::format("{}#{}", source, i + 1));
        using Written = RecordStore<Email>::Written;
        store_.count(EntryKind::message, written == Written::unchanged && hasNewFiles ? Written::changed : written);
    }

  private:
    /// Whether the file was added or changed.
    bool mergeFile(const MailMessage& message, std::size_t index, const std::string& source) {
        const MailMessage::Attachment& attachment = message.attachments[index];
        const std::int64_t key = store_.keyOf(source, files_);
        const std::optional<FileAttachment> before = files_.find(key);
        FileAttachment file = before ? *before : FileAttachment{.fileAttachmentID = key, .createDate = message.date};
        file.mimeType = present(attachment.mimeType);
        file.name = present(attachment.name);
        file.size = attachment.size;
        store_.addresses().set(file.objectID(), message.addresses);
        return files_.write(file, before) != RecordStore<FileAttachment>::Written::unchanged;
    }

    ImportStore& store_;
    RecordStore<Email> emails_;
    RecordStore<FileAttachment> files_;
};

/// What makes a message this one. The identifier alone does not: programs, and people who forge messages, use one
/// again.
std::string identityOf(const MailMessage& message) {
    if (message.messageID.empty()) return {};
    return fmt::format("{}\n{}\n{}", message.messageID, message.from,
                       message.date.value_or(Date(0)).sinceReferenceDate());
}

}  // namespace

void importMessages(const std::vector<MailMessage>& messages, ImportStore& store) {
    std::vector<EntryIdentity> identities;
    for (const MailMessage& message : messages) {
        identities.push_back({.place = message.place,
                              .uid = identityOf(message),
                              .substitute = message.digest,
                              .digest = message.digest});
    }
    const auto choices = chosenEntries(
        identities,
        [&](std::size_t later, std::size_t earlier) { return messages[later].date > messages[earlier].date; },
        "message", store.problems());
    MailImporter importer(store);
    for (std::size_t i = 0; i < messages.size(); ++i) {
        if (choices[i].isSuperseded) {
            ++store.counts(EntryKind::message).superseded;
        } else {
            importer.merge(messages[i], choices[i].source);
        }
    }
}

}  // namespace kestrel::host
