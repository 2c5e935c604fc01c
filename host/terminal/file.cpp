#include <fcntl.h>
#include <fmt/format.h>
#include <host/failure.h>
#include <host/terminal/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <system_error>

namespace kestrel::host {
namespace {

/// A file descriptor that is closed with its scope.
class Descriptor {
  public:
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    ~Descriptor() {
        if (descriptor_ >= 0) ::close(descriptor_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    [[nodiscard]] int get() const { return descriptor_; }

  private:
    int descriptor_;
};

[[noreturn]] void refuse(std::string_view file, const char* what) {
    throw Failure(fmt::format("{}: {}: {}", file, what, std::strerror(errno)));
}

}  // namespace

std::string readFile(const std::filesystem::path& file) {
    return LineSource(file.native()).rest();
}

LineSource::LineSource(const std::optional<std::string>& file)
    : name_(file.value_or("standard input")),
      descriptor_(file ? ::open(file->c_str(), O_RDONLY | O_CLOEXEC) : STDIN_FILENO) {
    if (descriptor_ < 0) refuse(name_, "cannot be opened");
}

LineSource::~LineSource() {
    if (descriptor_ != STDIN_FILENO) ::close(descriptor_);
}

bool LineSource::readMore() {
    constexpr std::size_t pieceSize = std::size_t{64} * 1024;
    // What has been handed out goes only when there is a piece to read, so that each byte moves seldom.
    buffer_.erase(0, start_);
    searched_ -= start_;
    start_ = 0;
    const std::size_t length = buffer_.size();
    // A long line is read in ever larger pieces.
    buffer_.resize(length + std::max(pieceSize, length / 2));
    ssize_t count = 0;
    do {
        count = ::read(descriptor_, buffer_.data() + length, buffer_.size() - length);
    } while (count < 0 && errno == EINTR);
    if (count < 0) refuse(name_, "cannot be read");
    buffer_.resize(length + static_cast<std::size_t>(count));
    return count > 0;
}

bool LineSource::hasLine() {
    const std::size_t found = buffer_.find('\n', searched_);
    searched_ = std::min(found, buffer_.size());
    return found != buffer_.npos;
}

std::optional<std::string_view> LineSource::next() {
    while (!hasLine()) {
        if (readMore()) continue;
        if (start_ == buffer_.size()) return std::nullopt;
        break;
    }
    const auto line = std::string_view(buffer_).substr(start_, searched_ - start_);
    start_ = searched_ = std::min(searched_ + 1, buffer_.size());
    return line;
}

std::string LineSource::rest() {
    while (readMore()) {
    }
    return buffer_.substr(start_);
}

void writeFileAtomically(const std::filesystem::path& file, std::string_view text) {
    std::error_code problem;
    std::filesystem::path target = file;
    if (std::filesystem::is_symlink(file, problem)) target = std::filesystem::weakly_canonical(file, problem);
    std::string temporary = target.native() + ".XXXXXX";
    const Descriptor descriptor(::mkostemp(temporary.data(), O_CLOEXEC));
    if (descriptor.get() < 0) refuse(file.native(), "cannot be written");
    const auto refuseAndTidy = [&] {
        const int number = errno;
        ::unlink(temporary.c_str());
        errno = number;
        refuse(file.native(), "cannot be written");
    };
    for (std::string_view rest = text; !rest.empty();) {
        const ssize_t count = ::write(descriptor.get(), rest.data(), rest.size());
        if (count >= 0) {
            rest.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            refuseAndTidy();
        }
    }
    // A temporary file is for its owner alone; a new file is what the user's mask makes of it.
    struct stat before{};
    mode_t mode = 0;
    if (::stat(target.c_str(), &before) == 0) {
        mode = before.st_mode & 07777U;
    } else {
        const mode_t mask = ::umask(0);
        ::umask(mask);
        mode = 0666U & ~mask;
    }
    if (::fchmod(descriptor.get(), mode) != 0 || ::fsync(descriptor.get()) != 0 ||
        ::rename(temporary.c_str(), target.c_str()) != 0) {
        refuseAndTidy();
    }
}

}  // namespace kestrel::host
