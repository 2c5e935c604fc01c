#include <fmt/format.h>
#include <kestrel/foundation/fatal.h>
#include <kestrel/runtime/runtime.h>
#include <algorithm>

namespace kestrel {

std::vector<std::string> Runtime::installedProtocols() const {
    std::vector<std::string> names;
    for (const auto& [protocol, slot] : slots_) {
        if (const auto name = slot->installedProtocol(); !name.empty()) names.emplace_back(name);
    }
    std::ranges::sort(names);
    return names;
}

void Runtime::stopForMissing(std::string_view protocol) {
    fatal(fmt::format("The runtime has no {}: install one before it is used.", protocol));
}

}  // namespace kestrel
