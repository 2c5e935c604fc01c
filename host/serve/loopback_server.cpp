#include <fmt/format.h>
#include <host/failure.h>
#include <host/serve/loopback_server.h>
#include <httplib.h>

#include <latch>
#include <utility>

namespace kestrel::host {
namespace {

constexpr const char* address = "127.0.0.1";
constexpr std::size_t largestBody = std::size_t{64} * 1024;
constexpr int patience = 5;
constexpr std::size_t threadCount = 8;

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
    if (answer.body.empty()) return;
    // Given in parts, which the library does not compress: that takes longer than to send it within a machine.
    response.set_content_provider(
        answer.body.size(), answer.contentType,
        [body = answer.body](std::size_t offset, std::size_t length, httplib::DataSink& sink) {
            return sink.write(body.data() + offset, length);
        });
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
    httplib::Server server{};
    std::uint16_t port = 0;
    socket_t listening = -1;
    /// Counted down when `stop` would be heard.
    std::latch running{1};
};

LoopbackServer::LoopbackServer(std::uint16_t port) : implementation_(std::make_unique<Implementation>()) {
    httplib::Server& server = implementation_->server;
    // Not the options that the library takes by itself: they let another program listen on the same port.
    server.set_socket_options([this](socket_t socket) {
        implementation_->listening = socket;
        const int yes = 1;
        ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
    server.set_address_family(AF_INET);
    server.set_keep_alive_max_count(1);
    server.set_keep_alive_timeout(patience);
    server.set_read_timeout(patience);
    server.set_write_timeout(patience);
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
        auto threads = std::make_unique<httplib::ThreadPool>(threadCount);
        implementation_->running.count_down();
        return threads.release();
    };
    return server.listen_after_bind();
}

void LoopbackServer::stop() {
    implementation_->running.wait();
    implementation_->server.stop();
}

}  // namespace kestrel::host
