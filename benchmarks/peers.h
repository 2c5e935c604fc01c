#pragma once

#include <kestrel/records/contact.h>

#include <string>
#include <string_view>
#include <vector>

/// The same work by other libraries, as a user of them would write it by hand: keys are looked up in a hash table, by
/// the fastest peer only after it has tried the members in the order in which they are written. Each stops the program
/// when a document is not what it expects.
namespace peers {

/// Fills the values from a document tree.
std::vector<kestrel::Contact> decodeArrayBySimdjson(std::string_view document);
kestrel::Contact decodeOneBySimdjson(std::string_view document);
std::vector<kestrel::Contact> decodeArrayByRapidJSON(std::string_view document);
kestrel::Contact decodeOneByRapidJSON(std::string_view document);
std::vector<kestrel::Contact> decodeArrayByNlohmann(std::string_view document);
kestrel::Contact decodeOneByNlohmann(std::string_view document);

/// Writes through the library's streaming writer, or a tree where it has none.
std::string encodeArrayByRapidJSON(const std::vector<kestrel::Contact>& values);
std::string encodeOneByRapidJSON(const kestrel::Contact& value);
std::string encodeArrayByNlohmann(const std::vector<kestrel::Contact>& values);
std::string encodeOneByNlohmann(const kestrel::Contact& value);

/// Contacts of which about half of the optional members are filled, in a fixed order of chance.
std::vector<kestrel::Contact> sampleContacts(std::size_t count);
/// The same document with the members of every object in another order.
std::string shuffleMembers(const std::string& document, unsigned seed);

}  // namespace peers
