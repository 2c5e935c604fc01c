#include <fmt/format.h>
#include <kestrel/coding/field_table.h>
#include <kestrel/identity/object_id.h>

namespace kestrel::identity_detail {
namespace {

constexpr std::string_view recordNameKey = "recordName";
constexpr std::string_view primaryKeyKey = "primaryKey";

/// The two ways in which identifiers are written, compared as whole texts.
bool decodeUsualText(JSONReader& reader, std::int64_t& key, const WireNames& names) {
    if (reader.isAtDepthLimit()) return false;
    if (reader.matchText(names.nameFirst)) return reader.read(key) && reader.matchText("}");
    return reader.matchText("{\"primaryKey\":") && reader.read(key) && reader.matchText(names.nameLast);
}

}  // namespace

std::string description(const ObjectIDStorage& storage) {
    if (const auto key = storage.persistent()) return fmt::format("#{}", *key);
    if (const auto uuid = storage.new_()) return uuid->text();
    return storage.temp()->description();
}

std::string stringValue(std::string_view entityName, const ObjectIDStorage& storage) {
    if (const auto key = storage.persistent()) return fmt::format("{}/{}", entityName, *key);
    if (const auto uuid = storage.new_()) return fmt::format("{}/new/{})", entityName, uuid->text());
    return fmt::format("{}/temp/{})", entityName, storage.temp()->description());
}

bool encodeObjectID(JSONWriter& writer, const ObjectIDStorage& storage, const WireNames& names) {
    if (const auto key = storage.persistent()) [[likely]] {
        writer.append(names.nameFirst);
        writer.write(*key);
        writer.append("}");
        return true;
    }
    if (const auto uuid = storage.new_())
        return writer.fail("Cannot encode a .new ObjectID using Encodable. Persist the record first.", *uuid);
    return writer.fail("Cannot encode a .temp ObjectID using Encodable. Persist the record first.", *storage.temp());
}

bool decodeObjectID(JSONReader& reader, ObjectIDStorage& storage, const WireNames& names) {
    const auto start = reader.place();
    std::int64_t key = 0;
    if (!reader.isCareful() && decodeUsualText(reader, key, names)) {
        storage = ObjectIDStorage::persistent(key);
        return true;
    }
    reader.goTo(start);

    constexpr std::array keys{recordNameKey, primaryKeyKey};
    std::array<JSONReader::Place, keys.size()> places{};
    if (!coding_detail::findMembers(reader, keys.data(), keys.size(), places.data())) return false;
    const auto behind = reader.place();
    const auto failAt = [&](std::string_view member) {
        reader.prependKey(member);
        return false;
    };
    const auto isMissing = [&](std::size_t member) {
        if (places[member].cursor != nullptr) return false;
        reader.goTo(start);
        reader.failMissingKey(keys[member]);
        return true;
    };

    if (isMissing(0)) return false;
    reader.goTo(places[0]);
    std::string name;
    if (!reader.read(name)) return failAt(recordNameKey);
    if (name != names.recordName) {
        reader.goTo(places[0]);
        reader.fail(DecodingError::Kind::dataCorrupted,
                    fmt::format("Mismatched record type found, got: {}, expected: {}", name, names.recordName));
        return failAt(recordNameKey);
    }
    if (isMissing(1)) return false;
    reader.goTo(places[1]);
    if (!reader.read(key)) return failAt(primaryKeyKey);
    reader.goTo(behind);
    storage = ObjectIDStorage::persistent(key);
    return true;
}

}  // namespace kestrel::identity_detail
