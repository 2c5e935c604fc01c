#include <kestrel/platform/linux/file_watch.h>
#include <kestrel/platform/linux/glib_support.h>
#include <kestrel/platform/system.h>
#include <sys/inotify.h>
#include <unistd.h>
#include <array>
#include <cstring>
#include <string_view>
#include <utility>

namespace kestrel::platform {

namespace {

namespace fs = std::filesystem;

/// Watches the file's folder, or, while that is not there, the nearest one above it.
class FolderWatch {
  public:
    FolderWatch(const fs::path& file, FileDescriptor notifier)
        : name_(file.filename().native()), folder_(file.parent_path()), notifier_(std::move(notifier)) {
        isWatching_ = arm();
    }

    [[nodiscard]] bool isWatching() const { return isWatching_; }
    [[nodiscard]] int descriptor() const { return notifier_.number(); }

    /// Takes what has happened. True when it may concern the file.
    [[nodiscard]] bool readEvents() {
        bool concerns = false;
        bool hasMoved = false;
        alignas(inotify_event) std::array<char, 8192> buffer{};
        for (;;) {
            const auto size = read(notifier_.number(), buffer.data(), buffer.size());
            if (size <= 0) break;
            for (auto at = std::size_t{0}; at < static_cast<std::size_t>(size);) {
                inotify_event event{};
                std::memcpy(&event, buffer.data() + at, sizeof event);
                // Padded with zeros; empty when it happened to the folder itself.
                const std::string_view name(event.len == 0 ? "" : buffer.data() + at + sizeof event);
                at += sizeof event + event.len;
                if ((event.mask & IN_Q_OVERFLOW) != 0) concerns = hasMoved = true;
                if (event.wd != watch_) continue;
                if (name.empty() || watched_ != folder_) hasMoved = true;
                concerns = concerns || hasMoved || name.starts_with(name_);
            }
        }
        if (hasMoved) isWatching_ = arm();
        return concerns;
    }

  private:
    [[nodiscard]] bool arm() {
        if (watch_ >= 0) inotify_rm_watch(notifier_.number(), watch_);
        watch_ = -1;
        for (;;) {
            watched_ = nearest();
            constexpr std::uint32_t changes =
                IN_MODIFY | IN_CREATE | IN_DELETE | IN_MOVE | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
            watch_ = inotify_add_watch(notifier_.number(), watched_.c_str(), changes);
            // What appeared before the watch stood is not told.
            if (nearest() == watched_) return watch_ >= 0;
            if (watch_ >= 0) inotify_rm_watch(notifier_.number(), watch_);
        }
    }
    [[nodiscard]] fs::path nearest() const {
        std::error_code ignored;
        auto path = folder_;
        while (!fs::is_directory(path, ignored) && path.has_relative_path())
            path = path.parent_path();
        return path;
    }

    std::string name_;
    fs::path folder_;
    FileDescriptor notifier_;
    fs::path watched_{};
    int watch_ = -1;
    bool isWatching_ = false;
};

}  // namespace

AnyCancellable watchFile(GMainContext* context, const fs::path& file, std::function<void()> onChange) {
    FolderWatch watch(file, FileDescriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)));
    if (!watch.isWatching()) {
        constexpr double seconds = 2;
        return mainQueue()->repeatEvery(seconds, [onChange = std::move(onChange)](Date) { onChange(); });
    }
    const int descriptor = watch.descriptor();
    return watchDescriptor(context, descriptor, G_IO_IN,
                           [watch = std::move(watch), onChange = std::move(onChange)](GIOCondition) mutable {
                               if (watch.readEvents()) onChange();
                           });
}

}  // namespace kestrel::platform
