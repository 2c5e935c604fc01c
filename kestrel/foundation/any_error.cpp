#include <fmt/format.h>
#include <kestrel/foundation/any_error.h>

namespace kestrel::error_detail {

std::string (*describePlainForm)(std::string_view domain, std::int64_t code) = nullptr;

PlatformError plainForm(std::string_view type, std::int64_t code) {
    const std::string domain = fmt::format("KestrelService.{}", type);
    return {.domain = domain,
            .code = code,
            .localizedDescription = describePlainForm == nullptr ? fmt::format("{} error {}", domain, code)
                                                                 : describePlainForm(domain, code)};
}

}  // namespace kestrel::error_detail
