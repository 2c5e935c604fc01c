#pragma once

#include <host/people/import_problems.h>
#include <kestrel/foundation/date.h>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestrel::host {

/// A message of an .eml file as it was read: all texts are UTF-8, and encoded words are decoded.
struct MailMessage {
    struct Attachment {
        /// Empty when it has none.
        std::string name{};
        std::string mimeType{};
        /// Of the decoded content, in bytes.
        std::int64_t size{};
    };

    FilePlace place{};
    /// Tells messages of other content apart.
    std::string digest{};
    /// The block of headers as it stands in the file, encoded words included.
    std::string rawHeader{};
    // The addressing as the message carries it; empty when it has none.
    std::string from{};
    std::string to{};
    std::string cc{};
    std::string bcc{};
    std::string subject{};
    /// Without the angle brackets.
    std::string messageID{};
    std::string inReplyTo{};
    std::optional<Date> date{};
    /// All addresses that it came from or went to.
    std::vector<std::string> addresses{};
    std::vector<Attachment> attachments{};
};

}  // namespace kestrel::host
