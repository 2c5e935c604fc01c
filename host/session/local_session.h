#pragma once

#include <kestrel/reactive/replay_subject.h>
#include <kestrel/services/session_service.h>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace kestrel::host {

/// The session of this process. The login moves it on; everybody else watches it and signs out.
class LocalSession final : public SessionService, public std::enable_shared_from_this<LocalSession> {
  public:
    /// Nobody is signed in. `forget` is called when somebody signs out, and removes what would sign them in again; it
    /// does not throw.
    explicit LocalSession(std::function<void()> forget) : forget_(std::move(forget)) {
        state_.send(current_);
        currentUser_.send(std::nullopt);
    }

    [[nodiscard]] AnyPublisher<SessionState> state() const override {
        return state_.eraseToAnyPublisher().removeDuplicates();
    }
    [[nodiscard]] AnyPublisher<std::optional<CurrentUserInfo>> currentUser() const override {
        return currentUser_.eraseToAnyPublisher().removeDuplicates();
    }
    [[nodiscard]] AnyPublisher<Never> logOut(std::optional<ForcedLogout> reason) override;

    void move(const SessionState& state) {
        current_ = state;
        state_.send(state);
    }
    [[nodiscard]] const SessionState& current() const noexcept { return current_; }
    void setCurrentUser(const std::optional<CurrentUserInfo>& user) { currentUser_.send(user); }
    /// Why the last session was ended, when it was not the user who asked for it.
    [[nodiscard]] const std::optional<ForcedLogout>& forcedLogout() const noexcept { return forcedLogout_; }

  private:
    std::function<void()> forget_;
    SessionState current_ = SessionState::loggedOut();
    ReplaySubject<SessionState> state_{1};
    ReplaySubject<std::optional<CurrentUserInfo>> currentUser_{1};
    std::optional<ForcedLogout> forcedLogout_;
};

}  // namespace kestrel::host
