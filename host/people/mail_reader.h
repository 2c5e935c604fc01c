#pragma once

#include <host/people/import_problems.h>
#include <host/people/mail_message.h>
#include <cstddef>
#include <string>
#include <vector>

namespace kestrel::host {

/// Reads messages, one a file.
///
/// A message is refused when it has none of the headers From, Date and Subject, or more nested parts or groups of
/// addresses than anybody sends. A Date that cannot be read is left out with a warning. Bytes of a header that are not
/// UTF-8 are taken as Windows-1252; in the block of headers each becomes U+FFFD.
class MailReader {
  public:
    explicit MailReader(ImportProblems& problems) : problems_(&problems) {}

    /// Reads a file's content. `file` is how problems call it.
    void read(const std::string& file, const std::string& bytes);

    /// How many files were read.
    [[nodiscard]] std::size_t found() const noexcept { return found_; }
    [[nodiscard]] std::vector<MailMessage>& messages() noexcept { return messages_; }

  private:
    ImportProblems* problems_;
    std::size_t found_ = 0;
    std::vector<MailMessage> messages_;
};

}  // namespace kestrel::host
