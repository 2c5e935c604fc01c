#pragma once

#include <host/serve/http_message.h>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace kestrel::host {

/// An HTTP server that only this machine reaches, on 127.0.0.1.
///
/// It reads requests and writes responses on threads of its own, one for each connection, so that a browser that opens
/// connections ahead of their use, or a client that is slow, keeps nobody else waiting. A connection serves one
/// request: what is left of one that was refused unread is never taken for another. What comes before a body has at
/// most 64 KiB, and so has a body. An answer is always the whole body, whatever ranges of it are asked for.
class LoopbackServer {
  public:
    struct Limits {
        /// What a client has to send its request, from the moment when the connection is accepted. A client that takes
        /// longer is given up, however often it sends something.
        std::chrono::milliseconds request{5'000};
        /// What a client has to take its answer.
        std::chrono::milliseconds answer{10'000};
        /// How many connections are open at once. Another one waits until one ends or, when they all wait for their
        /// clients, until the oldest of them has had `crowded`: that one is cut.
        std::size_t connections = 32;
        std::chrono::milliseconds crowded{250};
    };

    /// What a request is answered before its body is read; absent for one that goes on. Called on several threads.
    using Admit = std::function<std::optional<HTTPResponse>(const HTTPRequest&)>;
    /// Called on several threads at once.
    using Answer = std::function<HTTPResponse(const HTTPRequest&)>;

    /// Listens from now on; 0 takes any port that is free. A Failure when it cannot.
    explicit LoopbackServer(std::uint16_t port) : LoopbackServer(port, Limits()) {}
    LoopbackServer(std::uint16_t port, const Limits& limits);
    ~LoopbackServer();
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    [[nodiscard]] std::uint16_t port() const noexcept;

    /// Serves until `stop`. Gives back false when it ended for another reason. Once only.
    [[nodiscard]] bool serve(Admit admit, Answer answer);
    /// Ends `serve` as soon as the requests that are being answered are, and waits for no client: a request that is not
    /// there in full is dropped, and an answer has to be taken within half a second. Waits for `serve` to begin. From
    /// another thread.
    void stop();

  private:
    struct Implementation;
    std::unique_ptr<Implementation> implementation_;
};

}  // namespace kestrel::host
