#pragma once

#include <kestrel/platform/geocoder.h>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace kestrel {

/// Stands in for the geocoders of a service: keeps what they are asked, and answers when the test says so.
///
///     FakeGeocoding geocoding;
///     runtime[services::geocoder] = std::make_shared<CoreLocationGeocoderService>(geocoding.factory());
///     …
///     geocoding.succeed(0, placemark);
class FakeGeocoding {
  public:
    /// Makes geocoders that ask this. They may outlive it.
    [[nodiscard]] std::function<std::unique_ptr<GeocoderProtocol>()> factory() const;

    /// What was asked, in that order.
    [[nodiscard]] std::vector<PostalAddress> requests() const;
    /// Whether who asked has given the question up. The first request is 0.
    [[nodiscard]] bool isCancelled(std::size_t request) const;

    // Each answers one request, once; one that was cancelled is answered in vain.
    /// Answers a request, once, with a place; one that was cancelled is answered in vain.
    void succeed(std::size_t request, Placemark placemark) const;
    /// Answers a request, once, with an error; one that was cancelled is answered in vain.
    void fail(std::size_t request, PlatformError error) const;
    /// With whatever a geocoder may say.
    void answer(std::size_t request, std::optional<std::vector<Placemark>> placemarks,
                std::optional<PlatformError> error) const;
    /// The error of a geocoder that has found nothing.
    [[nodiscard]] static PlatformError noResult();

  private:
    class Geocoder;
    struct Request {
        PostalAddress address;
        GeocoderProtocol::CompletionHandler completion;
        bool isCancelled = false;
    };

    std::shared_ptr<std::vector<Request>> requests_ = std::make_shared<std::vector<Request>>();
};

}  // namespace kestrel
