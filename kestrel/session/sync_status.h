#pragma once

#include <kestrel/foundation/any_error.h>
#include <kestrel/foundation/choice.h>
#include <kestrel/foundation/date.h>
#include <optional>
#include <string>
#include <utility>

namespace kestrel {

/// The payload of SyncError::syncFailure.
struct SyncFailure {
    /// For developers.
    std::optional<std::string> reason{};

    friend bool operator==(const SyncFailure&, const SyncFailure&) = default;
};

/// Why the local database could not be brought up to date with the server.
class SyncError : public Choice<SyncError, SyncFailure, NoPayload<1>, NoPayload<2>> {
  public:
    /// The payload of the case of that name.
    using SyncFailure = kestrel::SyncFailure;

    /// The exchange with the server failed; with the reason when it is known.
    [[nodiscard]] static SyncError syncFailure(std::optional<std::string> reason) {
        return SyncError(SyncFailure{std::move(reason)});
    }
    /// The access of this device was withdrawn.
    [[nodiscard]] static SyncError deviceRevoked() { return SyncError(NoPayload<1>{}); }
    /// The user's account was deactivated.
    [[nodiscard]] static SyncError userDeactivated() { return SyncError(NoPayload<2>{}); }

    [[nodiscard]] std::optional<SyncFailure> syncFailure() const { return payload<SyncFailure>(); }

    friend bool operator==(const SyncError&, const SyncError&) = default;

  private:
    explicit SyncError(Variant value) : Choice(std::move(value)) {}
};
/// A failure's reason stands in the user info under "reason".
[[nodiscard]] PlatformError platformError(const SyncError& error);

/// How a run ended.
class SyncResult : public Choice<SyncResult, NoPayload<0>, SyncError> {
  public:
    /// The database is up to date.
    [[nodiscard]] static SyncResult success() { return SyncResult(NoPayload<0>{}); }
    /// It could not be brought up to date.
    [[nodiscard]] static SyncResult failure(SyncError error) { return SyncResult(std::move(error)); }

    [[nodiscard]] std::optional<SyncError> failure() const { return payload<SyncError>(); }

    friend bool operator==(const SyncResult&, const SyncResult&) = default;

  private:
    explicit SyncResult(Variant value) : Choice(std::move(value)) {}
};

/// One run of the synchronisation with the server, from `startDate` to `endDate`.
struct SyncStatus {
    /// What `result` tells.
    using Result = SyncResult;

    /// How the run ended.
    Result result;
    /// When the run began.
    Date startDate{};
    /// When the run ended.
    Date endDate{};

    friend bool operator==(const SyncStatus&, const SyncStatus&) = default;
};

/// What a run reports: that it started, then that it finished, and how.
class SyncEvent : public Choice<SyncEvent, NoPayload<0>, SyncStatus> {
  public:
    /// A run has begun.
    [[nodiscard]] static SyncEvent started() { return SyncEvent(NoPayload<0>{}); }
    /// A run has ended, and how.
    [[nodiscard]] static SyncEvent finished(SyncStatus status) { return SyncEvent(std::move(status)); }

    [[nodiscard]] std::optional<SyncStatus> finished() const { return payload<SyncStatus>(); }
    /// That of a run that has finished.
    [[nodiscard]] std::optional<SyncStatus> syncStatus() const { return finished(); }

    friend bool operator==(const SyncEvent&, const SyncEvent&) = default;

  private:
    explicit SyncEvent(Variant value) : Choice(std::move(value)) {}
};

}  // namespace kestrel
