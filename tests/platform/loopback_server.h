#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <atomic>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace kestrel::test {

/// A server of HTTP/1.1 on a port of its own of the loopback interface. Each connection has a thread, takes one request
/// and is closed behind its answer.
class LoopbackServer {
  public:
    class Connection {
      public:
        Connection(int socket, const std::atomic<bool>& isClosing) : socket_(socket), isClosing_(isClosing) {}

        /// Gives up when the other side has gone.
        void send(std::string_view bytes) const {
            while (!bytes.empty()) {
                const auto size = ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
                if (size <= 0) return;
                bytes.remove_prefix(static_cast<std::size_t>(size));
            }
        }
        void answer(int status, std::string_view body, const std::string& headers = "") const {
            send("HTTP/1.1 " + std::to_string(status) + " Answer\r\nContent-Length: " + std::to_string(body.size()) +
                 "\r\nConnection: close\r\n" + headers + "\r\n" + std::string(body));
        }
        /// Waits until the other side closes. False when the server closes first.
        [[nodiscard]] bool waitForEnd() const {
            while (!isClosing_) {
                pollfd waited{.fd = socket_, .events = POLLIN, .revents = 0};
                char byte = 0;
                if (poll(&waited, 1, 10) > 0 && recv(socket_, &byte, 1, 0) <= 0) return true;
            }
            return false;
        }

      private:
        int socket_;
        const std::atomic<bool>& isClosing_;
    };
    /// Given the request's lines, and the connection to answer on.
    using Answer = std::function<void(const std::string& request, const Connection& connection)>;

    explicit LoopbackServer(Answer answer) : answer_(std::move(answer)), socket_(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        if (bind(socket_, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(socket_, 16) != 0 ||
            getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
            throw std::runtime_error("no server on the loopback interface");
        }
        port_ = ntohs(address.sin_port);
        accepting_ = std::thread([this] { accept(); });
    }
    ~LoopbackServer() {
        isClosing_ = true;
        accepting_.join();
        for (auto& thread : serving_)
            thread.join();
        close(socket_);
    }
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    [[nodiscard]] std::string url() const { return "http://127.0.0.1:" + std::to_string(port_); }
    /// What was asked, in the order in which it came.
    [[nodiscard]] std::vector<std::string> requests() const {
        const std::scoped_lock lock(mutex_);
        return requests_;
    }

  private:
    void accept() {
        while (!isClosing_) {
            pollfd waited{.fd = socket_, .events = POLLIN, .revents = 0};
            if (poll(&waited, 1, 10) <= 0) continue;
            const int connection = ::accept(socket_, nullptr, nullptr);
            if (connection >= 0) serving_.emplace_back([this, connection] { serve(connection); });
        }
    }
    void serve(int connection) {
        std::string request;
        char buffer[4096];
        while (!request.contains("\r\n\r\n")) {
            const auto size = recv(connection, buffer, sizeof buffer, 0);
            if (size <= 0) break;
            request.append(buffer, static_cast<std::size_t>(size));
        }
        {
            const std::scoped_lock lock(mutex_);
            requests_.push_back(request);
        }
        answer_(request, Connection(connection, isClosing_));
        close(connection);
    }

    Answer answer_;
    int socket_;
    unsigned port_ = 0;
    std::atomic<bool> isClosing_ = false;
    mutable std::mutex mutex_{};
    std::vector<std::string> requests_{};
    std::thread accepting_{};
    std::vector<std::thread> serving_{};
};

}  // namespace kestrel::test
