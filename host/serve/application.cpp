#include <fmt/format.h>
#include <host/failure.h>
#include <host/serve/application.h>
#include <host/serve/board_json.h>
#include <host/serve/page_files.h>
#include <host/serve/record_json.h>
#include <host/serve/request_refusal.h>
#include <host/serve/stage_change.h>
#include <host/services/records_service.h>
#include <host/services/value_of.h>
#include <host/terminal/day_text.h>
#include <host/terminal/json_object.h>
#include <kestrel/services/system_clock_service.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <new>
#include <optional>
#include <string_view>

namespace kestrel::host {
namespace {

constexpr std::string_view pageName = "index.html";
constexpr std::string_view assets = "/assets/";
constexpr std::string_view recordPages = "/record/";
constexpr std::string_view recordData = "/api/record/";

std::string_view contentTypeOf(std::string_view fileName) {
    struct Type {
        std::string_view ending;
        std::string_view name;
    };
    constexpr std::array types{Type{".html", "text/html; charset=utf-8"}, Type{".css", "text/css; charset=utf-8"},
                               Type{".js", "text/javascript; charset=utf-8"}, Type{".svg", "image/svg+xml"}};
    const auto* found = std::ranges::find_if(types, [&](const Type& type) { return fileName.ends_with(type.ending); });
    return found == types.end() ? "application/octet-stream" : found->name;
}

std::optional<HTTPResponse> pageFile(std::string_view name) {
    const auto files = pageFiles();
    const auto found = std::ranges::find(files, name, &PageFile::name);
    if (found == files.end()) return std::nullopt;
    return HTTPResponse{.contentType = std::string(contentTypeOf(name)), .body = std::string(found->content)};
}

bool isPage(std::string_view path) {
    return path == "/" || path == "/contacts" || path.starts_with(recordPages);
}

HTTPResponse notThere() {
    return HTTPResponse::error(HTTPStatus::notFound,
                               {"There is nothing here.", "The address is not one of this page."});
}

HTTPResponse wrongMethod(std::string allowed) {
    HTTPResponse response =
        HTTPResponse::error(HTTPStatus::methodNotAllowed, {"That cannot be done here.", "It is for " + allowed + "."});
    response.headers.emplace_back("Allow", std::move(allowed));
    return response;
}

/// "there is no such user" as the beginning of a sentence, with an end.
std::string sentence(std::string text) {
    if (!text.empty()) text.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(text.front())));
    if (!text.empty() && text.back() != '.') text += '.';
    return text;
}

HTTPResponse failure(HTTPStatus status, std::string title, const std::exception& problem) {
    return HTTPResponse::error(status, {std::move(title), sentence(problem.what())});
}

AnyObjectID recordIn(const HTTPRequest& request) {
    const std::string text = request.path.substr(recordData.size());
    const auto id = AnyObjectID::parse(text);
    if (!id) throw WrongUsage(fmt::format("\"{}\" is the identifier of no record", text));
    return *id;
}

}  // namespace

/// Data behind a path, or behind all paths that begin with it.
struct Application::Route {
    std::string_view path;
    bool isPrefix;
    bool isChange;
    std::string (*answer)(const HTTPRequest& request, Runtime& runtime, const CalendarMoment& at);

    [[nodiscard]] bool isOf(std::string_view requested) const {
        return isPrefix ? requested.starts_with(path) : requested == path;
    }
};

HTTPResponse Application::answer(const HTTPRequest& request) {
    constexpr std::array routes{Route{"/api/user", false, false,
                                      [](const HTTPRequest&, Runtime& runtime, const CalendarMoment&) {
                                          const User user = valueOf(runtime[host_services::records].fetchUser());
                                          return JSONObject().add("name", shownName(user)).json();
                                      }},
                                Route{"/api/board", false, false, boardJSON},
                                Route{"/api/column", false, false, columnJSON},
                                Route{"/api/contacts", false, false,
                                      [](const HTTPRequest& asked, Runtime& runtime, const CalendarMoment&) {
                                          return contactsJSON(std::string(asked.parameter("search").value_or("")),
                                                              runtime);
                                      }},
                                Route{recordData, true, false,
                                      [](const HTTPRequest& asked, Runtime& runtime, const CalendarMoment& at) {
                                          return recordJSON(recordIn(asked), runtime, at);
                                      }},
                                Route{"/api/stage-change/options", false, true,
                                      [](const HTTPRequest& asked, Runtime& runtime, const CalendarMoment& at) {
                                          return stageChangeJSON(asked.body, runtime, at);
                                      }},
                                Route{"/api/stage-change", false, true,
                                      [](const HTTPRequest& asked, Runtime& runtime, const CalendarMoment& at) {
                                          return changeStage(asked.body, runtime, at);
                                      }}};
    const auto* route = std::ranges::find_if(routes, [&](const Route& one) { return one.isOf(request.path); });
    const bool isChange = request.method == "POST";
    if (route != routes.end()) {
        if (route->isChange != isChange) return wrongMethod(route->isChange ? "POST" : "GET, HEAD");
        return data(request, *route);
    }
    std::optional<HTTPResponse> file;
    if (isPage(request.path)) {
        file = pageFile(pageName);
    } else if (request.path.starts_with(assets)) {
        file = pageFile(std::string_view(request.path).substr(assets.size()));
    }
    if (!file) return notThere();
    return isChange ? wrongMethod("GET, HEAD") : *std::move(file);
}

HTTPResponse Application::data(const HTTPRequest& request, const Route& route) {
    try {
        requireUser_();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& problem) {
        return failure(HTTPStatus::unauthorized, "Your session has ended.", problem);
    }
    try {
        const User user = valueOf((*runtime_)[host_services::records].fetchUser());
        const CalendarMoment at{.calendar = calendarOf(user), .now = (*runtime_)[services::systemClock].now()};
        return HTTPResponse::json(route.answer(request, *runtime_, at));
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const RequestRefusal& refusal) {
        return HTTPResponse::error(refusal.status(), refusal.message());
    } catch (const RecordMissing& problem) {
        return failure(HTTPStatus::notFound, "It is not there.", problem);
    } catch (const WrongUsage& problem) {
        return failure(HTTPStatus::badRequest, "The request means nothing.", problem);
    } catch (const Failure& problem) {
        return failure(HTTPStatus::conflict, "That could not be done.", problem);
    } catch (const std::exception& problem) {
        return failure(HTTPStatus::internalServerError, "That could not be done.", problem);
    }
}

}  // namespace kestrel::host
