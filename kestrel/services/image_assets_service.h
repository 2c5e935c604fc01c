#pragma once

#include <kestrel/files/image_asset.h>
#include <kestrel/reactive/publisher.h>
#include <kestrel/runtime/service_protocol.h>
#include <kestrel/session/on_demand.h>
#include <memory>

namespace kestrel {

/// Pictures of records.
class ImageAssetsService : public ServiceProtocol {
  public:
    /// The picture with its bytes, fetched from where it is.
    [[nodiscard]] virtual AnyPublisher<ImageAsset, OnDemandError> fetchImageAsset(const ObjectID<ImageAsset>& id) = 0;
};

template <>
class Forwarding<ImageAssetsService> : public ImageAssetsService {
  public:
    [[nodiscard]] virtual std::shared_ptr<ImageAssetsService> target() const = 0;

    [[nodiscard]] AnyPublisher<ImageAsset, OnDemandError> fetchImageAsset(const ObjectID<ImageAsset>& id) override {
        return target()->fetchImageAsset(id);
    }
};

namespace services {
inline constexpr ServiceKey<ImageAssetsService> imageAssets;
}

}  // namespace kestrel
