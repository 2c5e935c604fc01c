#include <kestrel/coding/field_table.h>

namespace kestrel::coding_detail {

bool findMembers(JSONReader& reader, const std::string_view* keys, std::size_t count, JSONReader::Place* places) {
    if (!reader.expectObject()) return false;
    if (reader.endIfEmpty('}')) return true;
    for (;;) {
        std::string_view key;
        if (!reader.readKey(key)) return false;
        for (std::size_t i = 0; i < count; ++i) {
            if (keys[i] == key) places[i] = reader.place();
        }
        if (!reader.skipValue()) return false;
        const auto next = reader.nextMember();
        if (next == JSONReader::Next::broken) return false;
        if (next == JSONReader::Next::end) return true;
    }
}

bool decodeCaseName(JSONReader& reader, const std::string_view* names, std::size_t count, std::size_t& found,
                    JSONReader::Place& payload) {
    const auto start = reader.place();
    if (!reader.expectObject()) return false;
    bool any = false;
    bool several = false;
    if (!reader.endIfEmpty('}')) {
        for (auto next = JSONReader::Next::another; next != JSONReader::Next::end;) {
            std::string_view key;
            if (!reader.readKey(key)) return false;
            for (std::size_t i = 0; i < count; ++i) {
                if (names[i] != key) continue;
                several = several || (any && found != i);
                any = true;
                found = i;
                payload = reader.place();
            }
            if (!reader.skipValue()) return false;
            next = reader.nextMember();
            if (next == JSONReader::Next::broken) return false;
        }
    }
    if (any && !several) return true;
    reader.goTo(start);
    return reader.fail(DecodingError::Kind::typeMismatch, "Invalid number of keys found, expected one.");
}

}  // namespace kestrel::coding_detail
