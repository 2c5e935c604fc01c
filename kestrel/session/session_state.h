#pragma once

#include <kestrel/session/named_choice.h>
#include <cstdint>
#include <optional>
#include <utility>

namespace kestrel {

/// How far a signed-in session is.
enum class SessionStateLoggedIn : std::uint8_t {
    migratingSchema,  ///< the schema of the local database is being migrated: SchemaMigrationState
    ready,            ///< usable
};

/// The cases of SessionState, without what they carry.
enum class SessionStateCaseName : std::uint8_t {
    loggingOut,  ///< SessionState::loggingOut
    loggedOut,   ///< SessionState::loggedOut
    loggingIn,   ///< SessionState::loggingIn
    loggedIn     ///< SessionState::loggedIn
};
template <>
inline constexpr auto enumerationForm<SessionStateCaseName> = EnumerationForm::caseText;

/// The state of the session as a whole. The host's session service moves from one to the next.
class SessionState : public NamedChoice<SessionState, SessionStateCaseName, NoPayload<0>, NoPayload<1>, NoPayload<2>,
                                        SessionStateLoggedIn> {
  public:
    /// The payload of the case of that name.
    using LoggedIn = SessionStateLoggedIn;

    /// Sign-out is in progress.
    [[nodiscard]] static SessionState loggingOut() { return make<CaseName::loggingOut>(); }
    /// Nobody is signed in.
    [[nodiscard]] static SessionState loggedOut() { return make<CaseName::loggedOut>(); }
    /// An interactive login is in progress; its step is a LoginState.
    [[nodiscard]] static SessionState loggingIn() { return make<CaseName::loggingIn>(); }
    /// A user is signed in.
    [[nodiscard]] static SessionState loggedIn(LoggedIn progress) { return make<CaseName::loggedIn>(progress); }

    [[nodiscard]] std::optional<LoggedIn> loggedIn() const { return payload<LoggedIn>(); }

    friend bool operator==(const SessionState&, const SessionState&) = default;

  private:
    friend CodingAccess;
    explicit SessionState(Variant value) : Base(std::move(value)) {}
};
static_assert(AutoCaseName<SessionState>);

}  // namespace kestrel
