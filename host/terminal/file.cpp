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
    const Descriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
    if (descriptor.get() < 0) refuse(file.native(), "cannot be opened");
    return readDescriptor(descriptor.get(), file.native());
}

std::string readDescriptor(int descriptor, std::string_view name) {
    constexpr std::size_t firstSize = std::size_t{64} * 1024;
    std::string text;
    std::size_t length = 0;
    for (;;) {
        if (length == text.size()) text.resize(std::max(firstSize, text.size() * 2));
        const ssize_t count = ::read(descriptor, text.data() + length, text.size() - length);
        if (count == 0) break;
        if (count > 0) {
            length += static_cast<std::size_t>(count);
        } else if (errno != EINTR) {
            refuse(name, "cannot be read");
        }
    }
    text.resize(length);
    return text;
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
    struct stat before {};
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
