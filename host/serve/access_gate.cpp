#include <fmt/format.h>
#include <host/accounts/secrets.h>
#include <host/serve/access_gate.h>

#include <algorithm>
#include <string_view>

namespace kestrel::host {
namespace {

constexpr std::string_view host = "127.0.0.1";
constexpr std::uint16_t standardPort = 80;
constexpr std::size_t longestPath = 1024;

HTTPResponse refused(const HTTPRequest& request, HTTPStatus status, const UserErrorMessage& message) {
    return request.wantsDocument() ? HTTPResponse::errorPage(status, message) : HTTPResponse::error(status, message);
}

HTTPResponse forbidden(const HTTPRequest& request, std::string reason) {
    return refused(request, HTTPStatus::forbidden, {"This is not for you.", std::move(reason)});
}

bool isChange(const HTTPRequest& request) {
    return request.method != "GET" && request.method != "HEAD";
}

/// Whether the browser says that the request comes from this server's page or from the user; true for what is no
/// browser and says nothing.
bool isOfOwnPage(const HTTPRequest& request) {
    if (!request.headers.contains("sec-fetch-site")) return true;
    const auto site = request.header("sec-fetch-site");
    return site == "same-origin" || site == "none";
}

bool isJSON(const HTTPRequest& request) {
    constexpr std::string_view json = "application/json";
    const auto type = request.header("content-type");
    return type && type->starts_with(json) && (type->size() == json.size() || type->at(json.size()) == ';');
}

}  // namespace

AccessGate::AccessGate(std::uint16_t port)
    : authority_(port == standardPort ? std::string(host) : fmt::format("{}:{}", host, port)),
      token_(newToken()),
      cookieName_(fmt::format("kestrel-{}", port)),
      cookie_(newToken()) {}

std::string AccessGate::url() const {
    return fmt::format("http://{}/?token={}", authority_, token_);
}

bool AccessGate::hasCookie(const HTTPRequest& request) const {
    constexpr std::string_view blanks = " \t";
    const auto [first, behind] = request.headers.equal_range("cookie");
    for (auto header = first; header != behind; ++header) {
        std::string_view rest = header->second;
        while (!rest.empty()) {
            std::string_view pair = rest.substr(0, rest.find(';'));
            rest.remove_prefix(std::min(pair.size() + 1, rest.size()));
            pair.remove_prefix(std::min(pair.find_first_not_of(blanks), pair.size()));
            const auto equals = pair.find('=');
            if (equals == pair.npos || pair.substr(0, equals) != cookieName_) continue;
            if (isSameToken(cookie_, pair.substr(equals + 1))) return true;
        }
    }
    return false;
}

std::optional<HTTPResponse> AccessGate::answer(const HTTPRequest& request) const {
    if (request.header("host") != authority_)
        return forbidden(request, fmt::format("This server is called {} and nothing else.", authority_));

    // Whoever knows the token may come from anywhere: a terminal, a mail program, a list of bookmarks.
    if (request.method == "GET" && request.path == "/") {
        if (const auto token = request.parameter("token"); token && isSameToken(token_, *token)) {
            return HTTPResponse{.status = HTTPStatus::seeOther,
                                .headers = {{"Location", "/"},
                                            {"Set-Cookie", fmt::format("{}={}; Path=/; HttpOnly; SameSite=Strict",
                                                                       cookieName_, cookie_)}}};
        }
    }
    if (!isOfOwnPage(request)) return forbidden(request, "Another page asked for it.");
    if (!hasCookie(request))
        return forbidden(request, "Open the address that `kestrel serve` printed when it started, with its token.");
    if (request.path.size() > longestPath)
        return refused(request, HTTPStatus::uriTooLong, UserErrorMessage::titleOnly("The address is too long."));

    if (!isChange(request)) return std::nullopt;
    if (request.header("origin") != "http://" + authority_) return forbidden(request, "Another page asked for it.");
    if (request.method != "POST") {
        HTTPResponse response = refused(request, HTTPStatus::methodNotAllowed,
                                        {"That cannot be done here.", "The methods are GET, HEAD and POST."});
        response.headers.emplace_back("Allow", "GET, HEAD, POST");
        return response;
    }
    if (!isJSON(request)) {
        return refused(request, HTTPStatus::unsupportedMediaType,
                       {"The request cannot be read.", "A change is sent as application/json."});
    }
    // A body of a length that is not known in advance could grow without an end.
    if (!request.header("content-length") || request.headers.contains("transfer-encoding")) {
        return refused(request, HTTPStatus::lengthRequired,
                       {"The request cannot be read.", "Its body has to come with its length."});
    }
    return std::nullopt;
}

}  // namespace kestrel::host
