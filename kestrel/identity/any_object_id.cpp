#include <kestrel/identity/any_object_id.h>

#include <charconv>

namespace kestrel {

std::optional<AnyObjectID> AnyObjectID::parse(std::string_view text) {
    const auto slash = text.find('/');
    if (slash == std::string_view::npos) return std::nullopt;
    const std::string_view entity = text.substr(0, slash);
    const std::string_view digits = text.substr(slash + 1);
    std::int64_t key = 0;
    const auto [end, problem] = std::from_chars(digits.data(), digits.data() + digits.size(), key);
    if (problem != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
    std::optional<AnyObjectID> found;
    recordTypes.forEach([&]<class Record>(const RecordNames<Record>& names) {
        if (names.entityName == entity) found = ObjectID<Record>(key);
    });
    // One text for each identifier: no leading zeros and the like.
    if (found && found->stringValue() != text) return std::nullopt;
    return found;
}

}  // namespace kestrel
