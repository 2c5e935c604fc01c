#include <fmt/format.h>
#include <host/store/find_record.h>
#include <host/terminal/text.h>

#include <vector>

namespace kestrel::host {

AnyObjectID identifierOf(std::string_view text) {
    if (const auto id = AnyObjectID::parse(text)) return *id;
    std::vector<std::string> entities;
    StoredRecords::forEach([&]<class Record>() { entities.emplace_back(entityNameOf<Record>); });
    throw WrongUsage(
        fmt::format("\"{}\" names no record; write ENTITY/NUMBER, with one of {}", text, listed(entities)));
}

}  // namespace kestrel::host
