#include <host/session/local_session.h>

namespace kestrel::host {

AnyPublisher<Never> LocalSession::logOut(std::optional<ForcedLogout> reason) {
    return create<Never>([this, reason = std::move(reason)](const Emitter<Never, Never>& emitter) {
        forcedLogout_ = reason;
        state_.send(SessionState::loggingOut());
        forget_();
        currentUser_.send(std::nullopt);
        state_.send(SessionState::loggedOut());
        emitter.finish();
        return AnyCancellable();
    });
}

}  // namespace kestrel::host
