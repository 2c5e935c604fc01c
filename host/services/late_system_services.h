#pragma once

#include <kestrel/runtime/runtime.h>
#include <string>

namespace kestrel::host {

/// The SystemReportService, and the services of SystemServicesModule, which are made when one of them is asked for
/// something for the first time. A command that asks for none leaves the desktop alone: already to watch the file of
/// preferences would keep every command from ending for some ten milliseconds.
struct LateSystemServicesModule {
    std::string moduleName = "LateSystemServices";

    void registerIn(Runtime& runtime) const;
};

}  // namespace kestrel::host
