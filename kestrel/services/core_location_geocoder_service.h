#pragma once

#include <kestrel/services/address_geocoder_service.h>
#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

namespace kestrel {

/// Geocoding with a geocoder for each question, and a history of the last ones: an address that was found is not asked
/// for again. One that was not found is, and a question under way is not shared.
class CoreLocationGeocoderService final : public AddressGeocoderService {
  public:
    /// Makes a geocoder for one question.
    using MakeGeocoder = std::function<std::unique_ptr<GeocoderProtocol>()>;

    /// How many addresses the history has at most.
    static constexpr std::size_t capacity = 100;

    /// A function that is empty is a mistake in the program: fatal().
    explicit CoreLocationGeocoderService(MakeGeocoder makeGeocoder);

    [[nodiscard]] AnyPublisher<Placemark, GeocodeError> geocode(const PostalAddress& address) override;

    /// The addresses that were asked for, whatever came of it, by their last question, the oldest first.
    [[nodiscard]] std::vector<PostalAddress> history() const;

  private:
    struct State;
    /// Shared with the questions, which may outlive the service.
    std::shared_ptr<State> state_;
};

}  // namespace kestrel
