#include <kestrel/testing/fake_geocoder.h>
#include <string>
#include <utility>

namespace kestrel {

class FakeGeocoding::Geocoder final : public GeocoderProtocol {
  public:
    explicit Geocoder(std::shared_ptr<std::vector<Request>> requests) : requests_(std::move(requests)) {}
    Geocoder(const Geocoder&) = delete;
    Geocoder& operator=(const Geocoder&) = delete;
    ~Geocoder() override { cancelRequest(); }

    void geocodePostalAddress(const PostalAddress& address, CompletionHandler completionHandler) override {
        request_ = requests_->size();
        requests_->push_back({address, std::move(completionHandler)});
    }
    void cancelGeocode() override { cancelRequest(); }

  private:
    void cancelRequest() {
        if (!request_) return;
        Request& request = (*requests_)[*request_];
        // What was answered cannot be cancelled any more.
        if (std::exchange(request.completion, nullptr)) request.isCancelled = true;
    }

    std::shared_ptr<std::vector<Request>> requests_;
    std::optional<std::size_t> request_;
};

std::function<std::unique_ptr<GeocoderProtocol>()> FakeGeocoding::factory() const {
    return [requests = requests_] { return std::make_unique<Geocoder>(requests); };
}

std::vector<PostalAddress> FakeGeocoding::requests() const {
    std::vector<PostalAddress> addresses;
    for (const Request& request : *requests_)
        addresses.push_back(request.address);
    return addresses;
}

bool FakeGeocoding::isCancelled(std::size_t request) const {
    return requests_->at(request).isCancelled;
}

void FakeGeocoding::succeed(std::size_t request, Placemark placemark) const {
    answer(request, std::vector{std::move(placemark)}, std::nullopt);
}

void FakeGeocoding::fail(std::size_t request, PlatformError error) const {
    answer(request, std::nullopt, std::move(error));
}

void FakeGeocoding::answer(std::size_t request, std::optional<std::vector<Placemark>> placemarks,
                           std::optional<PlatformError> error) const {
    if (auto completion = std::exchange(requests_->at(request).completion, nullptr))
        completion(std::move(placemarks), std::move(error));
}

PlatformError FakeGeocoding::noResult() {
    return {.domain = std::string(geocodingErrorDomain),
            .code = static_cast<std::int64_t>(GeocodingErrorCode::foundNoResult),
            .localizedDescription = "No place has this address."};
}

}  // namespace kestrel
