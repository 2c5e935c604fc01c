#pragma once

#include <kestrel/reactive/replay_subject.h>
#include <kestrel/services/session_service.h>
#include <functional>
#include <optional>
#include <utility>

namespace kestrel::host {

/// The session of this process. The login moves it on; everybody else watches it and signs out.
class LocalSession final : public SessionService {
  public:
    /// Nobody is signed in. `forget` is called when somebody signs out, and removes what would sign them in again.
    explicit LocalSession(std::function<void()> forget) : forget_(std::move(forget)) {
        state_.send(SessionState::loggedOut());
        currentUser_.send(std::nullopt);
    }

    [[nodiscard]] AnyPublisher<SessionState> state() const override {
        return state_.eraseToAnyPublisher().removeDuplicates();
    }
    [[nodiscard]] AnyPublisher<std::optional<CurrentUserInfo>> currentUser() const override {
        return currentUser_.eraseToAnyPublisher().removeDuplicates();
    }
    [[nodiscard]] AnyPublisher<Never> logOut(std::optional<ForcedLogout> reason) override;

    void move(const SessionState& state) { state_.send(state); }
    void setCurrentUser(const std::optional<CurrentUserInfo>& user) { currentUser_.send(user); }
    /// Why the last session was ended, when it was not the user who asked for it.
    [[nodiscard]] const std::optional<ForcedLogout>& forcedLogout() const noexcept { return forcedLogout_; }

  private:
    std::function<void()> forget_;
    ReplaySubject<SessionState> state_{1};
    ReplaySubject<std::optional<CurrentUserInfo>> currentUser_{1};
    std::optional<ForcedLogout> forcedLogout_;
};

}  // namespace kestrel::host
