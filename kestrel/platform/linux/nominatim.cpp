#include <kestrel/coding/json_reader.h>
#include <kestrel/platform/linux/nominatim.h>
#include <algorithm>
#include <array>
#include <charconv>
#include <initializer_list>
#include <map>
#include <string>
#include <system_error>
#include <utility>

namespace kestrel::platform {

namespace {

constexpr char inCase(char c, char first, int shift) {
    return c >= first && c <= first + 25 ? static_cast<char>(c + shift) : c;
}

std::string inSmallLetters(std::string text) {
    std::ranges::transform(text, text.begin(), [](char c) { return inCase(c, 'A', 32); });
    return text;
}

std::string inCapitals(std::string text) {
    std::ranges::transform(text, text.begin(), [](char c) { return inCase(c, 'a', -32); });
    return text;
}

bool isCountryCode(std::string_view text) {
    return text.size() == 2 && std::ranges::all_of(text, [](char c) { return c >= 'a' && c <= 'z'; });
}

/// The lines of a text that say something, joined by commas.
std::string inOneLine(std::string_view text) {
    constexpr std::string_view space = " \t\r";
    std::string joined;
    while (!text.empty()) {
        const auto end = text.find('\n');
        auto line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        line.remove_prefix(std::min(line.find_first_not_of(space), line.size()));
        if (line.empty()) continue;
        line = line.substr(0, line.find_last_not_of(space) + 1);
        if (!joined.empty()) joined += ", ";
        joined += line;
    }
    return joined;
}

using Texts = std::map<std::string, std::string, std::less<>>;

struct Place {
    Texts texts{};
    Texts address{};
};

/// Reads the object at the cursor; `member` reads each value.
template <class Member>
bool readObject(JSONReader& reader, Member member) {
    if (!reader.beginObject()) return false;
    if (reader.endIfEmpty('}')) return true;
    for (;;) {
        std::string_view key;
        if (!reader.readKey(key)) return false;
        if (!member(std::string(key))) return false;
        const auto next = reader.nextMember();
        if (next != JSONReader::Next::another) return next == JSONReader::Next::end;
    }
}

/// Keeps a text, or a number as a text: servers of the same protocol differ in how they write coordinates.
bool readText(JSONReader& reader, std::string key, Texts& texts) {
    std::string text;
    double number = 0;
    if (reader.read(text)) {
        texts.insert_or_assign(std::move(key), std::move(text));
        return true;
    }
    if (reader.read(number)) {
        std::array<char, 32> digits{};
        const auto end = std::to_chars(digits.begin(), digits.end(), number).ptr;
        texts.insert_or_assign(std::move(key), std::string(digits.begin(), end));
        return true;
    }
    return reader.skipValue();
}

bool readPlace(JSONReader& reader, Place& place) {
    return readObject(reader, [&](std::string key) {
        if (key != "address" || !reader.isObject()) return readText(reader, std::move(key), place.texts);
        return readObject(reader, [&](std::string part) { return readText(reader, std::move(part), place.address); });
    });
}

std::optional<std::vector<Place>> readPlaces(std::string_view json) {
    JSONReader reader(json, {});
    if (!reader.checkDocument()) return std::nullopt;
    reader.restartCarefully();
    std::vector<Place> places;
    if (!reader.beginArray()) return std::nullopt;
    if (reader.endIfEmpty(']')) return places;
    for (;;) {
        if (!readPlace(reader, places.emplace_back())) return std::nullopt;
        const auto next = reader.nextElement();
        if (next == JSONReader::Next::end) return places;
        if (next == JSONReader::Next::broken) return std::nullopt;
    }
}

std::string firstOf(const Texts& texts, std::initializer_list<std::string_view> keys) {
    for (const auto key : keys) {
        if (const auto found = texts.find(key); found != texts.end() && !found->second.empty()) return found->second;
    }
    return {};
}

/// Degrees within `limit` to both sides.
std::optional<double> degrees(const Texts& texts, std::string_view key, double limit) {
    const auto text = firstOf(texts, {key});
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isWithin = number >= -limit && number <= limit;
    if (text.empty() || error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    if (!isWithin) return std::nullopt;
    return number;
}

/// House number and street in the order of the country's addresses.
std::string streetOf(const Texts& address, std::string_view country) {
    constexpr std::array<std::string_view, 14> numberFirst{"AU", "CA", "FR", "GB", "IE", "IN", "LU",
                                                           "MY", "NZ", "PH", "SG", "TH", "US", "ZA"};
    const auto road = firstOf(address, {"road", "pedestrian", "footway", "path", "cycleway", "residential", "square"});
    const auto number = firstOf(address, {"house_number", "house_name"});
    if (road.empty() || number.empty()) return road + number;
    return std::ranges::find(numberFirst, country) != numberFirst.end() ? number + ' ' + road : road + ' ' + number;
}

std::optional<Placemark> placemarkOf(const Place& place) {
    const auto latitude = degrees(place.texts, "lat", 90);
    const auto longitude = degrees(place.texts, "lon", 180);
    if (!latitude || !longitude) return std::nullopt;
    const auto& parts = place.address;
    auto country = inCapitals(firstOf(parts, {"country_code"}));
    auto street = streetOf(parts, country);
    auto name = firstOf(place.texts, {"name"});
    if (name.empty()) name = street;
    if (name.empty()) name = firstOf(place.texts, {"display_name"});
    return Placemark{
        .coordinate = {.latitude = *latitude, .longitude = *longitude},
        .name = name.empty() ? std::nullopt : std::optional(std::move(name)),
        .address = {.street = std::move(street),
                    .subLocality = firstOf(parts, {"suburb", "city_district", "borough", "quarter", "neighbourhood"}),
                    .city = firstOf(parts, {"city", "town", "village", "municipality", "hamlet"}),
                    .subAdministrativeArea = firstOf(parts, {"county", "state_district"}),
                    .state = firstOf(parts, {"state", "province", "region"}),
                    .postalCode = firstOf(parts, {"postcode"}),
                    .country = firstOf(parts, {"country"}),
                    .isoCountryCode = std::move(country)}};
}

}  // namespace

std::optional<std::string> nominatimSearch(const URL& baseURL, const PostalAddress& address) {
    std::string parameters;
    const auto ask = [&](std::string_view name, std::string_view value) {
        const auto line = inOneLine(value);
        if (line.empty()) return;
        parameters += '&';
        parameters += name;
        parameters += '=';
        parameters += percentEncoded(line);
    };
    const auto country = inSmallLetters(address.isoCountryCode);
    ask("street", address.street);
    ask("city", address.city.empty() ? address.subLocality : address.city);
    ask("county", address.subAdministrativeArea);
    ask("state", address.state);
    ask("postalcode", address.postalCode);
    if (isCountryCode(country)) {
        // The code says it better than a name in some language, but as a filter only.
        if (parameters.empty()) ask("country", address.country.empty() ? country : address.country);
        ask("countrycodes", country);
    } else {
        ask("country", address.country);
    }
    if (parameters.empty()) return std::nullopt;

    std::string_view base = baseURL.text();
    base = base.substr(0, base.find('#'));
    const auto question = base.find('?');
    const std::string_view query = question == std::string_view::npos ? "" : base.substr(question + 1);
    base = base.substr(0, question);
    while (base.ends_with('/'))
        base.remove_suffix(1);
    std::string url(base);
    url += "/search?";
    if (!query.empty()) {
        url += query;
        url += '&';
    }
    return url + "format=jsonv2&addressdetails=1&limit=5" + parameters;
}

std::optional<std::vector<Placemark>> nominatimPlaces(std::string_view json) {
    const auto places = readPlaces(json);
    if (!places) return std::nullopt;
    std::vector<Placemark> placemarks;
    for (const auto& place : *places) {
        if (auto placemark = placemarkOf(place)) placemarks.push_back(std::move(*placemark));
    }
    if (placemarks.empty() && !places->empty()) return std::nullopt;
    return placemarks;
}

}  // namespace kestrel::platform
