#pragma once

#include <kestrel/services/address_geocoder_service.h>
#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

namespace kestrel {

/// Geocoding with a geocoder for each question, and a memory of the last answers: an address that was found is not
/// asked for again. Failures are not remembered, and a question under way is not shared.
class CoreLocationGeocoderService final : public AddressGeocoderService {
  public:
    /// Makes a geocoder for one question.
    using MakeGeocoder = std::function<std::unique_ptr<GeocoderProtocol>()>;

    /// How many addresses are remembered.
    static constexpr std::size_t capacity = 100;

    /// A function that is empty is a mistake in the program: fatal().
    explicit CoreLocationGeocoderService(MakeGeocoder makeGeocoder);

    [[nodiscard]] AnyPublisher<Placemark, GeocodeError> geocode(const PostalAddress& address) override;

    /// The addresses that are remembered, the oldest first.
    [[nodiscard]] std::vector<PostalAddress> history() const;

  private:
    struct State;
    /// Shared with the questions, which may outlive the service.
    std::shared_ptr<State> state_;
};

}  // namespace kestrel
