#include <host/services/service_results.h>

namespace kestrel::host {
namespace {

/// What refuses is carried as a Failure, whichever it is, so that whoever looks for one finds it.
AnyError carried(const Failure& failure) {
    return Failure(failure);
}

}  // namespace

ReadError currentReadError() {
    try {
        throw;
    } catch (const RecordMissing&) {
        return ReadError::notFound();
    } catch (const RecordUnsaved&) {
        return ReadError::missingObjectID();
    } catch (const WrongType& problem) {
        return ReadError::unexpectedType(problem.what());
    } catch (const Refusal& refusal) {
        return ReadError::underlyingError(carried(refusal));
    } catch (const WrongUsage& problem) {
        return ReadError::underlyingError(problem);
    } catch (const Failure& failure) {
        return ReadError::fetchError(carried(failure));
    } catch (const std::exception& problem) {
        return ReadError::fetchError(Failure(problem.what()));
    }
}

UpdateError currentUpdateError() {
    try {
        throw;
    } catch (const RecordMissing&) {
        return UpdateError::notFound();
    } catch (const RecordUnsaved&) {
        return UpdateError::notFound();
    } catch (const DeletionRefused&) {
        return UpdateError::deleteNotAllowed();
    } catch (const WrongUsage& problem) {
        return UpdateError::underlyingError(problem);
    } catch (const Failure& failure) {
        return UpdateError::underlyingError(carried(failure));
    } catch (const std::exception& problem) {
        return UpdateError::internalError(problem.what());
    }
}

}  // namespace kestrel::host
