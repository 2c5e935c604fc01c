#include <kestrel/localization/localized.h>
#include <kestrel/localization/resource_bundle.h>
#include <kestrel/platform/linux/curl_geocoder.h>
#include <kestrel/platform/linux/http_fetch.h>
#include <kestrel/platform/linux/nominatim.h>
#include <algorithm>
#include <cmath>
#include <map>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace kestrel {

namespace {

using platform::HTTPAnswer;
using Result = std::variant<std::vector<Placemark>, PlatformError>;

PlatformError errorOf(GeocodingErrorCode code, std::string description) {
    return {.domain = std::string(geocodingErrorDomain),
            .code = static_cast<std::int64_t>(code),
            .localizedDescription = std::move(description)};
}

/// Host and port, without user and password.
std::string hostOf(const URL& url) {
    std::string_view rest = url.text();
    const auto authority = rest.find("//");
    if (authority == std::string_view::npos) return url.text();
    rest = rest.substr(authority + 2);
    rest = rest.substr(0, rest.find_first_of("/?#"));
    if (const auto user = rest.rfind('@'); user != std::string_view::npos) rest = rest.substr(user + 1);
    return std::string(rest);
}

/// A product of a User-Agent line: what is not allowed there becomes a hyphen.
std::string productName(std::string name) {
    const auto isAllowed = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' || c == '_' ||
               c == '-';
    };
    std::ranges::replace_if(name, [&](char c) { return !isAllowed(c); }, '-');
    return name;
}

/// A locale name or BCP 47 tag as such a tag: "de_AT.UTF-8" is "de-AT". Empty for what names no language.
std::string languageTag(std::string_view name) {
    std::string tag(name.substr(0, name.find_first_of(".@")));
    std::ranges::replace(tag, '_', '-');
    const bool isTag = std::ranges::all_of(tag, [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-';
    });
    return isTag && tag != "C" && tag != "POSIX" ? tag : std::string();
}

std::string acceptedLanguages(const std::string& wanted) {
    std::vector<std::string> names{wanted};
    if (wanted.empty()) names = ResourceBundle::preferredLanguages();
    std::string header;
    // Each is wanted less than the one before; weights have one digit.
    char weight = '9';
    for (const auto& name : names) {
        const auto tag = languageTag(name);
        if (tag.empty() || weight == '0') continue;
        header += header.empty() ? "Accept-Language: " + tag : ", " + tag + ";q=0." + weight--;
    }
    return header;
}

Result resultOf(const HTTPAnswer& answer, const std::string& host) {
    constexpr int ok = 200;
    if (!answer.failure.empty()) {
        auto error =
            errorOf(GeocodingErrorCode::network,
                    localized("The geocoding server %1$@ could not be asked: %2$@",
                              "Error; 1: the name of a server, 2: a technical reason", {host, answer.failure}));
        error.localizedFailureReason = answer.failure;
        error.userInfo.emplace("CURLcode", std::int64_t{answer.failureCode});
        return error;
    }
    if (answer.status != ok) {
        constexpr int unauthorized = 401;
        constexpr int forbidden = 403;
        constexpr int tooManyRequests = 429;
        const bool isDenied =
            answer.status == unauthorized || answer.status == forbidden || answer.status == tooManyRequests;
        auto error = errorOf(isDenied ? GeocodingErrorCode::denied : GeocodingErrorCode::network,
                             localized("The geocoding server %1$@ answered with an error: HTTP status %2$lld.",
                                       "Error; 1: the name of a server, 2: a number such as 503",
                                       {host, std::to_string(answer.status)}));
        error.userInfo.emplace("HTTPStatus", std::int64_t{answer.status});
        return error;
    }
    auto places = platform::nominatimPlaces(answer.body);
    if (!places) {
        return errorOf(GeocodingErrorCode::network, localized("The answer of the geocoding server %@ makes no sense.",
                                                              "Error; 1: the name of a server", {host}));
    }
    if (places->empty()) {
        return errorOf(GeocodingErrorCode::foundNoResult,
                       localized("The address was not found.", "Error of looking up a postal address"));
    }
    return std::move(*places);
}

}  // namespace

/// What is under way. Outlives the geocoder while a completion runs.
struct CurlGeocoder::Requests : std::enable_shared_from_this<Requests> {
    std::map<std::uint64_t, AnyCancellable> running{};
    std::uint64_t next = 0;

    /// Ends the request and calls back.
    std::move_only_function<void(Result)> finishing(CompletionHandler handler) {
        return [weak = weak_from_this(), number = next, completion = std::move(handler)](Result result) mutable {
            if (const auto self = weak.lock()) self->running.erase(number);
            if (auto* error = std::get_if<PlatformError>(&result)) return completion(std::nullopt, std::move(*error));
            completion(std::move(std::get<std::vector<Placemark>>(result)), std::nullopt);
        };
    }
    void add(AnyCancellable request) { running.emplace(next++, std::move(request)); }
};

CurlGeocoder::CurlGeocoder(FindServer findServer)
    : findServer_(std::move(findServer)), requests_(std::make_shared<Requests>()) {}

CurlGeocoder::~CurlGeocoder() {
    cancelGeocode();
}

void CurlGeocoder::geocodePostalAddress(const PostalAddress& address, CompletionHandler completionHandler) {
    auto finish = requests_->finishing(std::move(completionHandler));
    const auto finishLater = [&](PlatformError error) {
        requests_->add(platform::mainQueue()->scheduleAfter(
            0, [finish = std::move(finish), error = std::move(error)]() mutable { finish(std::move(error)); }));
    };
    const auto server = findServer_();
    if (!server) {
        const std::string key(platform::geocodingServerKey);
        return finishLater(errorOf(GeocodingErrorCode::locationUnknown,
                                   localized("No geocoding server is known. Set the preference “%@” to its address.",
                                             "Error; 1: the technical name of a preference", {key})));
    }
    const auto url = platform::nominatimSearch(server->baseURL, address);
    if (!url) {
        return finishLater(errorOf(GeocodingErrorCode::foundNoResult,
                                   localized("The address was not found.", "Error of looking up a postal address")));
    }
    platform::HTTPRequest request{
        .url = *url,
        .userAgent = productName(platform::applicationIdentity().identifier) + " KestrelService/" KESTREL_VERSION,
        .timeout = std::isnan(server->timeout) ? 0 : server->timeout,
        .largestAnswer = std::size_t{4} << 20U};
    request.headers.emplace_back("Accept: application/json");
    if (auto languages = acceptedLanguages(server->language); !languages.empty()) {
        request.headers.push_back(std::move(languages));
    }
    requests_->add(platform::fetch(request, [finish = std::move(finish), host = hostOf(server->baseURL)](
                                                const HTTPAnswer& answer) mutable { finish(resultOf(answer, host)); }));
}

void CurlGeocoder::cancelGeocode() {
    // Taken out first: what the completions hold may come back here while it goes away.
    auto cancelled = std::exchange(requests_->running, {});
    cancelled.clear();
}

}  // namespace kestrel
