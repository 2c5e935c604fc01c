#pragma once

#include <kestrel/runtime/service_protocol.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace kestrel {

/// Reads the contents of messages.
class EmailParsingService : public ServiceProtocol {
  public:
    /// The text of an HTML document, as a person reads it; absent when that cannot be told.
    [[nodiscard]] virtual std::optional<std::string> extractPlainText(std::string_view html) = 0;
};

template <>
class Forwarding<EmailParsingService> : public EmailParsingService {
  public:
    [[nodiscard]] virtual std::shared_ptr<EmailParsingService> target() const = 0;

    [[nodiscard]] std::optional<std::string> extractPlainText(std::string_view html) override {
        return target()->extractPlainText(html);
    }
};

namespace services {
inline constexpr ServiceKey<EmailParsingService> emailParsing;
}

}  // namespace kestrel
