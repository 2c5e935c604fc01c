#pragma once

#include <host/serve/http_message.h>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace kestrel::host {

/// An HTTP server that only this machine reaches, on 127.0.0.1.
///
/// It reads requests and writes responses on a few threads of its own, so that a browser that opens connections ahead
/// of their use, or a client that is slow, keeps nobody else waiting. A connection serves one request: what is left of
/// one that was refused unread is never taken for another. A body has at most 64 KiB, and a client is given up that
/// sends or takes nothing for five seconds.
class LoopbackServer {
  public:
    /// What a request is answered before its body is read; absent for one that goes on. Called on several threads.
    using Admit = std::function<std::optional<HTTPResponse>(const HTTPRequest&)>;
    /// Called on several threads at once.
    using Answer = std::function<HTTPResponse(const HTTPRequest&)>;

    /// Listens from now on; 0 takes any port that is free. A Failure when it cannot.
    explicit LoopbackServer(std::uint16_t port);
    ~LoopbackServer();
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    [[nodiscard]] std::uint16_t port() const noexcept;

    /// Serves until `stop`. Gives back false when it ended for another reason. Once only.
    [[nodiscard]] bool serve(Admit admit, Answer answer);
    /// Ends `serve` as soon as the requests that are being answered are; waits for it to begin. From another thread.
    void stop();

  private:
    struct Implementation;
    std::unique_ptr<Implementation> implementation_;
};

}  // namespace kestrel::host
