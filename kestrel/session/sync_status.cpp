#include <kestrel/session/common_form.h>
#include <kestrel/session/sync_status.h>

namespace kestrel {

PlatformError platformError(const SyncError& error) {
    const auto failure = error.syncFailure();
    if (!failure || !failure->reason) return session_detail::plainForm(error);
    return session_detail::formWith(error, "reason", *failure->reason);
}

}  // namespace kestrel
