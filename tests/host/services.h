#pragma once

#include "people.h"

#include <host/services/host_services_module.h>
#include <kestrel/session/service_errors.h>
#include <kestrel/testing/test_services_module.h>

/// What the tests of the host's services share.
namespace kestrel::host::test {

/// What a publisher sent while it was subscribed to, and how it ended.
template <class Output, class Error>
struct Answer {
    std::vector<Output> values{};
    std::optional<Error> failure{};
    bool hasFinished = false;
};

template <class Output, class Error>
Answer<Output, Error> answerOf(const AnyPublisher<Output, Error>& publisher) {
    Answer<Output, Error> answer;
    const auto subscription = publisher.sink([&](const Output& value) { answer.values.push_back(value); },
                                             [&](const Completion<Error>& completion) {
                                                 answer.failure = completion.failure();
                                                 answer.hasFinished = completion.isFinished();
                                             });
    return answer;
}
/// The one value of a publisher that finishes behind it.
template <class Output, class Error>
Output valueFrom(const AnyPublisher<Output, Error>& publisher) {
    auto answer = answerOf(publisher);
    if (answer.values.size() != 1 || !answer.hasFinished)
        throw std::runtime_error("the service did not give one value");
    return std::move(answer.values.front());
}
/// Why a publisher failed; absent when it did not.
template <class Output, class Error>
std::optional<Error> failureFrom(const AnyPublisher<Output, Error>& publisher) {
    return answerOf(publisher).failure;
}
/// The text of a failure that the host carries in an error.
inline std::string textIn(const AnyError& error) {
    const auto* failure = error.as<Failure>();
    return failure == nullptr ? "no failure of the host" : failure->what();
}
/// The text of the host's refusal; empty for any other end.
inline std::string refusalIn(const std::optional<ReadError>& error) {
    return error && error->underlyingError() ? textIn(*error->underlyingError()) : "";
}
inline std::string refusalIn(const std::optional<UpdateError>& error) {
    return error && error->underlyingError() ? textIn(*error->underlyingError()) : "";
}

/// The services over a database, looked at by a user, on a desktop whose time stands still.
class ServedDatabase {
  public:
    explicit ServedDatabase(const Path& file, std::optional<std::string> user)
        : user_(std::make_shared<CurrentUser>(std::move(user))),
          runtime_(desktop_, HostServicesModule{.database = file, .user = user_}) {}

    [[nodiscard]] Runtime& operator*() noexcept { return runtime_; }
    template <class Protocol>
    [[nodiscard]] auto& operator[](ServiceKey<Protocol> key) {
        return runtime_[key];
    }
    [[nodiscard]] CurrentUser& user() noexcept { return *user_; }
    [[nodiscard]] VirtualMainQueue& time() noexcept { return *desktop_.mainQueue; }

  private:
    TestServicesModule desktop_;
    std::shared_ptr<CurrentUser> user_;
    Runtime runtime_;
};

}  // namespace kestrel::host::test
