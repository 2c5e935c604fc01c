#include <kestrel/foundation/required.h>
#include <kestrel/services/core_location_geocoder_service.h>
#include <algorithm>
#include <optional>
#include <utility>
#include <variant>

namespace kestrel {

namespace {

using Placemarks = std::optional<std::vector<Placemark>>;
using Answer = std::variant<Placemark, GeocodeError>;

/// What a geocoder's answer means.
Answer answerOf(Placemarks placemarks, std::optional<PlatformError> error) {
    if (placemarks && !placemarks->empty()) return std::move(placemarks->front());
    // Neither a place nor an error: there is none.
    if (!error) return GeocodeError::foundNoResult();
    const bool hasNoResult = error->domain == geocodingErrorDomain &&
                             error->code == static_cast<std::int64_t>(GeocodingErrorCode::foundNoResult);
    return hasNoResult ? GeocodeError::foundNoResult() : GeocodeError::underlyingError(*std::move(error));
}

}  // namespace

struct CoreLocationGeocoderService::State {
    struct InProgress {};
    /// A question and how it stands.
    struct GeocodeState {
        PostalAddress address;
        std::variant<InProgress, Placemark, GeocodeError> outcome;
    };

    MakeGeocoder makeGeocoder;
    /// The oldest first.
    std::vector<GeocodeState> history{};

    [[nodiscard]] std::vector<GeocodeState>::iterator find(const PostalAddress& address) {
        return std::ranges::find(history, address, &GeocodeState::address);
    }
    void begin(const PostalAddress& address) {
        if (const auto known = find(address); known != history.end()) history.erase(known);
        history.push_back({address, InProgress{}});
        if (history.size() > capacity)
            history.erase(history.begin(), history.end() - static_cast<std::ptrdiff_t>(capacity));
    }
    void finish(const PostalAddress& address, const Answer& answer) {
        const auto known = find(address);
        if (known == history.end()) return;
        std::visit([&](const auto& outcome) { known->outcome = outcome; }, answer);
    }
};

CoreLocationGeocoderService::CoreLocationGeocoderService(MakeGeocoder makeGeocoder)
    : state_(std::make_shared<State>(required(std::move(makeGeocoder), "The function that makes geocoders"))) {}

AnyPublisher<Placemark, GeocodeError> CoreLocationGeocoderService::geocode(const PostalAddress& address) {
    return create<Placemark, GeocodeError>([state = state_, address](const Emitter<Placemark, GeocodeError>& emitter) {
        if (const auto known = state->find(address); known != state->history.end()) {
            if (const auto* placemark = std::get_if<Placemark>(&known->outcome)) {
                emitter.send(*placemark);
                emitter.finish();
                return AnyCancellable();
            }
        }
        state->begin(address);
        const std::shared_ptr<GeocoderProtocol> asked = required(state->makeGeocoder(), "The geocoder");
        asked->geocodePostalAddress(
            address, [state, address, emitter](Placemarks placemarks, std::optional<PlatformError> error) {
                const Answer answer = answerOf(std::move(placemarks), std::move(error));
                state->finish(address, answer);
                if (const auto* placemark = std::get_if<Placemark>(&answer)) {
                    emitter.send(*placemark);
                    emitter.finish();
                } else {
                    emitter.fail(std::get<GeocodeError>(answer));
                }
            });
        return AnyCancellable([asked] { asked->cancelGeocode(); });
    });
}

std::vector<PostalAddress> CoreLocationGeocoderService::history() const {
    std::vector<PostalAddress> addresses;
    for (const auto& entry : state_->history)
        addresses.push_back(entry.address);
    return addresses;
}

}  // namespace kestrel
