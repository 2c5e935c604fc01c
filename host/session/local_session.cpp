#include <host/session/local_session.h>

namespace kestrel::host {

AnyPublisher<Never> LocalSession::logOut(std::optional<ForcedLogout> reason) {
    return create<Never>([self = shared_from_this(), reason = std::move(reason)](const Emitter<Never, Never>& emitter) {
        self->forcedLogout_ = reason;
        self->move(SessionState::loggingOut());
        self->forget_();
        self->currentUser_.send(std::nullopt);
        self->move(SessionState::loggedOut());
        emitter.finish();
        return AnyCancellable();
    });
}

}  // namespace kestrel::host
