#pragma once

#include <kestrel/platform/geocoder.h>
#include <kestrel/platform/system.h>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace kestrel {

/// Geocodes by asking a Nominatim server over HTTP, on the main loop. Several requests may be under way.
///
/// Errors are of the geocoding domain: foundNoResult when the server knows no such place; denied when it answers 401,
/// 403 or 429; locationUnknown when there is no server to ask; network for everything else that goes wrong on the way,
/// with the server's host and the reason in the text. "HTTPStatus" in the user info is the server's status when it is
/// not 200.
class CurlGeocoder final : public GeocoderProtocol {
  public:
    /// Says which server to ask, at each request.
    using FindServer = std::function<std::optional<platform::GeocodingServer>()>;

    explicit CurlGeocoder(FindServer findServer);
    ~CurlGeocoder() override;

    void geocodePostalAddress(const PostalAddress& address, CompletionHandler completionHandler) override;
    void cancelGeocode() override;

  private:
    struct Requests;

    FindServer findServer_;
    std::shared_ptr<Requests> requests_;
};

}  // namespace kestrel
