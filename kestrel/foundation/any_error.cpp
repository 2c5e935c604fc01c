#include <fmt/format.h>
#include <kestrel/foundation/any_error.h>

namespace kestrel::error_detail {

PlatformError plainForm(std::string_view type, std::int64_t code) {
    const std::string domain = fmt::format("KestrelService.{}", type);
    return {.domain = domain, .code = code, .localizedDescription = describePlainForm(domain, code)};
}

}  // namespace kestrel::error_detail
