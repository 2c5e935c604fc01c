#include <host/services/host_context.h>

namespace kestrel::host {
namespace {

/// How often somebody who observes asks for changes by others, in seconds.
constexpr double pollInterval = 1;

}  // namespace

HostContext::HostContext(std::filesystem::path databaseFile, std::shared_ptr<CurrentUser> currentUser,
                         SystemClockService& systemClock)
    : file_(std::move(databaseFile)),
      currentUser_(std::move(currentUser)),
      clock_(&systemClock),
      userChanges_(currentUser_->changes().sink([subject = changes_](Void change) { subject.send(change); })) {}

ReadingConnection& HostContext::connection() {
    if (connection_ && !connection_->isCurrent()) {
        connection_.reset();
        directory_.reset();
    }
    if (!connection_) {
        connection_.emplace(file_);
        ++connectionCount_;
    }
    return *connection_;
}

const Directory& HostContext::directory(SQLite::Database& database) {
    const std::int64_t version = connection_->dataVersion();
    if (!directory_ || directoryVersion_ != version) {
        directory_.emplace(database);
        directoryVersion_ = version;
    }
    return *directory_;
}

const User& HostContext::signedInUser(const Directory& known) const {
    const auto& name = currentUser_->name();
    if (!name) throw Refusal("nobody is signed in");
    return known.user(*name);
}

void HostContext::didChange() {
    if (observers_ > 0) toldVersion_ = versionNow();
    changes_.send(Void{});
}

void HostContext::lookForChanges() {
    const auto version = versionNow();
    if (version == toldVersion_) return;
    toldVersion_ = version;
    changes_.send(Void{});
}

std::optional<HostContext::Version> HostContext::versionNow() {
    try {
        const std::int64_t version = connection().dataVersion();
        return Version(connectionCount_, version);
    } catch (const Failure&) {
        return std::nullopt;
    } catch (const SQLite::Exception&) {
        return std::nullopt;
    }
}

AnyPublisher<Void> HostContext::changes() {
    return create<Void>([context = shared_from_this()](Emitter<Void, Never>& emitter) {
        if (++context->observers_ == 1) {
            context->toldVersion_ = context->versionNow();
            context->ticks_ = context->clock_->timer(pollInterval).sink([weak = std::weak_ptr(context)](Date /*now*/) {
                if (const auto alive = weak.lock()) alive->lookForChanges();
            });
        }
        return AnyCancellable([context, sending = context->changes_.eraseToAnyPublisher().sink(
                                            [emitter](Void change) { emitter.send(change); })]() mutable {
            sending.cancel();
            if (--context->observers_ == 0) context->ticks_.cancel();
        });
    });
}

}  // namespace kestrel::host
