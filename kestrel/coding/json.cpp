#include <kestrel/coding/json.h>

namespace kestrel {

std::expected<void, DecodingError> checkJSON(std::string_view document) {
    JSONReader reader(document, {});
    if (reader.checkDocument()) return {};
    return std::unexpected(reader.takeError());
}

}  // namespace kestrel
