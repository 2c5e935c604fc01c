#pragma once

#include <kestrel/reactive/publisher.h>
#include <kestrel/runtime/service_protocol.h>
#include <kestrel/session/current_user_info.h>
#include <kestrel/session/forced_logout.h>
#include <kestrel/session/session_state.h>
#include <memory>
#include <optional>
#include <utility>

namespace kestrel {

/// Who is signed in.
class SessionService : public ServiceProtocol {
  public:
    /// Where the session stands, now and after every change.
    [[nodiscard]] virtual AnyPublisher<SessionState> state() const = 0;
    /// Who is signed in, now and after every change; absent when nobody is.
    [[nodiscard]] virtual AnyPublisher<std::optional<CurrentUserInfo>> currentUser() const = 0;
    /// Ends the session; with a reason when it was not the user who asked for it. Finishes when nobody is signed in.
    [[nodiscard]] virtual AnyPublisher<Never> logOut(std::optional<ForcedLogout> reason) = 0;
};

template <>
class Forwarding<SessionService> : public SessionService {
  public:
    [[nodiscard]] virtual std::shared_ptr<SessionService> target() const = 0;

    [[nodiscard]] AnyPublisher<SessionState> state() const override { return target()->state(); }
    [[nodiscard]] AnyPublisher<std::optional<CurrentUserInfo>> currentUser() const override {
        return target()->currentUser();
    }
    [[nodiscard]] AnyPublisher<Never> logOut(std::optional<ForcedLogout> reason) override {
        return target()->logOut(std::move(reason));
    }
};

namespace services {
inline constexpr ServiceKey<SessionService> session;
}

}  // namespace kestrel
