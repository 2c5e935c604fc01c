#pragma once

#include <host/people/import_problems.h>
#include <kestrel/foundation/data.h>
#include <kestrel/foundation/date.h>
#include <kestrel/records/name.h>
#include <kestrel/records/partial_date.h>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestrel::host {

/// A card of a .vcf file as it was read: all texts are UTF-8 with lines that end in LF, and what stands in several
/// places stands in the order of preference.
struct ContactCard {
    enum class Kind : std::uint8_t { person, organization, group };

    /// A phone number, an e-mail or a web address.
    struct Detail {
        std::string value{};
        /// "Work", "Home", "Mobile"; empty without one.
        std::string label{};
    };
    struct Profile {
        std::string service{};
        std::string address{};
        std::string label{};
    };
    struct PostalAddress {
        std::string street{};
        std::string city{};
        std::string state{};
        std::string postalCode{};
        std::string country{};
        std::string countryCode{};
        std::string label{};
        /// Latitude and longitude in degrees.
        std::optional<std::pair<double, double>> position{};
    };
    /// What the person is at an organisation; some of the texts may be empty, not all.
    struct Employment {
        std::string company{};
        std::string department{};
        std::string title{};
        std::string role{};
    };
    struct Picture {
        std::string mimeType{};
        Data data{};
    };
    /// Somebody else, by identifier or by name.
    struct Related {
        std::string relation{};
        std::string who{};
        std::size_t line{};
    };

    FilePlace place{};
    Kind kind{};
    /// The card's own identifier, without "urn:uuid:"; empty when it has none.
    std::string uid{};
    /// Tells cards of other content apart.
    std::string digest{};
    std::optional<Date> created{};
    std::optional<Date> revised{};
    Name name{};
    /// The name as the card writes it out.
    std::string formattedName{};
    std::vector<Detail> phones{};
    std::vector<Detail> emails{};
    std::vector<Detail> urls{};
    std::vector<Profile> profiles{};
    std::vector<PostalAddress> addresses{};
    std::optional<PartialDate> birthday{};
    std::optional<PartialDate> anniversary{};
    std::vector<Employment> employments{};
    std::optional<Picture> picture{};
    std::string note{};
    std::vector<std::string> categories{};
    std::vector<Related> related{};
    /// Of a group: identifiers, or addresses such as "mailto:ada@example.org".
    std::vector<std::string> members{};
    /// The place, among the cards that were read, of the card that this one stands in as its agent.
    std::optional<std::size_t> agentOf{};
};

}  // namespace kestrel::host
