#include <fuzz/fuzzing.h>
#include <kestrel/activity/email.h>

#include <optional>
#include <string>
#include <string_view>

// The sender of a message, against its description in <kestrel/activity/email.h> followed word by word.
namespace {

using kestrel::fuzzing::require;

/// The characters with the property White_Space, as UTF-8 writes them.
constexpr std::string_view whiteSpace[] = {
    "\t",           "\n",           "\v",           "\f",           "\r",           " ",
    "\xc2\x85",     "\xc2\xa0",     "\xe1\x9a\x80", "\xe2\x80\x80", "\xe2\x80\x81", "\xe2\x80\x82",
    "\xe2\x80\x83", "\xe2\x80\x84", "\xe2\x80\x85", "\xe2\x80\x86", "\xe2\x80\x87", "\xe2\x80\x88",
    "\xe2\x80\x89", "\xe2\x80\x8a", "\xe2\x80\xa8", "\xe2\x80\xa9", "\xe2\x80\xaf", "\xe2\x81\x9f",
    "\xe3\x80\x80",
};

bool cutOff(std::string& text, std::string_view part) {
    if (text.starts_with(part)) {
        text.erase(0, part.size());
        return true;
    }
    if (text.ends_with(part)) {
        text.erase(text.size() - part.size());
        return true;
    }
    return false;
}

std::string without(std::string text, bool quotesToo) {
    for (bool changed = true; changed;) {
        changed = quotesToo && cutOff(text, "\"");
        for (const std::string_view space : whiteSpace)
            changed = cutOff(text, space) || changed;
    }
    return text;
}

std::optional<std::string> address(const std::string& from) {
    std::string behind;
    bool isOpen = false;
    for (const char c : from) {
        if (isOpen && c == '>') break;
        if (isOpen) behind += c;
        isOpen = isOpen || c == '<';
    }
    if (!isOpen) return without(from, false);
    behind = without(behind, false);
    if (behind.empty()) return std::nullopt;
    return behind;
}

std::optional<std::string> displayName(const std::string& from) {
    std::string before;
    for (const char c : from) {
        if (c == '<') break;
        before += c;
    }
    before = without(before, true);
    if (before.empty()) return address(from);
    return before;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string from(kestrel::fuzzing::textOf(data, size));
    const kestrel::Email email{.emailID = 1, .fromString = from};
    require(email.fromEmailAddress() == address(from), "the sender's address is as described", from);
    require(email.fromDisplayName() == displayName(from), "the sender's name is as described", from);
    require(kestrel::Email{.emailID = 1}.fromEmailAddress() == std::nullopt, "without a sender there is no address");
    return 0;
}
