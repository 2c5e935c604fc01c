#include <fmt/format.h>
#include <host/command/awaiting.h>
#include <host/command/geocode_command.h>
#include <host/failure.h>
#include <host/terminal/json_object.h>
#include <host/terminal/table.h>
#include <kestrel/foundation/unicode.h>
#include <kestrel/services/core_location_geocoder_service.h>
#include <kestrel/services/system_services_module.h>

#include <algorithm>
#include <array>
#include <memory>
#include <utility>
#include <vector>

namespace kestrel::host {
namespace {

std::vector<std::string> partsOf(std::string_view line) {
    std::vector<std::string> parts;
    while (true) {
        const auto comma = line.find(',');
        const std::string_view part = trimmedWhiteSpace(line.substr(0, comma));
        if (!part.empty()) parts.emplace_back(part);
        if (comma == std::string_view::npos) return parts;
        line.remove_prefix(comma + 1);
    }
}

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// "12345 Springfield" and "Springfield 12345" have a postal code: the words with a digit at the start or the end.
void setCity(PostalAddress& address, std::string_view part) {
    const auto firstBlank = part.find(' ');
    const auto lastBlank = part.rfind(' ');
    const auto hasDigit = [](std::string_view word) { return std::ranges::any_of(word, isDigit); };
    const bool isOneWord = firstBlank == std::string_view::npos;
    if (!isOneWord && hasDigit(part.substr(0, firstBlank))) {
        address.postalCode = part.substr(0, firstBlank);
        address.city = trimmedWhiteSpace(part.substr(firstBlank));
    } else if (!isOneWord && hasDigit(part.substr(lastBlank))) {
        address.postalCode = part.substr(lastBlank + 1);
        address.city = trimmedWhiteSpace(part.substr(0, lastBlank));
    } else {
        address.city = part;
    }
}

using Labelled = std::pair<std::string_view, std::string>;

std::vector<Labelled> rowsOf(const Placemark& place) {
    const PostalAddress& address = place.address;
    std::vector<Labelled> rows{{"name", place.name.value_or("")},
                               {"street", address.street},
                               {"subLocality", address.subLocality},
                               {"postalCode", address.postalCode},
                               {"city", address.city},
                               {"subAdministrativeArea", address.subAdministrativeArea},
                               {"state", address.state},
                               {"country", address.country},
                               {"isoCountryCode", address.isoCountryCode}};
    std::erase_if(rows, [](const Labelled& row) { return row.second.empty(); });
    return rows;
}

Failure failureOf(const std::string& address, const GeocodeError& error) {
    const auto underlying = error.underlyingError();
    if (!underlying) return Failure(fmt::format("no place was found for \"{}\"", address));
    const PlatformError form = underlying->platformError();
    return Failure(form.localizedRecoverySuggestion
                       ? fmt::format("{} {}", form.localizedDescription, *form.localizedRecoverySuggestion)
                       : form.localizedDescription);
}

}  // namespace

PostalAddress addressOf(std::string_view line) {
    const std::vector<std::string> parts = partsOf(line);
    PostalAddress address;
    switch (parts.size()) {
        case 0: break;
        case 1: setCity(address, parts[0]); break;
        case 2:
            address.street = parts[0];
            setCity(address, parts[1]);
            break;
        default:
            address.street = parts[0];
            setCity(address, parts[1]);
            address.country = parts.back();
            if (parts.size() > 3) address.state = parts[2];
    }
    return address;
}

void geocodeCommand(const GeocodeOptions& options, Output& output, const Terminal& terminal) {
    const PostalAddress address = addressOf(options.address);
    if (address == PostalAddress())
        throw WrongUsage("an address is required, such as \"Main Street 1, 12345 Springfield\"");
    Runtime runtime = Runtime::makeSystem();
    if (!options.server.empty()) {
        const auto server = URL::parse(options.server);
        if (!server || (server->scheme() != "https" && server->scheme() != "http"))
            throw WrongUsage(
                fmt::format("\"{}\" is no URL of a server, such as https://geocoding.example.com", options.server));
        runtime[services::geocoder] = std::make_shared<CoreLocationGeocoderService>(
            [server] { return platform::makeGeocoder(platform::GeocodingServer{.baseURL = *server}); });
    }
    const auto found = awaited(runtime[services::geocoder].geocode(address));
    if (!found) throw failureOf(options.address, found.error());
    const Placemark& place = found->at(0);
    const auto rows = rowsOf(place);
    if (options.isJSON) {
        JSONObject object;
        object.addJSON("latitude", fmt::format("{}", place.coordinate.latitude))
            .addJSON("longitude", fmt::format("{}", place.coordinate.longitude));
        for (const auto& [label, text] : rows)
            object.add(label, text);
        return writeJSONLine(object.json(), output, terminal);
    }
    Table table(2);
    table.add({"coordinate", fmt::format("{}, {}", place.coordinate.latitude, place.coordinate.longitude)});
    for (const auto& [label, text] : rows)
        table.add({std::string(label), text});
    output.write(table.rendered(terminal));
}

}  // namespace kestrel::host
