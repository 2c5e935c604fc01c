#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kestrel::host {

/// Nobody reads the output any more: the reader of the pipe has gone. Not an error; the command ends quietly.
class OutputClosed {};

/// A file descriptor that is written to in large pieces. Writing throws OutputClosed when the reader has gone, and a
/// Failure that names standard output for any other trouble, a full disk for example.
class Output {
  public:
    explicit Output(int descriptor) : descriptor_(descriptor) {}
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void write(std::string_view text);
    void flush();

  private:
    int descriptor_;
    std::string pending_;
};

/// What standard output is connected to.
struct Terminal {
    /// A terminal, not a file or a pipe.
    bool isTerminal = false;
    /// A terminal that shows colours, whose user has not declined them: NO_COLOR is unset or empty, TERM is not "dumb".
    bool hasColor = false;
    /// In cells; 80 when the terminal does not say.
    std::size_t width = 80;

    [[nodiscard]] static Terminal ofStandardOutput();
};

/// Writes a JSON document and a line's end: as it is, or on a terminal without power over it.
void writeJSONLine(std::string_view json, Output& output, const Terminal& terminal);

/// Writes one line to standard error, fit for a terminal; `message` may contain anything.
void writeErrorLine(std::string_view message);

/// A bar on standard error that shows how far something is. Draws only on a terminal, ten times a second at most, and
/// leaves nothing behind.
class ProgressBar {
  public:
    explicit ProgressBar(std::string_view title);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    void show(std::size_t done, std::size_t total);

  private:
    std::string title_;
    bool isTerminal_;
    bool isDrawn_ = false;
    /// When it was drawn last, in milliseconds of a clock that only goes forward.
    long long drawnAt_ = 0;
};

}  // namespace kestrel::host
