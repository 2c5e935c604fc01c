#pragma once

#include <host/people/import_store.h>
#include <host/people/mail_message.h>
#include <vector>

namespace kestrel::host {

/// Brings the database up to date with messages, in the caller's transaction. Each is found again by its Message-ID, or
/// without one by its content. Its attachments become files, of the message's date; message and files are linked to the
/// contacts of all its addresses, as their subjects.
void importMessages(const std::vector<MailMessage>& messages, ImportStore& store);

}  // namespace kestrel::host
