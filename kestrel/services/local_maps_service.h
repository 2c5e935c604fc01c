#pragma once

#include <kestrel/foundation/required.h>
#include <kestrel/platform/workspace.h>
#include <kestrel/services/system_maps_service.h>
#include <memory>
#include <utility>

namespace kestrel {

/// The maps of the desktop.
class LocalMapsService final : public SystemMapsService {
  public:
    /// With that application. Null is a mistake in the program: fatal().
    explicit LocalMapsService(std::shared_ptr<MapApplication> maps)
        : maps_(required(std::move(maps), "The maps application")) {}

    [[nodiscard]] bool openMapItem(const MapItem& item) override { return maps_->open(item); }

  private:
    std::shared_ptr<MapApplication> maps_;
};

}  // namespace kestrel
