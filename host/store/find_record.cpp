#include <fmt/format.h>
#include <host/store/find_record.h>
#include <host/terminal/text.h>

#include <algorithm>
#include <string>
#include <vector>

namespace kestrel::host {

AnyObjectID identifierOf(std::string_view text) {
    if (const auto id = AnyObjectID::parse(text)) return *id;
    std::vector<std::string> entities;
    StoredRecords::forEach([&]<class Record>() { entities.emplace_back(entityNameOf<Record>); });
    // Types are taken for entities, which differ from them for some.
    std::string hint;
    const std::string_view type = text.substr(0, text.find('/'));
    recordTypes.forEach([&](const auto& names) {
        if (names.recordName == type && names.entityName != type &&
            std::ranges::find(entities, names.entityName) != entities.end())
            hint = fmt::format("; a {} is \"{}{}\" there", type, names.entityName, text.substr(type.size()));
    });
    throw WrongUsage(
        fmt::format("\"{}\" names no record{}; write ENTITY/NUMBER, with one of {}", text, hint, listed(entities)));
}

}  // namespace kestrel::host
