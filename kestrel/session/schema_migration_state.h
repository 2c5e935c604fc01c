#pragma once

#include <kestrel/foundation/progress_snapshot.h>
#include <kestrel/session/named_choice.h>
#include <kestrel/session/service_errors.h>
#include <cstdint>
#include <optional>
#include <utility>

namespace kestrel {

/// The cases of SchemaMigrationState, without what they carry.
enum class SchemaMigrationStateCaseName : std::uint8_t {
    ready,     ///< SchemaMigrationState::ready
    running,   ///< SchemaMigrationState::running
    finished,  ///< SchemaMigrationState::finished
    failed     ///< SchemaMigrationState::failed
};
template <>
inline constexpr auto enumerationForm<SchemaMigrationStateCaseName> = EnumerationForm::caseText;

/// Where the migration of the local database's schema, which may follow a login, stands: from `ready` to `running` to
/// `finished` or `failed`.
class SchemaMigrationState : public NamedChoice<SchemaMigrationState, SchemaMigrationStateCaseName, NoPayload<0>,
                                                ProgressSnapshot, NoPayload<2>, SchemaMigrationError> {
  public:
    /// Not needed, or not started.
    [[nodiscard]] static SchemaMigrationState ready() { return make<CaseName::ready>(); }
    /// Under way; how far it is.
    [[nodiscard]] static SchemaMigrationState running(ProgressSnapshot progress) {
        return make<CaseName::running>(progress);
    }
    /// Done: the database can be used.
    [[nodiscard]] static SchemaMigrationState finished() { return make<CaseName::finished>(); }
    /// Given up: the database cannot be used.
    [[nodiscard]] static SchemaMigrationState failed(SchemaMigrationError error) {
        return make<CaseName::failed>(error);
    }

    [[nodiscard]] std::optional<ProgressSnapshot> running() const { return payload<ProgressSnapshot>(); }
    [[nodiscard]] std::optional<SchemaMigrationError> failed() const { return payload<SchemaMigrationError>(); }

    friend bool operator==(const SchemaMigrationState&, const SchemaMigrationState&) = default;

  private:
    friend CodingAccess;
    explicit SchemaMigrationState(Variant value) : Base(std::move(value)) {}
};
static_assert(AutoCaseName<SchemaMigrationState>);

}  // namespace kestrel
