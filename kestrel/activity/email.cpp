#include <kestrel/activity/email.h>
#include <kestrel/coding/wire_form.h>
#include <cstddef>
#include <string_view>

namespace kestrel {

KESTREL_FIELDS(Email, emailID, bccString, ccString, createDate, deletionDate, deletionIdentifier, deletionUserID,
               dmiRecordDate, dmiStatusCode, fromString, inReplyToMessageID, messageDate, messageID, modifyDate,
               rawHeader, subject, toString, permissions, category, keywords);

namespace {

/// The length of the white space character of Unicode at the front; 0 when there is none.
std::size_t whiteSpaceAtFront(std::string_view text) noexcept {
    if (text.empty()) return 0;
    const auto byte = [&](std::size_t i) {
        return i < text.size() ? static_cast<unsigned>(static_cast<unsigned char>(text[i])) : 0U;
    };
    if (byte(0) == ' ' || (byte(0) >= '\t' && byte(0) <= '\r')) return 1;
    if (byte(0) == 0xc2) return byte(1) == 0x85 || byte(1) == 0xa0 ? 2 : 0;  // next line, no-break space
    const unsigned three = byte(0) << 16U | byte(1) << 8U | byte(2);
    const bool isSpace = three == 0xe19a80                            // ogham space mark
                         || (three >= 0xe28080 && three <= 0xe2808a)  // en quad to hair space
                         || three == 0xe280a8 || three == 0xe280a9    // line and paragraph separator
                         || three == 0xe280af || three == 0xe2819f    // narrow no-break, mathematical space
                         || three == 0xe38080;                        // ideographic space
    return isSpace ? 3 : 0;
}

/// The length of the white space character at the back; 0 when there is none.
std::size_t whiteSpaceAtBack(std::string_view text) noexcept {
    for (std::size_t length = 1; length <= 3 && length <= text.size(); ++length) {
        if (whiteSpaceAtFront(text.substr(text.size() - length)) == length) return length;
    }
    return 0;
}

enum class Trimmed : bool { whiteSpace, whiteSpaceAndQuotes };

std::string_view trim(std::string_view text, Trimmed what) noexcept {
    const bool quotes = what == Trimmed::whiteSpaceAndQuotes;
    for (;;) {
        const std::size_t length = quotes && text.starts_with('"') ? 1 : whiteSpaceAtFront(text);
        if (length == 0) break;
        text.remove_prefix(length);
    }
    for (;;) {
        const std::size_t length = quotes && text.ends_with('"') ? 1 : whiteSpaceAtBack(text);
        if (length == 0) break;
        text.remove_suffix(length);
    }
    return text;
}

}  // namespace

std::optional<std::string> Email::fromEmailAddress() const {
    if (!fromString) return std::nullopt;
    const std::string_view from = *fromString;
    const std::size_t open = from.find('<');
    if (open == std::string_view::npos) return std::string(trim(from, Trimmed::whiteSpace));
    const std::string_view behind = from.substr(open + 1);
    const std::string_view address = trim(behind.substr(0, behind.find('>')), Trimmed::whiteSpace);
    if (address.empty()) return std::nullopt;
    return std::string(address);
}

std::optional<std::string> Email::fromDisplayName() const {
    if (!fromString) return std::nullopt;
    const std::string_view from = *fromString;
    const std::string_view name = trim(from.substr(0, from.find('<')), Trimmed::whiteSpaceAndQuotes);
    if (name.empty()) return fromEmailAddress();
    return std::string(name);
}

}  // namespace kestrel
