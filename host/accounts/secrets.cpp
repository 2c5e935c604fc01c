#include <host/accounts/secrets.h>
#include <host/failure.h>
#include <liboath/oath.h>
#include <sodium.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <vector>

namespace kestrel::host {
namespace {

constexpr unsigned period = 30;
constexpr unsigned digits = 6;

void prepareSodium() {
    if (sodium_init() < 0) throw Failure("the system has no source of random numbers");
}

std::vector<unsigned char> randomBytes(std::size_t count) {
    prepareSodium();
    std::vector<unsigned char> bytes(count);
    randombytes_buf(bytes.data(), bytes.size());
    return bytes;
}

std::string inHexadecimal(const std::vector<unsigned char>& bytes) {
    std::string text(bytes.size() * 2 + 1, '\0');
    sodium_bin2hex(text.data(), text.size(), bytes.data(), bytes.size());
    text.pop_back();
    return text;
}

/// The bytes of a secret in base32; empty when it is none.
std::string secretBytes(const std::string& secret) {
    char* bytes = nullptr;
    std::size_t length = 0;
    if (oath_base32_decode(secret.data(), secret.size(), &bytes, &length) != OATH_OK) return {};
    const std::unique_ptr<char, decltype(&std::free)> owner(bytes, std::free);
    return {bytes, length};
}

std::string codeOfPeriod(const std::string& bytes, std::int64_t number) {
    std::array<char, digits + 1> code{};
    const auto time = static_cast<time_t>(number * period);
    if (oath_totp_generate(bytes.data(), bytes.size(), time, period, 0, digits, code.data()) != OATH_OK)
        throw Failure("a one-time code could not be made");
    return code.data();
}

std::int64_t periodAt(Date date) {
    return static_cast<std::int64_t>(std::floor(date.since1970() / period));
}

}  // namespace

std::string hashedPassword(std::string_view password) {
    prepareSodium();
    std::array<char, crypto_pwhash_STRBYTES> hash{};
    if (crypto_pwhash_str(hash.data(), password.data(), password.size(), crypto_pwhash_OPSLIMIT_INTERACTIVE,
                          crypto_pwhash_MEMLIMIT_INTERACTIVE) != 0)
        throw Failure("there is not enough memory to hash a password");
    return hash.data();
}

bool isPassword(const std::string& hash, std::string_view password) {
    prepareSodium();
    return crypto_pwhash_str_verify(hash.c_str(), password.data(), password.size()) == 0;
}

std::string newToken() {
    return inHexadecimal(randomBytes(32));
}

std::string tokenDigest(std::string_view token) {
    prepareSodium();
    std::vector<unsigned char> digest(crypto_generichash_BYTES);
    crypto_generichash(digest.data(), digest.size(), reinterpret_cast<const unsigned char*>(token.data()), token.size(),
                       nullptr, 0);
    return inHexadecimal(digest);
}

bool isSameToken(std::string_view expected, std::string_view given) {
    prepareSodium();
    // How long a token is, is no secret.
    return expected.size() == given.size() && sodium_memcmp(expected.data(), given.data(), expected.size()) == 0;
}

std::string newRecoveryCode() {
    // Without those that look alike.
    constexpr std::string_view letters = "abcdefghjkmnpqrstuvwxyz023456789";
    std::string code;
    for (const unsigned char byte : randomBytes(10)) {
        if (code.size() == 5) code += '-';
        code += letters[byte % letters.size()];
    }
    return code;
}

std::string newOneTimeSecret() {
    const auto bytes = randomBytes(20);
    char* text = nullptr;
    std::size_t length = 0;
    if (oath_base32_encode(reinterpret_cast<const char*>(bytes.data()), bytes.size(), &text, &length) != OATH_OK)
        throw Failure("a secret could not be made");
    const std::unique_ptr<char, decltype(&std::free)> owner(text, std::free);
    return {text, length};
}

std::optional<std::int64_t> oneTimePeriod(const std::string& secret, std::string_view code, Date now) {
    const std::string bytes = secretBytes(secret);
    if (bytes.empty() || code.size() != digits) return std::nullopt;
    // The device's clock may be somewhat off.
    const std::int64_t current = periodAt(now);
    for (const std::int64_t number : {current, current - 1, current + 1}) {
        const std::string expected = codeOfPeriod(bytes, number);
        if (sodium_memcmp(expected.data(), code.data(), digits) == 0) return number;
    }
    return std::nullopt;
}

std::string oneTimeCode(const std::string& secret, Date now) {
    const std::string bytes = secretBytes(secret);
    if (bytes.empty()) throw Failure("this is no secret for one-time codes");
    return codeOfPeriod(bytes, periodAt(now));
}

}  // namespace kestrel::host
