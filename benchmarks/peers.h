#pragma once

#include <kestrel/records/opportunity.h>

#include <string>
#include <string_view>
#include <vector>

/// The same work by other libraries, as a user of them would write it by hand: members are tried in the order in which
/// they are written and otherwise looked up in a hash table. Each stops the program when a document is not what it
/// expects.
namespace peers {

/// Fills the values from a document tree.
std::vector<kestrel::Opportunity> decodeArrayBySimdjson(std::string_view document);
kestrel::Opportunity decodeOneBySimdjson(std::string_view document);
std::vector<kestrel::Opportunity> decodeArrayByRapidJSON(std::string_view document);
kestrel::Opportunity decodeOneByRapidJSON(std::string_view document);

/// Writes through the library's streaming writer.
std::string encodeArrayByRapidJSON(const std::vector<kestrel::Opportunity>& values);
std::string encodeOneByRapidJSON(const kestrel::Opportunity& value);

/// Deals of which about half of the optional members are filled, in a fixed order of chance.
std::vector<kestrel::Opportunity> sampleOpportunities(std::size_t count);
/// The same document with the members of every object in another order.
std::string shuffleMembers(const std::string& document, unsigned seed);

}  // namespace peers
