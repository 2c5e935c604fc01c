#pragma once

#include <kestrel/platform/workspace.h>
#include <kestrel/runtime/service_protocol.h>
#include <memory>

namespace kestrel {

/// The maps of the system. For use on the main thread.
class SystemMapsService : public ServiceProtocol {
  public:
    /// Shows the place in the maps application; false when it could not be opened.
    [[nodiscard]] virtual bool openMapItem(const MapItem& item) = 0;
};

template <>
class Forwarding<SystemMapsService> : public SystemMapsService {
  public:
    [[nodiscard]] virtual std::shared_ptr<SystemMapsService> target() const = 0;

    [[nodiscard]] bool openMapItem(const MapItem& item) override { return target()->openMapItem(item); }
};

namespace services {
inline constexpr ServiceKey<SystemMapsService> systemMaps;
}

}  // namespace kestrel
