#pragma once

#include <kestrel/platform/system_report.h>
#include <kestrel/runtime/service_protocol.h>

namespace kestrel::host {

/// Tells what the system around the program really answers.
class SystemReportService : public ServiceProtocol {
  public:
    /// Looks at everything, anew for each subscriber, and sends one report, later, on the main queue.
    [[nodiscard]] virtual AnyPublisher<platform::SystemReport> fetchReport() = 0;
};

namespace host_services {
inline constexpr ServiceKey<SystemReportService> systemReport;
}

}  // namespace kestrel::host
