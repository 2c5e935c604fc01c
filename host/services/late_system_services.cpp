#include <host/services/late_system_services.h>
#include <host/services/system_report_service.h>
#include <kestrel/services/address_geocoder_service.h>
#include <kestrel/services/system_clock_service.h>
#include <kestrel/services/system_maps_service.h>
#include <kestrel/services/system_notifications_service.h>
#include <kestrel/services/system_services_module.h>
#include <kestrel/services/system_url_service.h>
#include <kestrel/services/system_user_defaults_service.h>

#include <memory>
#include <optional>
#include <utility>

namespace kestrel::host {
namespace {

/// The services as they are, once somebody has asked.
class System {
  public:
    const Runtime& runtime() {
        if (!runtime_) runtime_.emplace(Runtime::makeSystem());
        return *runtime_;
    }

  private:
    std::optional<Runtime> runtime_;
};

template <class Protocol>
class Late final : public Forwarding<Protocol> {
  public:
    explicit Late(std::shared_ptr<System> system) : system_(std::move(system)) {}

    [[nodiscard]] std::shared_ptr<Protocol> target() const override {
        return system_->runtime().find(ServiceKey<Protocol>{});
    }

  private:
    std::shared_ptr<System> system_;
};

class PlatformReportService final : public SystemReportService {
  public:
    [[nodiscard]] AnyPublisher<platform::SystemReport> fetchReport() override { return platform::systemReport(); }
};

template <class... Protocols>
void installLate(Runtime& runtime, const std::shared_ptr<System>& system, ServiceKey<Protocols>... keys) {
    (runtime.install(keys, std::make_shared<Late<Protocols>>(system)), ...);
}

}  // namespace

void LateSystemServicesModule::registerIn(Runtime& runtime) const {
    installLate(runtime, std::make_shared<System>(), services::geocoder, services::systemClock,
                services::systemDefaults, services::systemMaps, services::systemNotifications, services::systemURL);
    runtime.install(host_services::systemReport, std::make_shared<PlatformReportService>());
}

}  // namespace kestrel::host
