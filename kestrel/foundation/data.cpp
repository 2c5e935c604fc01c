#include <kestrel/foundation/data.h>

#include <array>
#include <cstdint>

namespace kestrel {
namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::uint8_t notInAlphabet = 0xff;

constexpr auto sextets = [] {
    std::array<std::uint8_t, 256> table{};
    table.fill(notInAlphabet);
    for (std::size_t i = 0; i < alphabet.size(); ++i) {
        table[static_cast<unsigned char>(alphabet[i])] = static_cast<std::uint8_t>(i);
    }
    return table;
}();

}  // namespace

Data Data::fromText(std::string_view text) {
    const auto bytes = std::as_bytes(std::span(text));
    return Data{{bytes.begin(), bytes.end()}};
}

std::string Data::base64() const {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
        std::uint32_t group = 0;
        for (std::size_t k = 0; k < 3; ++k) {
            group = (group << 8U) | (k < count ? std::to_integer<std::uint32_t>(bytes[i + k]) : 0U);
        }
        for (std::size_t k = 0; k < 4; ++k) {
            text += k <= count ? alphabet[(group >> (18 - 6 * k)) & 0x3fU] : '=';
        }
    }
    return text;
}

std::optional<Data> Data::fromBase64(std::string_view text) {
    if (text.size() % 4 != 0) return std::nullopt;
    std::size_t padding = 0;
    while (padding < 2 && padding < text.size() && text[text.size() - 1 - padding] == '=')
        ++padding;
    const std::string_view digits = text.substr(0, text.size() - padding);
    Data data;
    data.bytes.reserve(text.size() / 4 * 3);
    std::uint32_t group = 0;
    std::size_t held = 0;
    for (const char c : digits) {
        const std::uint8_t sextet = sextets[static_cast<unsigned char>(c)];
        if (sextet == notInAlphabet) return std::nullopt;
        group = (group << 6U) | sextet;
        held += 6;
        if (held >= 8) {
            held -= 8;
            data.bytes.push_back(static_cast<std::byte>(group >> held & 0xffU));
        }
    }
    // What is left over of the last digit must be zero, or two texts would mean the same bytes.
    if ((group & ((1U << held) - 1U)) != 0) return std::nullopt;
    return data;
}

}  // namespace kestrel
