#pragma once

#include <kestrel/session/user_error_message.h>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Requests and responses of HTTP as plain values, without the library that reads and writes them.
namespace kestrel::host {

enum class HTTPStatus : int {
    ok = 200,
    badRequest = 400,
    unauthorized = 401,
    forbidden = 403,
    notFound = 404,
    methodNotAllowed = 405,
    conflict = 409,
    lengthRequired = 411,
    contentTooLarge = 413,
    uriTooLong = 414,
    unsupportedMediaType = 415,
    unprocessableContent = 422,
    internalServerError = 500,
};

struct HTTPRequest {
    std::string method{};
    /// Decoded, without the query.
    std::string path{};
    /// Decoded.
    std::multimap<std::string, std::string> query{};
    /// The names in lower case.
    std::multimap<std::string, std::string> headers{};
    std::string body{};

    /// A header that is given once; absent also when it is given several times.
    [[nodiscard]] std::optional<std::string_view> header(const std::string& lowerCaseName) const;
    /// A key of the query; the first of several.
    [[nodiscard]] std::optional<std::string_view> parameter(const std::string& key) const;
    /// Whether a document is asked for, to be shown by itself, and not data for a page.
    [[nodiscard]] bool wantsDocument() const;
};

struct HTTPResponse {
    HTTPStatus status = HTTPStatus::ok;
    std::string contentType{};
    std::string body{};
    /// Beside those that every response has.
    std::vector<std::pair<std::string, std::string>> headers{};

    [[nodiscard]] static HTTPResponse json(std::string text);
    /// The message as a JSON object, {"title", "message"}.
    [[nodiscard]] static HTTPResponse error(HTTPStatus status, const UserErrorMessage& message);
    /// The message as a page of its own.
    [[nodiscard]] static HTTPResponse errorPage(HTTPStatus status, const UserErrorMessage& message);
};

/// What every response says: that nothing but this server's own files is loaded, that nothing is stored, and that
/// nobody is told where the user came from.
[[nodiscard]] const std::vector<std::pair<std::string, std::string>>& commonHeaders();

}  // namespace kestrel::host
