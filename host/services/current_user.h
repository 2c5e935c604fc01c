#pragma once

#include <kestrel/reactive/pass_through_subject.h>
#include <kestrel/reactive/void.h>
#include <optional>
#include <string>
#include <utility>

namespace kestrel::host {

/// Whose eyes the services look through: the name of a user of the database, or its name to sign in with. Shared by the
/// services and whoever signs users in and out. For use on the main thread.
class CurrentUser {
  public:
    explicit CurrentUser(std::optional<std::string> name) : name_(std::move(name)) {}

    /// Absent while nobody is signed in.
    [[nodiscard]] const std::optional<std::string>& name() const noexcept { return name_; }
    void set(std::optional<std::string> name) {
        name_ = std::move(name);
        changes_.send(Void{});
    }
    /// A value after each change.
    [[nodiscard]] AnyPublisher<Void> changes() const { return changes_.eraseToAnyPublisher(); }

  private:
    std::optional<std::string> name_;
    PassThroughSubject<Void> changes_;
};

}  // namespace kestrel::host
