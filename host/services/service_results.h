#pragma once

#include <host/services/host_context.h>
#include <kestrel/reactive/publisher.h>
#include <kestrel/session/service_errors.h>
#include <expected>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

/// What services give back: publishers of what a call of the store gives, and of its failure as the protocols know it.
///
/// The work is done for each subscriber, when it subscribes and on its thread, which has to be the main thread; values
/// come before subscribing returns. Nothing but std::bad_alloc is thrown.
namespace kestrel::host {

/// The exception that is being handled, as what readers are told. Only within a handler.
///
/// - `notFound` for a record that there is not, `missingObjectID` for an identifier that is not saved;
/// - `unexpectedType` for a WrongType;
/// - `underlyingError` with the Refusal, or with the WrongUsage, as a Failure or as such;
/// - `fetchError` with the Failure when the database could not be read.
[[nodiscard]] ReadError currentReadError();
/// The same as what writers are told: `notFound`, `deleteNotAllowed`, and `underlyingError` for the rest.
[[nodiscard]] UpdateError currentUpdateError();

/// What `work()` gives, or the failure that it throws.
template <class Work>
[[nodiscard]] auto readingResult(const Work& work) -> std::expected<std::invoke_result_t<const Work&>, ReadError> {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        return std::unexpected(currentReadError());
    }
}

/// Sends what `work()` gives, an expected value, and ends.
template <class Output, class Failure, class Work>
[[nodiscard]] AnyPublisher<Output, Failure> answering(Work work) {
    return create<Output, Failure>([work = std::move(work)](Emitter<Output, Failure>& emitter) {
        auto result = work();
        if (result) {
            emitter.send(*std::move(result));
            emitter.finish();
        } else {
            emitter.fail(std::move(result).error());
        }
        return AnyCancellable();
    });
}

/// Sends what `work()` reads.
template <class Work, class Output = std::invoke_result_t<const Work&>>
[[nodiscard]] AnyPublisher<Output, ReadError> reading(Work work) {
    return answering<Output, ReadError>([work = std::move(work)] { return readingResult(work); });
}

/// Sends what `work()` stores.
template <class Work, class Output = std::invoke_result_t<const Work&>>
[[nodiscard]] AnyPublisher<Output, UpdateError> updating(Work work) {
    return answering<Output, UpdateError>([work = std::move(work)]() -> std::expected<Output, UpdateError> {
        try {
            return work();
        } catch (const std::bad_alloc&) {
            throw;
        } catch (...) {
            return std::unexpected(currentUpdateError());
        }
    });
}

/// Finishes when `work()`, which gives an optional failure, gives none.
template <class Failure, class Work>
[[nodiscard]] AnyPublisher<Never, Failure> finishing(Work work) {
    return create<Never, Failure>([work = std::move(work)](Emitter<Never, Failure>& emitter) {
        if (auto failure = work()) {
            emitter.fail(*std::move(failure));
        } else {
            emitter.finish();
        }
        return AnyCancellable();
    });
}

/// Finishes when `work()` has stored what it stores.
template <class Work>
[[nodiscard]] AnyPublisher<Never, UpdateError> completing(Work work) {
    return finishing<UpdateError>([work = std::move(work)]() -> std::optional<UpdateError> {
        try {
            work();
            return std::nullopt;
        } catch (const std::bad_alloc&) {
            throw;
        } catch (...) {
            return currentUpdateError();
        }
    });
}

/// Sends what `work()` reads, now and after every change, and ends with its first failure. A change may leave the value
/// as it was; who does not want that removes duplicates.
template <class Work, class Output = std::invoke_result_t<const Work&>>
[[nodiscard]] AnyPublisher<Output, ReadError> observing(std::shared_ptr<HostContext> context, Work work) {
    return create<Output, ReadError>(
        [context = std::move(context), work = std::move(work)](Emitter<Output, ReadError>& emitter) {
            const auto hasEnded = std::make_shared<bool>(false);
            const auto send = [emitter, work, hasEnded] {
                if (*hasEnded) return;
                if (auto result = readingResult(work)) {
                    emitter.send(*std::move(result));
                } else {
                    *hasEnded = true;
                    emitter.fail(std::move(result).error());
                }
            };
            // Watched first, so that a change that the first value leads to is not missed.
            auto watching = context->changes().sink([send](Void) { send(); });
            send();
            return watching;
        });
}

/// The same for what cannot fail: what cannot be read is what `otherwise()` gives, which is left out when absent. Only
/// values that differ from the one before are sent.
template <class Work, class Otherwise, class Output = std::invoke_result_t<const Work&>>
[[nodiscard]] AnyPublisher<Output> observingAlways(std::shared_ptr<HostContext> context, Work work,
                                                   Otherwise otherwise) {
    return create<Output>(
               [context = std::move(context), work = std::move(work), otherwise](Emitter<Output, Never>& emitter) {
                   const auto send = [emitter, work, otherwise] {
                       auto result = readingResult(work);
                       std::optional<Output> value;
                       if (result) {
                           value.emplace(*std::move(result));
                       } else {
                           value = otherwise();
                       }
                       if (value) emitter.send(*std::move(value));
                   };
                   auto watching = context->changes().sink([send](Void) { send(); });
                   send();
                   return watching;
               })
        .removeDuplicates();
}

}  // namespace kestrel::host
