#pragma once

#include <host/people/contact_card.h>
#include <host/people/import_problems.h>
#include <cstddef>
#include <string>
#include <vector>

namespace kestrel::host {

/// Reads the cards of .vcf files: versions 2.1, 3.0 and 4.0, also mixed in one file.
///
/// A card is refused when it is never ended, or says neither a name nor an organisation, an e-mail address or a phone
/// number; the first text of a file that stands outside of any card, and a file without a card, are refused like one.
/// An empty file gets a warning. Warnings that come line after line are told as a number at last. A property of it that
/// cannot be read, or whose value is of no use, is left out with a warning. A card that stands in another one as its
/// agent is a card of its own. Text that is not UTF-8 is of the character set that its property names, else of
/// Windows-1252.
///
/// A card without a name by parts gets them from the whole name: what stands behind the last blank is the last name,
/// or what stands in front of the first comma. A card of a group has members; one of an organisation is what says so,
/// or has an organisation and no other name.
class VCardReader {
  public:
    explicit VCardReader(ImportProblems& problems) : problems_(&problems) {}

    /// Reads a file's content. `file` is how problems call it.
    void read(const std::string& file, std::string bytes);

    /// How many cards began; what is refused for being none counts as one.
    [[nodiscard]] std::size_t found() const noexcept { return found_; }
    [[nodiscard]] std::vector<ContactCard>& cards() noexcept { return cards_; }

  private:
    ImportProblems* problems_;
    std::size_t found_ = 0;
    std::vector<ContactCard> cards_;
};

}  // namespace kestrel::host
