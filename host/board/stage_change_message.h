#pragma once

#include <kestrel/boards/change_options.h>
#include <kestrel/session/user_error_message.h>

namespace kestrel::host {

/// What a user sees of a change of stage that was refused.
[[nodiscard]] UserErrorMessage userErrorMessage(ChangeStageError error);

}  // namespace kestrel::host
