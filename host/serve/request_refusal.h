#pragma once

#include <host/serve/http_message.h>
#include <kestrel/session/user_error_message.h>
#include <exception>
#include <utility>

namespace kestrel::host {

/// A request is not done as it was asked for, and the user is told why.
class RequestRefusal : public std::exception {
  public:
    RequestRefusal(HTTPStatus httpStatus, UserErrorMessage userMessage)
        : status_(httpStatus), message_(std::move(userMessage)) {}

    [[nodiscard]] HTTPStatus status() const noexcept { return status_; }
    [[nodiscard]] const UserErrorMessage& message() const noexcept { return message_; }
    [[nodiscard]] const char* what() const noexcept override { return message_.title.get().c_str(); }

  private:
    HTTPStatus status_;
    UserErrorMessage message_;
};

}  // namespace kestrel::host
