#include <host/terminal/prompt.h>
#include <termios.h>
#include <unistd.h>

#include <cstdio>
#include <iostream>

namespace kestrel::host {
namespace {

/// Switches the terminal's echo off as long as it lives.
class SilentTerminal {
  public:
    SilentTerminal() {
        isChanged_ = ::tcgetattr(STDIN_FILENO, &before_) == 0;
        if (!isChanged_) return;
        termios silent = before_;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
    }
    ~SilentTerminal() {
        if (!isChanged_) return;
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_);
        std::fputc('\n', stderr);
    }
    SilentTerminal(const SilentTerminal&) = delete;
    SilentTerminal& operator=(const SilentTerminal&) = delete;

  private:
    termios before_{};
    bool isChanged_ = false;
};

std::optional<std::string> readLine() {
    std::string line;
    if (!std::getline(std::cin, line)) return std::nullopt;
    if (line.ends_with('\r')) line.pop_back();
    return line;
}

void show(std::string_view question) {
    if (::isatty(STDIN_FILENO) == 0) return;
    std::fwrite(question.data(), 1, question.size(), stderr);
    std::fflush(stderr);
}

}  // namespace

std::optional<std::string> ask(std::string_view question) {
    show(question);
    return readLine();
}

std::optional<std::string> askForSecret(std::string_view question) {
    show(question);
    const SilentTerminal silent;
    return readLine();
}

}  // namespace kestrel::host
