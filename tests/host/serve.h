#pragma once

#include "support.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>
#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstdint>

/// `kestrel serve` as a process, and a client that sends whatever bytes a test wants to.
namespace kestrel::host::test {

struct Reply {
    /// 0 when there was none.
    int status{};
    /// The names in lower case.
    std::multimap<std::string, std::string> headers{};
    std::string body{};

    [[nodiscard]] std::string header(const std::string& name) const {
        const auto found = headers.find(name);
        return found == headers.end() ? "" : found->second;
    }
};

/// A connection to a server on this machine.
class Connection {
  public:
    explicit Connection(std::uint16_t port) : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (::connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
            throw std::runtime_error("nobody listens");
    }
    ~Connection() { ::close(socket_); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// A server that closes early is told of by what it answers.
    void send(std::string_view text) const {
        while (!text.empty()) {
            const auto sent = ::send(socket_, text.data(), text.size(), MSG_NOSIGNAL);
            if (sent <= 0) return;
            text.remove_prefix(static_cast<std::size_t>(sent));
        }
    }
    /// Whether the server has closed it; what it has answered until now is dropped.
    [[nodiscard]] bool isClosed() const {
        std::array<char, 4096> part{};
        for (;;) {
            const auto count = ::recv(socket_, part.data(), part.size(), MSG_DONTWAIT);
            if (count <= 0) return count == 0 || (errno != EAGAIN && errno != EWOULDBLOCK);
        }
    }
    /// What the server answers until it closes the connection.
    [[nodiscard]] Reply reply() const {
        std::string text;
        std::array<char, 4096> part{};
        for (;;) {
            const auto count = ::recv(socket_, part.data(), part.size(), 0);
            if (count <= 0) break;
            text.append(part.data(), static_cast<std::size_t>(count));
        }
        Reply reply;
        const auto end = text.find("\r\n\r\n");
        if (end == text.npos) return reply;
        reply.body = text.substr(end + 4);
        reply.status = std::stoi(text.substr(text.find(' ') + 1, 3));
        std::istringstream lines(text.substr(0, end));
        std::string line;
        std::getline(lines, line);
        while (std::getline(lines, line)) {
            if (line.ends_with('\r')) line.pop_back();
            const auto colon = line.find(": ");
            std::string name = line.substr(0, colon);
            std::ranges::transform(name, name.begin(),
                                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
            reply.headers.emplace(std::move(name), line.substr(colon + 2));
        }
        return reply;
    }

  private:
    int socket_;
};

/// A running `kestrel serve`; ended with its scope.
class Served {
  public:
    explicit Served(std::vector<std::string> arguments, const std::map<std::string, std::string>& environment = {}) {
        arguments.insert(arguments.begin(), {KESTREL_COMMAND, "serve"});
        std::vector<std::string> variables;
        for (char** variable = environ; *variable != nullptr; ++variable) {
            const std::string text = *variable;
            if (!environment.contains(text.substr(0, text.find('=')))) variables.push_back(text);
        }
        for (const auto& [name, value] : environment)
            variables.push_back(name + "=" + value);
        const auto pointers = [](std::vector<std::string>& texts) {
            std::vector<char*> raw;
            for (std::string& text : texts)
                raw.push_back(text.data());
            raw.push_back(nullptr);
            return raw;
        };
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
        const int problem = ::posix_spawn(&child_, KESTREL_COMMAND, &actions, nullptr, pointers(arguments).data(),
                                          pointers(variables).data());
        posix_spawn_file_actions_destroy(&actions);
        ::close(ends[1]);
        if (problem != 0) throw std::runtime_error("the command cannot be started");
        // The server says when it is ready; a server that ends instead closes its end.
        for (char c = 0; ::read(ends[0], &c, 1) == 1 && c != '\n';)
            url_ += c;
        ::close(ends[0]);
        if (!url_.starts_with(start)) {
            (void)end(SIGKILL);
            throw std::runtime_error("the command does not serve: " + url_);
        }
        port_ = static_cast<std::uint16_t>(std::stoi(url_.substr(start.size())));
        token_ = url_.substr(url_.find('=') + 1);
    }
    ~Served() {
        if (child_ != 0) (void)end(SIGKILL);
    }
    Served(const Served&) = delete;
    Served& operator=(const Served&) = delete;

    void send(int signal) const { ::kill(child_, signal); }
    /// The exit code; 128 and the signal's number for one that a signal ended.
    [[nodiscard]] int end(int signal) {
        send(signal);
        int status = 0;
        ::waitpid(child_, &status, 0);
        child_ = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

    [[nodiscard]] const std::string& url() const { return url_; }
    [[nodiscard]] std::uint16_t port() const { return port_; }
    [[nodiscard]] const std::string& token() const { return token_; }
    [[nodiscard]] std::string authority() const { return "127.0.0.1:" + std::to_string(port_); }

    using Headers = std::multimap<std::string, std::string>;
    /// Sends a request of exactly these headers.
    [[nodiscard]] Reply ask(const std::string& requestLine, const Headers& headers, std::string_view body = {}) const {
        std::string text = requestLine + "\r\n";
        for (const auto& [name, value] : headers)
            text.append(name).append(": ").append(value).append("\r\n");
        const Connection connection(port_);
        connection.send(text + "\r\n" + std::string(body));
        return connection.reply();
    }
    /// Asks as the page does.
    [[nodiscard]] Reply get(const std::string& path) const { return ask("GET " + path + " HTTP/1.1", ownHeaders()); }
    [[nodiscard]] Reply post(const std::string& path, std::string_view body) const {
        return ask("POST " + path + " HTTP/1.1", changeHeaders(body.size()), body);
    }
    [[nodiscard]] Headers ownHeaders() const { return {{"Host", authority()}, {"X-Kestrel-Token", token_}}; }
    [[nodiscard]] Headers changeHeaders(std::size_t length) const {
        Headers headers = ownHeaders();
        headers.insert({{"Origin", "http://" + authority()},
                        {"Content-Type", "application/json"},
                        {"Content-Length", std::to_string(length)}});
        return headers;
    }

  private:
    static constexpr std::string_view start = "http://127.0.0.1:";

    pid_t child_ = 0;
    std::string url_;
    std::uint16_t port_ = 0;
    std::string token_;
};

}  // namespace kestrel::host::test
