#pragma once

#include <glib.h>
#include <kestrel/reactive/cancellable.h>
#include <filesystem>
#include <functional>

namespace kestrel::platform {

/// Calls back on the thread of the main context (null: the default one) whenever a file, or another one beside it whose
/// name begins with the file's, may have changed, appeared or gone, until the result is cancelled or destroyed. Neither
/// the file nor its folders have to exist. Where the system has no more watches to give, calls back every two seconds.
/// The path is absolute. May be called on any thread.
[[nodiscard]] AnyCancellable watchFile(GMainContext* context, const std::filesystem::path& file,
                                       std::function<void()> onChange);

}  // namespace kestrel::platform
