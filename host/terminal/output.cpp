#include <fmt/format.h>
#include <host/failure.h>
#include <host/terminal/output.h>
#include <host/terminal/text.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace kestrel::host {
namespace {

constexpr std::size_t pieceSize = std::size_t{64} * 1024;

/// Writes all of a text; the number of the error when that fails.
int writeAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(descriptor, text.data(), text.size());
        if (written >= 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

bool isSet(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

long long nowInMilliseconds() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

}  // namespace

void Output::write(std::string_view text) {
    pending_ += text;
    if (pending_.size() >= pieceSize) flush();
}

void Output::flush() {
    // Forgotten even when writing fails, so that nothing is written twice.
    const std::string text = std::exchange(pending_, {});
    const int problem = writeAll(descriptor_, text);
    if (problem == EPIPE) throw OutputClosed();
    if (problem != 0) throw Failure(fmt::format("standard output: {}", std::strerror(problem)));
}

Terminal Terminal::ofStandardOutput() {
    Terminal terminal;
    terminal.isTerminal = isatty(STDOUT_FILENO) == 1;
    if (!terminal.isTerminal) return terminal;
    const char* kind = std::getenv("TERM");
    terminal.hasColor = !isSet("NO_COLOR") && kind != nullptr && std::string_view(kind) != "dumb";
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) terminal.width = size.ws_col;
    return terminal;
}

void writeJSONLine(std::string_view json, Output& output, const Terminal& terminal) {
    output.write(terminal.isTerminal ? printableJSON(json) : json);
    output.write("\n");
}

void writeErrorLine(std::string_view message) {
    // Where standard error fails there is nobody to tell.
    (void)writeAll(STDERR_FILENO, printable(message) + "\n");
}

ProgressBar::ProgressBar(std::string_view title) : title_(title), isTerminal_(isatty(STDERR_FILENO) == 1) {}

ProgressBar::~ProgressBar() {
    if (isDrawn_) (void)writeAll(STDERR_FILENO, "\r\033[K");
}

void ProgressBar::show(std::size_t done, std::size_t total) {
    constexpr long long interval = 100;
    constexpr std::size_t length = 30;
    if (!isTerminal_ || total == 0) return;
    const long long now = nowInMilliseconds();
    if (isDrawn_ && now - drawnAt_ < interval) return;
    isDrawn_ = true;
    drawnAt_ = now;
    const std::size_t filled = std::min(done, total) * length / total;
    (void)writeAll(STDERR_FILENO, fmt::format("\r{} [{}{}] {:3}%", title_, std::string(filled, '#'),
                                              std::string(length - filled, '.'), done * 100 / total));
}

}  // namespace kestrel::host
