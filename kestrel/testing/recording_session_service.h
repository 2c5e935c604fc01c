#pragma once

#include <kestrel/services/session_service.h>
#include <kestrel/testing/stub.h>
#include <utility>

namespace kestrel {

/// A SessionService that answers as a test prepares it, and keeps what it is asked.
class RecordingSessionService final : public SessionService {
  public:
    struct Stubs {
        Stub<AnyPublisher<SessionState>()> state;
        Stub<AnyPublisher<std::optional<CurrentUserInfo>>()> currentUser;
        Stub<AnyPublisher<Never>(std::optional<ForcedLogout>)> logOut;
    };
    mutable Stubs on{};

    [[nodiscard]] AnyPublisher<SessionState> state() const override { return on.state(); }
    [[nodiscard]] AnyPublisher<std::optional<CurrentUserInfo>> currentUser() const override { return on.currentUser(); }
    [[nodiscard]] AnyPublisher<Never> logOut(std::optional<ForcedLogout> reason) override {
        return on.logOut(std::move(reason));
    }
};

}  // namespace kestrel
