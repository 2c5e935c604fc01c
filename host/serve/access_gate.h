#pragma once

#include <host/serve/http_message.h>
#include <cstdint>
#include <optional>
#include <string>

namespace kestrel::host {

/// Decides which requests are answered at all: those of this server's own page in a browser that was given the address
/// with the token. A value that does not change; it may be asked from several threads at once.
///
/// The page and its files are the same for everybody and tell nothing, so they are there for whoever opens them, from a
/// link in another page, too. The page takes the token out of its address, keeps it and says it in a header of each
/// request for data; without it there is none, and nothing is changed. There is no cookie: a browser sends those of
/// 127.0.0.1 to the servers of all its ports, while what a page keeps is for its own port alone. Another page does not
/// know the token, and a browser asks before it sends such a header from elsewhere, which is refused. A name that
/// somebody else has made mean 127.0.0.1 is refused by the Host header.
class AccessGate {
  public:
    /// With a token of its own.
    explicit AccessGate(std::uint16_t port);

    /// The address that lets a browser in.
    [[nodiscard]] std::string url() const;

    /// What a request is answered that goes no further; absent for one that may. Looks at everything but the body,
    /// which nobody has to read of a request that is refused.
    [[nodiscard]] std::optional<HTTPResponse> answer(const HTTPRequest& request) const;

  private:
    /// "127.0.0.1:8080".
    std::string authority_;
    std::string token_;
};

}  // namespace kestrel::host
