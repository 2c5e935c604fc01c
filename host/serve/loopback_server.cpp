#include <fmt/format.h>
#include <host/failure.h>
#include <host/serve/loopback_server.h>
#include <httplib.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <condition_variable>
#include <latch>
#include <list>
#include <mutex>
#include <string_view>
#include <utility>

namespace kestrel::host {
namespace {

constexpr const char* address = "127.0.0.1";
constexpr std::size_t largestBody = std::size_t{64} * 1024;
constexpr std::size_t largestHead = std::size_t{64} * 1024;

using Clock = std::chrono::steady_clock;
using Limits = LoopbackServer::Limits;

/// The connections that are open, each with a thread of its own.
///
/// A thread that waits for its client looks up from time to time whether it still should.
class Connections {
  public:
    /// One of them.
    struct Client {
        socket_t socket;
        Clock::time_point since;
        bool isWaitedFor = false;
        bool isCut = false;
    };

    explicit Connections(const Limits& limits) : limits_(limits) {}

    [[nodiscard]] const Limits& limits() const noexcept { return limits_; }

    /// Counts a connection that is about to be added, when there is room for it. While there is none, the oldest one
    /// that waits for its client is cut.
    void makeRoom() {
        std::unique_lock lock(mutex_);
        while (count_ >= limits_.connections && !stopped_) {
            auto next = Clock::now() + lookout;
            const bool isOneGoing = std::ranges::any_of(clients_, &Client::isCut);
            const auto oldest = std::ranges::find_if(clients_, &Client::isWaitedFor);
            if (!isOneGoing && oldest != clients_.end()) {
                if (const auto end = oldest->since + limits_.crowded; end <= Clock::now()) {
                    oldest->isCut = true;
                    // It is polled, so it is not closed; and nobody closes it before this is done.
                    ::shutdown(oldest->socket, SHUT_RDWR);
                } else {
                    next = std::min(next, end);
                }
            }
            freed_.wait_until(lock, next);
        }
        ++count_;
    }
    [[nodiscard]] std::list<Client>::iterator add(socket_t socket) {
        const std::scoped_lock lock(mutex_);
        return clients_.insert(clients_.end(), Client{.socket = socket, .since = Clock::now()});
    }
    void remove(std::list<Client>::iterator client) {
        const std::scoped_lock lock(mutex_);
        clients_.erase(client);
        --count_;
        freed_.notify_all();
    }
    /// From now on nothing is read, and what is still written has to be taken soon.
    void stop() {
        const std::scoped_lock lock(mutex_);
        if (!stopped_) stopped_ = Clock::now();
        freed_.notify_all();
    }

    /// Waits until the socket is ready for `events`. Gives back false when it does not get so in time.
    [[nodiscard]] bool wait(Client& client, short events, Clock::time_point deadline) {
        pollfd waiting{.fd = client.socket, .events = events, .revents = 0};
        for (;;) {
            std::chrono::milliseconds time{};
            {
                const std::scoped_lock lock(mutex_);
                client.isWaitedFor = false;
                if (stopped_) deadline = std::min(deadline, events == POLLIN ? *stopped_ : *stopped_ + partingTime);
                const auto now = Clock::now();
                if (client.isCut || now >= deadline) return false;
                time = std::chrono::ceil<std::chrono::milliseconds>(std::min<Clock::duration>(deadline - now, lookout));
                client.isWaitedFor = true;
            }
            const int ready = ::poll(&waiting, 1, static_cast<int>(time.count()));
            if (ready == 0 || (ready < 0 && errno == EINTR)) continue;
            const std::scoped_lock lock(mutex_);
            client.isWaitedFor = false;
            return ready > 0 && !client.isCut;
        }
    }

  private:
    static constexpr std::chrono::milliseconds lookout{50};
    /// What a client has to take the rest of its answer when the server ends.
    static constexpr std::chrono::milliseconds partingTime{500};

    Limits limits_;
    std::mutex mutex_;
    std::condition_variable freed_;
    /// In the order in which they were opened.
    std::list<Client> clients_;
    /// With those that were accepted and have no thread yet.
    std::size_t count_ = 0;
    std::optional<Clock::time_point> stopped_;
};

/// Whether the server library gets to see a line of a head. Bodies are sent as they are and whole, which HTTP allows
/// whatever is asked for: the library compresses, which takes longer than to send it within a machine, and it applies
/// ranges without comparing them with the length of a body.
bool isHeeded(std::string_view line) {
    constexpr std::array<std::string_view, 2> ignored{"range", "accept-encoding"};
    const std::string_view name = line.substr(0, line.find(':'));
    return std::ranges::none_of(ignored, [&](std::string_view one) {
        return std::ranges::equal(name, one, {},
                                  [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    });
}

/// A connection as the server library reads and writes it: within the time that it has, and no head that is larger than
/// allowed.
class ClientStream final : public httplib::Stream {
  public:
    ClientStream(Connections& connections, Connections::Client& client)
        : connections_(&connections), client_(&client), readUntil_(client.since + connections.limits().request) {}

    /// Reads the lines before the body, for `read` to give them. Gives back false when the client did not send them.
    [[nodiscard]] bool readHead() {
        constexpr std::string_view end = "\n\r\n";
        std::size_t length = std::string::npos;
        while (length == std::string::npos && unread_.size() < largestHead) {
            const std::size_t known = unread_.size();
            if (!receive()) return false;
            const auto found = unread_.find(end, known - std::min(known, end.size() - 1));
            if (found != std::string::npos) length = found + end.size();
        }
        // One that is too large is given as far as it was read, for the library to refuse it.
        isEnded_ = length == std::string::npos;
        const std::string head = unread_.substr(0, length);
        std::string heeded;
        for (std::string_view rest = head; !rest.empty();) {
            const std::string_view line = rest.substr(0, std::min(rest.find('\n'), rest.size() - 1) + 1);
            if (isHeeded(line)) heeded += line;
            rest.remove_prefix(line.size());
        }
        unread_.replace(0, head.size(), heeded);
        return true;
    }

    [[nodiscard]] bool is_readable() const override { return !unread_.empty() || !isEnded_; }
    [[nodiscard]] bool is_writable() const override { return true; }

    ssize_t read(char* to, std::size_t size) override {
        if (position_ == unread_.size()) {
            unread_.clear();
            position_ = 0;
            if (isEnded_) return 0;
            if (!receive()) return -1;
        }
        const std::size_t count = unread_.copy(to, size, position_);
        position_ += count;
        return static_cast<ssize_t>(count);
    }
    /// Writes all of it.
    ssize_t write(const char* from, std::size_t size) override {
        if (!writeUntil_) writeUntil_ = Clock::now() + connections_->limits().answer;
        for (std::string_view rest(from, size); !rest.empty();) {
            const ssize_t count = ::send(client_->socket, rest.data(), rest.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
            if (count >= 0) {
                rest.remove_prefix(static_cast<std::size_t>(count));
            } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
                if (!connections_->wait(*client_, POLLOUT, *writeUntil_)) return -1;
            } else if (errno != EINTR) {
                return -1;
            }
        }
        return static_cast<ssize_t>(size);
    }
    /// Nobody asks who it is: only this machine can connect.
    void get_remote_ip_and_port(std::string& ip, int& port) const override {
        ip = address;
        port = 0;
    }
    void get_local_ip_and_port(std::string& ip, int& port) const override { get_remote_ip_and_port(ip, port); }
    [[nodiscard]] socket_t socket() const override { return client_->socket; }

  private:
    /// Appends something to `unread_`.
    [[nodiscard]] bool receive() {
        std::array<char, 4096> part{};
        while (connections_->wait(*client_, POLLIN, readUntil_)) {
            const ssize_t count = ::recv(client_->socket, part.data(), part.size(), MSG_DONTWAIT);
            if (count > 0) {
                unread_.append(part.data(), static_cast<std::size_t>(count));
                return true;
            }
            if (count == 0 || (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR)) return false;
        }
        return false;
    }

    Connections* connections_;
    Connections::Client* client_;
    Clock::time_point readUntil_;
    /// From the first byte of the answer.
    std::optional<Clock::time_point> writeUntil_;
    std::string unread_;
    /// What `read` has given of it.
    std::size_t position_ = 0;
    bool isEnded_ = false;
};

/// The server of the library with these connections, each of which serves one request.
class LimitedServer final : public httplib::Server {
  public:
    explicit LimitedServer(const Limits& limits) : connections_(limits) {}

    [[nodiscard]] Connections& connections() noexcept { return connections_; }

  private:
    bool process_and_close_socket(socket_t socket) override {
        const auto client = connections_.add(socket);
        const int yes = 1;
        ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
        ClientStream stream(connections_, *client);
        bool isClosed = false;
        const bool isServed = stream.readHead() && process_request(stream, true, isClosed, nullptr);
        ::shutdown(socket, SHUT_RDWR);
        ::close(socket);
        connections_.remove(client);
        return isServed;
    }

    Connections connections_;
};

/// The threads for the connections. The server accepts no more of them than there are threads.
class ConnectionThreads final : public httplib::TaskQueue {
  public:
    explicit ConnectionThreads(Connections& connections)
        : connections_(&connections), threads_(connections.limits().connections) {}

    void enqueue(std::function<void()> task) override {
        connections_->makeRoom();
        threads_.enqueue(std::move(task));
    }
    void shutdown() override { threads_.shutdown(); }

  private:
    Connections* connections_;
    httplib::ThreadPool threads_;
};

HTTPRequest requestFrom(const httplib::Request& given) {
    HTTPRequest request{.method = given.method, .path = given.path, .body = given.body};
    request.query.insert(given.params.begin(), given.params.end());
    for (const auto& [name, value] : given.headers) {
        std::string lowerCaseName;
        for (const char c : name)
            lowerCaseName += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        // What the server library adds itself, of the connection.
        if (lowerCaseName == "remote_addr" || lowerCaseName == "remote_port" || lowerCaseName == "local_addr" ||
            lowerCaseName == "local_port")
            continue;
        request.headers.emplace(std::move(lowerCaseName), value);
    }
    return request;
}

void write(const HTTPResponse& answer, httplib::Response& response) {
    response.status = static_cast<int>(answer.status);
    for (const auto& [name, value] : answer.headers)
        response.set_header(name, value);
    // The library says otherwise to a HEAD.
    response.set_header("Accept-Ranges", "none");
    if (answer.body.empty()) return;
    response.set_content(answer.body, answer.contentType);
}

/// What is answered to a request that the server library gives up on itself.
UserErrorMessage messageFor(int status) {
    switch (static_cast<HTTPStatus>(status)) {
        case HTTPStatus::contentTooLarge:
            return {"The request is too large.", fmt::format("It may have {} KiB.", largestBody / 1024)};
        default: return UserErrorMessage::titleOnly("The request cannot be read.");
    }
}

}  // namespace

struct LoopbackServer::Implementation {
    explicit Implementation(const Limits& limits) : server(limits) {}

    LimitedServer server;
    std::uint16_t port = 0;
    socket_t listening = -1;
    /// Counted down when `stop` would be heard.
    std::latch running{1};
};

LoopbackServer::LoopbackServer(std::uint16_t port, const Limits& limits)
    : implementation_(std::make_unique<Implementation>(limits)) {
    httplib::Server& server = implementation_->server;
    // Not the options that the library takes by itself: they let another program listen on the same port.
    server.set_socket_options([this](socket_t socket) {
        implementation_->listening = socket;
        const int yes = 1;
        ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
    server.set_address_family(AF_INET);
    server.set_payload_max_length(largestBody);
    if (port == 0) {
        const int found = server.bind_to_any_port(address);
        if (found <= 0) throw Failure(fmt::format("there is no free port on {}", address));
        port = static_cast<std::uint16_t>(found);
    } else if (!server.bind_to_port(address, port)) {
        throw Failure(fmt::format("port {} of {} cannot be used: another program listens there, or it is reserved",
                                  port, address));
    }
    implementation_->port = port;
    // The library lets five wait. A browser that opens more connections at once would try again after a second.
    ::listen(implementation_->listening, SOMAXCONN);
}

LoopbackServer::~LoopbackServer() = default;

std::uint16_t LoopbackServer::port() const noexcept {
    return implementation_->port;
}

bool LoopbackServer::serve(Admit admit, Answer answer) {
    httplib::Server& server = implementation_->server;
    httplib::Headers headers;
    for (const auto& [name, value] : commonHeaders())
        headers.emplace(name, value);
    server.set_default_headers(std::move(headers));
    server.set_pre_routing_handler([&](const httplib::Request& request, httplib::Response& response) {
        const auto refusal = admit(requestFrom(request));
        if (!refusal) return httplib::Server::HandlerResponse::Unhandled;
        write(*refusal, response);
        return httplib::Server::HandlerResponse::Handled;
    });
    const auto handle = [&](const httplib::Request& request, httplib::Response& response) {
        write(answer(requestFrom(request)), response);
    };
    server.Get(".*", handle);
    server.Post(".*", handle);
    server.set_error_handler([](const httplib::Request& /*request*/, httplib::Response& response) {
        if (response.has_header("Content-Type")) return;
        write(HTTPResponse::error(static_cast<HTTPStatus>(response.status), messageFor(response.status)), response);
    });
    // The library asks for its threads when it is past the point from which `stop` is heard.
    server.new_task_queue = [this] {
        auto threads = std::make_unique<ConnectionThreads>(implementation_->server.connections());
        implementation_->running.count_down();
        return threads.release();
    };
    return server.listen_after_bind();
}

void LoopbackServer::stop() {
    implementation_->running.wait();
    implementation_->server.stop();
    implementation_->server.connections().stop();
}

}  // namespace kestrel::host
