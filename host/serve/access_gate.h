#pragma once

#include <host/serve/http_message.h>
#include <cstdint>
#include <optional>
#include <string>

namespace kestrel::host {

/// Decides which requests are answered at all: those of the browser that was given the address with the token, made by
/// this server's own page. A value that does not change; it may be asked from several threads at once.
///
/// The token of the address is exchanged for a cookie, which scripts cannot read and other sites cannot send, and the
/// browser is sent on to the address without it. Cookies are the same for all ports of a machine, so the cookie is
/// named by the port, and what a page of another port asks for is refused by what the browser says of its origin. A
/// name that somebody else has made mean 127.0.0.1 is refused by the Host header.
class AccessGate {
  public:
    /// With a token and a cookie of its own.
    explicit AccessGate(std::uint16_t port);

    /// The address that lets a browser in.
    [[nodiscard]] std::string url() const;

    /// What a request is answered that goes no further; absent for one that may. Looks at everything but the body,
    /// which nobody has to read of a request that is refused.
    [[nodiscard]] std::optional<HTTPResponse> answer(const HTTPRequest& request) const;

  private:
    [[nodiscard]] bool hasCookie(const HTTPRequest& request) const;

    /// "127.0.0.1:8080".
    std::string authority_;
    std::string token_;
    std::string cookieName_;
    std::string cookie_;
};

}  // namespace kestrel::host
