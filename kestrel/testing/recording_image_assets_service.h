#pragma once

#include <kestrel/services/image_assets_service.h>
#include <kestrel/testing/stub.h>

namespace kestrel {

/// An ImageAssetsService that answers as a test prepares it, and keeps what it is asked.
class RecordingImageAssetsService final : public ImageAssetsService {
  public:
    struct Stubs {
        Stub<AnyPublisher<ImageAsset, OnDemandError>(const ObjectID<ImageAsset>&)> fetchImageAsset;
    };
    mutable Stubs on{};

    [[nodiscard]] AnyPublisher<ImageAsset, OnDemandError> fetchImageAsset(const ObjectID<ImageAsset>& id) override {
        return on.fetchImageAsset(id);
    }
};

}  // namespace kestrel
