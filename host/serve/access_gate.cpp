#include <fmt/format.h>
#include <host/accounts/secrets.h>
#include <host/serve/access_gate.h>

#include <string_view>

namespace kestrel::host {
namespace {

constexpr std::string_view host = "127.0.0.1";
constexpr std::uint16_t standardPort = 80;
constexpr std::size_t longestPath = 1024;
constexpr const char* tokenHeader = "x-kestrel-token";

HTTPResponse refused(const HTTPRequest& request, HTTPStatus status, const UserErrorMessage& message) {
    return request.wantsDocument() ? HTTPResponse::errorPage(status, message) : HTTPResponse::error(status, message);
}

HTTPResponse forbidden(const HTTPRequest& request, std::string reason) {
    return refused(request, HTTPStatus::forbidden, {"This is not for you.", std::move(reason)});
}

bool isChange(const HTTPRequest& request) {
    return request.method != "GET" && request.method != "HEAD";
}

/// Whether it asks for the page, or for a file of it, and for nothing of the database.
bool isOfPage(const HTTPRequest& request) {
    return !isChange(request) && !request.path.starts_with("/api");
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
    : authority_(port == standardPort ? std::string(host) : fmt::format("{}:{}", host, port)), token_(newToken()) {}

std::string AccessGate::url() const {
    return fmt::format("http://{}/?token={}", authority_, token_);
}

std::optional<HTTPResponse> AccessGate::answer(const HTTPRequest& request) const {
    if (request.header("host") != authority_)
        return forbidden(request, fmt::format("This server is called {} and nothing else.", authority_));

    if (isOfPage(request)) {
        // To be opened by a link is all that another page can do with it: it is shown in no frame and read by nobody.
        if (!request.wantsDocument() && !isOfOwnPage(request)) return forbidden(request, "Another page asked for it.");
    } else {
        if (!isOfOwnPage(request)) return forbidden(request, "Another page asked for it.");
        const auto token = request.header(tokenHeader);
        if (!token || !isSameToken(token_, *token))
            return forbidden(request, "Open the address that `kestrel serve` printed when it started, with its token.");
    }
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
