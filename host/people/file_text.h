#pragma once

#include <host/people/import_problems.h>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// The text of files that other programs wrote, in whatever encoding, as lines.
namespace kestrel::host {

/// The bytes of a file without a byte-order mark, UTF-16 turned into UTF-8, every zero byte replaced by U+FFFD: the
/// parsers end a text at one. Other bytes stay as they are.
[[nodiscard]] std::string plainBytes(std::string bytes);

/// The text in UTF-8: as it is when it is UTF-8; with U+FFFD for the other bytes when it is so in parts, or is said to
/// be; else taken as being of the character set, else as Windows-1252. An empty name, and one that is not known, stand
/// for no character set.
[[nodiscard]] std::string inUTF8(std::string_view text, const std::string& charset = {});

/// The text; absent when it is empty.
[[nodiscard]] std::optional<std::string> present(std::string text);
/// The text without white space at both ends.
[[nodiscard]] std::string_view trimmed(std::string_view text);
/// The parts between the separators; one for an empty text.
[[nodiscard]] std::vector<std::string_view> split(std::string_view text, char separator);
/// Whether two texts are the same but for the case of ASCII letters.
[[nodiscard]] bool isSameWord(std::string_view a, std::string_view b);
/// Whether a text starts with a word, whatever the case of ASCII letters.
[[nodiscard]] bool startsWithWord(std::string_view text, std::string_view word);
/// The text with ASCII letters in upper or in lower case.
[[nodiscard]] std::string inUpperCase(std::string_view text);
[[nodiscard]] std::string inLowerCase(std::string_view text);
/// The text with every CR LF and every lone CR turned into LF.
[[nodiscard]] std::string withLineFeeds(std::string_view text);
/// The bytes in hexadecimal digits of a digest that tells contents apart, the same in every run.
[[nodiscard]] std::string digestOf(std::string_view text);

/// A line of a file without its end.
struct TextLine {
    /// The first is 1.
    std::size_t number{};
    std::string_view text{};

    /// White space in front continues the line before.
    [[nodiscard]] bool isContinuation() const { return !text.empty() && (text.front() == ' ' || text.front() == '\t'); }
};

/// The lines of a text, each of which ends in LF, CR LF or CR. They point into the text. Several CR in front of a LF
/// are one end: programs that end lines twice write them.
[[nodiscard]] std::vector<TextLine> linesOf(std::string_view text);
/// Takes the blanks that a line has in front off the lines behind it, up to the first one that does not start with
/// them.
void unindentLike(std::vector<TextLine>& lines, std::size_t index);

/// The component that a line such as "BEGIN:VCARD" begins, or "END:VCARD" ends, in upper case; empty for other lines.
[[nodiscard]] std::string begunBy(std::string_view line);
[[nodiscard]] std::string endedBy(std::string_view line);

/// A warning that a broken file would give for line after line: told for the first few, and then as a number.
class RepeatedWarning {
  public:
    /// What the others are told as, such as "line is" and "lines are".
    struct Words {
        std::string_view one;
        std::string_view several;
        std::string_view what;
    };

    RepeatedWarning(ImportProblems& problems, FilePlace file, Words words)
        : problems_(&problems), file_(std::move(file)), words_(words) {}

    void warn(std::size_t line, std::string message);
    /// Tells how many more there were.
    void finish();

  private:
    ImportProblems* problems_;
    FilePlace file_;
    Words words_;
    std::size_t told_ = 0;
    std::size_t untold_ = 0;
    /// Of those that are not told.
    std::size_t lastLine_ = 0;
};

}  // namespace kestrel::host
