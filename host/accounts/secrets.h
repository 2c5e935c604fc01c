#pragma once

#include <kestrel/foundation/date.h>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// What proves who somebody is, and how it is kept: passwords by Argon2id, codes of a device by TOTP (RFC 6238, six
/// digits, 30 seconds, SHA-1, as authenticator applications expect them), random tokens by their digest.
namespace kestrel::host {

/// The password in a form that may be stored: it takes a tenth of a second and 64 MiB to try one.
[[nodiscard]] std::string hashedPassword(std::string_view password);
/// Whether the hash is of that password. False for a hash that is damaged.
[[nodiscard]] bool isPassword(const std::string& hash, std::string_view password);

/// Random, 256 bits, in letters and digits.
[[nodiscard]] std::string newToken();
/// The token in a form that may be stored: it says nothing about the token.
[[nodiscard]] std::string tokenDigest(std::string_view token);
/// Whether a token that somebody gives is the one that is expected. It takes the same time wherever the two differ.
[[nodiscard]] bool isSameToken(std::string_view expected, std::string_view given);
/// Random, 50 bits, to be typed: "k7f2p-9qmxa".
[[nodiscard]] std::string newRecoveryCode();

/// A new secret for codes of a device, in base32, as people enter it there.
[[nodiscard]] std::string newOneTimeSecret();
/// The period of 30 seconds to which a code belongs, within one period of the moment; absent when it is no code of the
/// secret. Whoever accepts a code refuses those of that period and earlier ones from then on.
[[nodiscard]] std::optional<std::int64_t> oneTimePeriod(const std::string& secret, std::string_view code, Date now);
/// The code of the moment.
[[nodiscard]] std::string oneTimeCode(const std::string& secret, Date now);

}  // namespace kestrel::host
