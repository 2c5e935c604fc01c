#include <gtest/gtest.h>
#include <kestrel/session/credentials.h>
#include <kestrel/session/current_user_info.h>
#include <kestrel/session/forced_logout.h>
#include <kestrel/session/login_error.h>
#include <kestrel/session/login_state.h>
#include <kestrel/session/on_demand.h>
#include <kestrel/session/schema_migration_state.h>
#include <kestrel/session/service_errors.h>
#include <kestrel/session/session_state.h>

namespace {

using namespace kestrel;
using LoggedIn = SessionState::LoggedIn;

/// The names of an enumeration's cases, in order; each is what the case is coded as.
template <class E>
std::string namesOf() {
    std::string names;
    for (const E value : allCases<E>) {
        const std::string text = '"' + std::string(rawValue(value)) + '"';
        EXPECT_EQ(encodeJSON(value), text);
        EXPECT_EQ(decodeJSON<E>(text), value);
        names += (names.empty() ? "" : " ") + std::string(rawValue(value));
    }
    return names;
}

TEST(CaseNames, areTheNamesOfTheCasesInOrder) {
    EXPECT_EQ(namesOf<SessionState::CaseName>(), "loggingOut loggedOut loggingIn loggedIn");
    EXPECT_EQ(namesOf<LoginState::CaseName>(),
              "userEmailIdentified authenticating enterOneTimeCode enterRecoveryCode selectCompany downloading");
    EXPECT_EQ(namesOf<SchemaMigrationState::CaseName>(), "ready running finished failed");
    EXPECT_EQ(namesOf<ReadError::CaseName>(),
              "notFound missingObjectID unexpectedType cancelled fetchError underlyingError");
    EXPECT_EQ(namesOf<UpdateError::CaseName>(),
              "notFound deleteNotAllowed incompatibleRawValue internalError underlyingError");
    EXPECT_EQ(namesOf<LoginError::CaseName>(),
              "localizedError invalidToken oneTimeCodeRequired mfaRequired invalidVerificationCode invalidRecoveryCode "
              "invalidAuthenticationResponse authorizationError authorizationCancelled unsupportedAuthenticationMethod "
              "environmentError offlineSetupError offlineDownloadError corruptDatabase cancelled unknown");
    EXPECT_EQ(namesOf<ForcedLogoutReason>(), "deviceRevoked userDeactivated migrationFailure");
    for (const char* text : {R"("Downloading")", R"("downloading ")", R"("")"}) {
        const auto decoded = decodeJSON<LoginState::CaseName>(text);
        ASSERT_FALSE(decoded) << text;
        EXPECT_EQ(decoded.error().kind, DecodingError::Kind::dataCorrupted);
    }
    EXPECT_FALSE(decodeJSON<LoginState::CaseName>("5"));
    EXPECT_FALSE(fromRawValue<ForcedLogoutReason>("other"));
}

/// Every case, made by its name, in the order of the names.
template <class C>
void expectNamed(const std::vector<C>& values) {
    ASSERT_EQ(values.size(), allCases<typename C::CaseName>.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        EXPECT_EQ(values[i].caseName(), allCases<typename C::CaseName>[i]);
        for (std::size_t j = 0; j < values.size(); ++j)
            EXPECT_EQ(values[i] == values[j], i == j) << i << " " << j;
    }
}

TEST(Choices, tellTheirCaseWithoutThePayload) {
    const AnyError error = BackfillUserError::retryFailed;
    expectNamed<SessionState>({SessionState::loggingOut(), SessionState::loggedOut(), SessionState::loggingIn(),
                               SessionState::loggedIn(LoggedIn::ready)});
    expectNamed<LoginState>({LoginState::userEmailIdentified("ada@example.org"), LoginState::authenticating(),
                             LoginState::enterOneTimeCode(), LoginState::enterRecoveryCode(),
                             LoginState::selectCompany({}), LoginState::downloading({})});
    expectNamed<SchemaMigrationState>({SchemaMigrationState::ready(), SchemaMigrationState::running({}),
                                       SchemaMigrationState::finished(),
                                       SchemaMigrationState::failed(SchemaMigrationError::databaseUpdateFailed)});
    expectNamed<ReadError>({ReadError::notFound(), ReadError::missingObjectID(), ReadError::unexpectedType("a"),
                            ReadError::cancelled(), ReadError::fetchError(error), ReadError::underlyingError(error)});
    expectNamed<UpdateError>({UpdateError::notFound(), UpdateError::deleteNotAllowed(),
                              UpdateError::incompatibleRawValue(), UpdateError::internalError("a"),
                              UpdateError::underlyingError(error)});
    expectNamed<LoginError>({LoginError::localizedError(error), LoginError::invalidToken(),
                             LoginError::oneTimeCodeRequired(), LoginError::mfaRequired("a"),
                             LoginError::invalidVerificationCode(), LoginError::invalidRecoveryCode(),
                             LoginError::invalidAuthenticationResponse(error), LoginError::authorizationError(error),
                             LoginError::authorizationCancelled(), LoginError::unsupportedAuthenticationMethod("a"),
                             LoginError::environmentError(error), LoginError::offlineSetupError(error),
                             LoginError::offlineDownloadError(error), LoginError::corruptDatabase(),
                             LoginError::cancelled(), LoginError::unknown()});
}

TEST(Choices, giveBackThePayloadOfTheirOwnCase) {
    EXPECT_EQ(SessionState::loggedIn(LoggedIn::migratingSchema).loggedIn(), LoggedIn::migratingSchema);
    EXPECT_NE(SessionState::loggedIn(LoggedIn::migratingSchema), SessionState::loggedIn(LoggedIn::ready));
    const auto one = LoginState::selectCompany({{.id = 1, .name = "Acme"}});
    EXPECT_NE(one, LoginState::selectCompany({}));
    EXPECT_EQ(one.selectCompany()->at(0).name, "Acme");
    EXPECT_FALSE(one.downloading());
    const auto half = LoginState::downloading({"Acme", "ada@example.org", ProgressSnapshot::of(1, 2)});
    EXPECT_NE(half, LoginState::downloading({"Acme", "ada@example.org", ProgressSnapshot::of(2, 4)}));
    EXPECT_EQ(half.downloading()->progress.fractionCompleted, 0.5);

    // Payloads of one type belong to different cases all the same.
    const AnyError error = OnDemandError::client;
    const auto setup = LoginError::offlineSetupError(error);
    EXPECT_EQ(setup.offlineSetupError(), error);
    EXPECT_FALSE(setup.offlineDownloadError() || setup.localizedError() || setup.environmentError());
    EXPECT_EQ(LoginError::mfaRequired("Acme").mfaRequired()->companyName, "Acme");
    EXPECT_FALSE(ReadError::fetchError(error).underlyingError());

    using Set = AuthenticationCredentialSet;
    EXPECT_NE(Set::withOneTimeCode("a", "b", "c"), Set::withRecoveryCode("a", "b", "c"));
    EXPECT_NE(Set::basic("a", "b"), Set::basic("b", "a"));
    EXPECT_EQ(Set::withRecoveryCode("a", "b", "c").withRecoveryCode()->recoveryCode, "c");
    EXPECT_EQ(Set::supportToken("t").supportToken(), "t");
    EXPECT_NE(Set::passkey({.signature = Data::fromText("a")}), Set::passkey({.userID = Data::fromText("a")}));
}

static_assert(!AuthorizationCredential<BasicCredential> && !AutoCaseName<SyncError>);

TEST(ForcedLogouts, followOnlyFromAWithdrawnAccess) {
    EXPECT_EQ(ForcedLogout::from("Acme", SyncError::deviceRevoked()),
              (ForcedLogout{.companyName = "Acme", .reason = ForcedLogout::Reason::deviceRevoked}));
    EXPECT_EQ(ForcedLogout::from("Acme", SyncError::userDeactivated()),
              (ForcedLogout{.companyName = "Acme", .reason = ForcedLogout::Reason::userDeactivated}));
    EXPECT_FALSE(ForcedLogout::from("Acme", SyncError::syncFailure(std::nullopt)));
    EXPECT_FALSE(ForcedLogout::from("Acme", SyncError::syncFailure("deviceRevoked")));
}

TEST(SyncEvents, carryTheStatusOfAFinishedRun) {
    const SyncStatus status{.result = SyncStatus::Result::failure(SyncError::syncFailure("offline")),
                            .startDate = Date(1),
                            .endDate = Date(2)};
    EXPECT_EQ(SyncEvent::finished(status).syncStatus(), status);
    EXPECT_FALSE(SyncEvent::started().syncStatus());
    SyncStatus later = status;
    later.endDate = Date(3);
    EXPECT_NE(SyncEvent::finished(later), SyncEvent::finished(status));
    EXPECT_EQ(status.result.failure()->syncFailure()->reason, "offline");
    EXPECT_FALSE(SyncStatus::Result::success().failure());
    EXPECT_NE(SyncError::syncFailure(std::nullopt), SyncError::syncFailure(""));
}

}  // namespace
