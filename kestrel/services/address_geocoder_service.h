#pragma once

#include <kestrel/platform/geocoder.h>
#include <kestrel/reactive/publisher.h>
#include <kestrel/runtime/service_protocol.h>
#include <kestrel/session/service_errors.h>
#include <memory>

namespace kestrel {

/// Finds the places of addresses. For use on the main thread.
class AddressGeocoderService : public ServiceProtocol {
  public:
    /// The place of the address. Each subscriber asks anew, unless the answer is known; cancelling ends the question.
    [[nodiscard]] virtual AnyPublisher<Placemark, GeocodeError> geocode(const PostalAddress& address) = 0;
};

template <>
class Forwarding<AddressGeocoderService> : public AddressGeocoderService {
  public:
    [[nodiscard]] virtual std::shared_ptr<AddressGeocoderService> target() const = 0;

    [[nodiscard]] AnyPublisher<Placemark, GeocodeError> geocode(const PostalAddress& address) override {
        return target()->geocode(address);
    }
};

namespace services {
inline constexpr ServiceKey<AddressGeocoderService> geocoder;
}

}  // namespace kestrel
