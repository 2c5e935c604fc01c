#include <host/services/value_of.h>

namespace kestrel::host {
namespace {

[[noreturn]] void throwAgain(const AnyError& error) {
    if (const auto* failure = error.as<Failure>()) throw Failure(*failure);
    if (const auto* problem = error.as<WrongUsage>()) throw WrongUsage(*problem);
    throw Failure(error.platformError().localizedDescription);
}

template <class Error>
[[noreturn]] void throwWithText(const Error& error) {
    throw Failure(platformError(error).localizedDescription);
}

}  // namespace

void throwAgain(const ReadError& error, const std::optional<AnyObjectID>& id) {
    if (const auto carried = error.fetchError()) throwAgain(*carried);
    if (const auto carried = error.underlyingError()) throwAgain(*carried);
    if (const auto type = error.unexpectedType()) throw Failure(type->explanation);
    if (id && error == ReadError::notFound()) throw RecordMissing(id->stringValue());
    if (id && error == ReadError::missingObjectID()) throw RecordUnsaved(id->stringValue());
    throwWithText(error);
}

void throwAgain(const UpdateError& error, const std::optional<AnyObjectID>& id) {
    if (const auto carried = error.underlyingError()) throwAgain(*carried);
    if (const auto internal = error.internalError()) throw Failure(internal->reason);
    if (id && error == UpdateError::notFound()) throw RecordMissing(id->stringValue());
    throwWithText(error);
}

}  // namespace kestrel::host
