#pragma once

#include <kestrel/foundation/progress_snapshot.h>
#include <kestrel/session/named_choice.h>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kestrel {

/// A company that an account belongs to.
struct LoginStateCompany {
    /// The company's identifier on the server.
    std::int64_t id{};
    /// What the company is called.
    std::string name{};

    friend bool operator==(const LoginStateCompany&, const LoginStateCompany&) = default;
};

/// How far the download of a company's data has come.
struct LoginStateDownloadInfo {
    /// The company that was chosen.
    std::string companyName{};
    /// The e-mail address of the account.
    std::string email{};
    /// How far it is.
    ProgressSnapshot progress{};

    friend bool operator==(const LoginStateDownloadInfo&, const LoginStateDownloadInfo&) = default;
};

/// The cases of LoginState, without what they carry.
enum class LoginStateCaseName : std::uint8_t {
    userEmailIdentified,  ///< LoginState::userEmailIdentified
    authenticating,       ///< LoginState::authenticating
    enterOneTimeCode,     ///< LoginState::enterOneTimeCode
    enterRecoveryCode,    ///< LoginState::enterRecoveryCode
    selectCompany,        ///< LoginState::selectCompany
    downloading,          ///< LoginState::downloading
};
template <>
inline constexpr auto enumerationForm<LoginStateCaseName> = EnumerationForm::caseText;

/// The step of an interactive login. The host's session service moves from one to the next; what a step submits is an
/// AuthenticationCredentialSet.
class LoginState : public NamedChoice<LoginState, LoginStateCaseName, std::string, NoPayload<1>, NoPayload<2>,
                                      NoPayload<3>, std::vector<LoginStateCompany>, LoginStateDownloadInfo> {
  public:
    /// One of those to pick from.
    using Company = LoginStateCompany;
    /// The payload of `downloading`.
    using DownloadInfo = LoginStateDownloadInfo;

    /// The user of that e-mail address is known; the next input is a credential.
    [[nodiscard]] static LoginState userEmailIdentified(std::string email) {
        return make<CaseName::userEmailIdentified>(std::move(email));
    }
    /// Credentials have been submitted and are being checked.
    [[nodiscard]] static LoginState authenticating() { return make<CaseName::authenticating>(); }
    /// The next input is a one-time code, with the password.
    [[nodiscard]] static LoginState enterOneTimeCode() { return make<CaseName::enterOneTimeCode>(); }
    /// The next input is a recovery code, with the password.
    [[nodiscard]] static LoginState enterRecoveryCode() { return make<CaseName::enterRecoveryCode>(); }
    /// The account belongs to several companies, of which the user picks one.
    [[nodiscard]] static LoginState selectCompany(std::vector<Company> companies) {
        return make<CaseName::selectCompany>(std::move(companies));
    }
    /// The chosen company's data is being downloaded for use offline.
    [[nodiscard]] static LoginState downloading(DownloadInfo info) {
        return make<CaseName::downloading>(std::move(info));
    }

    [[nodiscard]] std::optional<std::string> userEmailIdentified() const { return payload<std::string>(); }
    [[nodiscard]] std::optional<std::vector<Company>> selectCompany() const { return payload<std::vector<Company>>(); }
    [[nodiscard]] std::optional<DownloadInfo> downloading() const { return payload<DownloadInfo>(); }

    friend bool operator==(const LoginState&, const LoginState&) = default;

  private:
    friend CodingAccess;
    explicit LoginState(Variant value) : Base(std::move(value)) {}
};
static_assert(AutoCaseName<LoginState>);

}  // namespace kestrel
