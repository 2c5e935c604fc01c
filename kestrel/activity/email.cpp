#include <kestrel/activity/email.h>
#include <kestrel/coding/wire_form.h>
#include <kestrel/foundation/unicode.h>
#include <cstddef>
#include <string_view>

namespace kestrel {

KESTREL_FIELDS(Email, emailID, bccString, ccString, createDate, deletionDate, deletionIdentifier, deletionUserID,
               dmiRecordDate, dmiStatusCode, fromString, inReplyToMessageID, messageDate, messageID, modifyDate,
               rawHeader, subject, toString, permissions, category, keywords);

namespace {

/// Without white space and double quotes at both ends, in whatever order they stand there.
std::string_view trimmedQuotes(std::string_view text) noexcept {
    for (;;) {
        const std::size_t before = text.size();
        text = trimmedWhiteSpace(text);
        if (text.starts_with('"')) text.remove_prefix(1);
        if (text.ends_with('"')) text.remove_suffix(1);
        if (text.size() == before) return text;
    }
}

}  // namespace

std::optional<std::string> Email::fromEmailAddress() const {
    if (!fromString) return std::nullopt;
    const std::string_view from = *fromString;
    const std::size_t open = from.find('<');
    if (open == std::string_view::npos) return std::string(trimmedWhiteSpace(from));
    const std::string_view behind = from.substr(open + 1);
    const std::string_view address = trimmedWhiteSpace(behind.substr(0, behind.find('>')));
    if (address.empty()) return std::nullopt;
    return std::string(address);
}

std::optional<std::string> Email::fromDisplayName() const {
    if (!fromString) return std::nullopt;
    const std::string_view from = *fromString;
    const std::string_view name = trimmedQuotes(from.substr(0, from.find('<')));
    if (name.empty()) return fromEmailAddress();
    return std::string(name);
}

}  // namespace kestrel
