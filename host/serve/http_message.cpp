#include <fmt/format.h>
#include <host/serve/http_message.h>
#include <host/terminal/json_object.h>

namespace kestrel::host {
namespace {

/// A text within a document of HTML.
std::string escapedHTML(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        switch (c) {
            case '&': escaped += "&amp;"; break;
            case '<': escaped += "&lt;"; break;
            case '>': escaped += "&gt;"; break;
            case '"': escaped += "&quot;"; break;
            case '\'': escaped += "&#39;"; break;
            default: escaped += c;
        }
    }
    return escaped;
}

}  // namespace

std::optional<std::string_view> HTTPRequest::header(const std::string& lowerCaseName) const {
    const auto [first, behind] = headers.equal_range(lowerCaseName);
    if (first == behind || std::next(first) != behind) return std::nullopt;
    return first->second;
}

std::optional<std::string_view> HTTPRequest::parameter(const std::string& key) const {
    const auto found = query.lower_bound(key);
    if (found == query.end() || found->first != key) return std::nullopt;
    return found->second;
}

bool HTTPRequest::wantsDocument() const {
    if (const auto destination = header("sec-fetch-dest")) return *destination == "document";
    const auto accepted = header("accept");
    return accepted && accepted->find("text/html") != accepted->npos;
}

HTTPResponse HTTPResponse::json(std::string text) {
    return {.contentType = "application/json; charset=utf-8", .body = std::move(text)};
}

HTTPResponse HTTPResponse::error(HTTPStatus status, const UserErrorMessage& message) {
    JSONObject object;
    object.add("title", message.title.get());
    if (const auto& more = message.message.get()) object.add("message", *more);
    HTTPResponse response = json(object.json());
    response.status = status;
    return response;
}

HTTPResponse HTTPResponse::errorPage(HTTPStatus status, const UserErrorMessage& message) {
    const std::string title = escapedHTML(message.title.get());
    return {.status = status,
            .contentType = "text/html; charset=utf-8",
            .body = fmt::format("<!DOCTYPE html>\n<html lang=\"en\">\n<meta charset=\"utf-8\">\n"
                                "<meta name=\"color-scheme\" content=\"light dark\">\n"
                                "<title>{}</title>\n<h1>{}</h1>\n<p>{}</p>\n</html>\n",
                                title, title, escapedHTML(message.message.get().value_or("")))};
}

const std::vector<std::pair<std::string, std::string>>& commonHeaders() {
    static const std::vector<std::pair<std::string, std::string>> headers{
        {"Content-Security-Policy",
         "default-src 'none'; script-src 'self'; style-src 'self'; connect-src 'self'; img-src 'self' data:; "
         "form-action 'none'; base-uri 'none'; frame-ancestors 'none'"},
        {"X-Content-Type-Options", "nosniff"},
        {"Referrer-Policy", "no-referrer"},
        {"Cache-Control", "no-store"},
        {"Cross-Origin-Opener-Policy", "same-origin"},
        {"Cross-Origin-Resource-Policy", "same-origin"}};
    return headers;
}

}  // namespace kestrel::host
