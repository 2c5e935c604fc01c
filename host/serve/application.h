#pragma once

#include <host/serve/http_message.h>
#include <kestrel/runtime/runtime.h>
#include <functional>
#include <string>
#include <utility>

namespace kestrel::host {

/// What is behind the addresses of the page: its files, and as JSON the data that the services of a runtime give the
/// user of that runtime. For use on the main thread.
///
///     GET  /, /contacts, /record/ENTITY/KEY    the page
///     GET  /assets/NAME                        its files
///     GET  /api/user                           who looks
///     GET  /api/board, /api/column             a board, and more cards of one column
///     GET  /api/contacts?search=TEXT           contacts
///     GET  /api/record/ENTITY/KEY              a record's page
///     POST /api/stage-change/options           what a card that is dropped on a column is asked for
///     POST /api/stage-change                   moves it
class Application {
  public:
    /// `requireUser` throws a Failure when whoever was let in may not go on, because a session has ended for example.
    Application(Runtime& runtime, std::function<void()> requireUser)
        : runtime_(&runtime), requireUser_(std::move(requireUser)) {}

    /// Nothing but std::bad_alloc is thrown.
    [[nodiscard]] HTTPResponse answer(const HTTPRequest& request);

  private:
    struct Route;

    [[nodiscard]] HTTPResponse data(const HTTPRequest& request, const Route& route);

    Runtime* runtime_;
    std::function<void()> requireUser_;
};

}  // namespace kestrel::host
