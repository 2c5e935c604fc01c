#pragma once

#include <host/failure.h>
#include <kestrel/identity/any_object_id.h>
#include <kestrel/reactive/publisher.h>
#include <kestrel/session/service_errors.h>
#include <optional>
#include <utility>

/// Asking services for values on the spot, as commands do.
namespace kestrel::host {

/// Throws what a service was stopped by, as it would have been thrown on the spot: the Failure or the WrongUsage that
/// the error carries, or else a Failure with its text. `id` is what was asked for, if it was a record.
[[noreturn]] void throwAgain(const ReadError& error, const std::optional<AnyObjectID>& id = {});
[[noreturn]] void throwAgain(const UpdateError& error, const std::optional<AnyObjectID>& id = {});

/// The first value of a publisher that sends it while it is subscribed to, as those of this host's services do; throws
/// its failure instead, as `throwAgain` does.
template <class Output, class Error>
[[nodiscard]] Output valueOf(const AnyPublisher<Output, Error>& publisher, const std::optional<AnyObjectID>& id = {}) {
    std::optional<Output> first;
    std::optional<Error> failure;
    const auto subscription =
        publisher.first().sink([&](const Output& value) { first = value; },
                               [&](const Completion<Error>& completion) { failure = completion.failure(); });
    if (first) return *std::move(first);
    if (failure) throwAgain(*failure, id);
    throw Failure("a service gave no answer");
}

/// Has a service do what it finishes with at once; throws its failure, as `throwAgain` does.
template <class Error>
void carryOut(const AnyPublisher<Never, Error>& publisher) {
    std::optional<Error> failure;
    const auto subscription =
        publisher.sink([&](const Completion<Error>& completion) { failure = completion.failure(); });
    if (failure) throwAgain(*failure);
}

}  // namespace kestrel::host
