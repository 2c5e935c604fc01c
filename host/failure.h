#pragma once

#include <kestrel/foundation/platform_error.h>
#include <stdexcept>
#include <string>

namespace kestrel::host {

/// What the command was asked for cannot be done. The text is one line for people, without the command's name in front;
/// it may quote data as it is, for whoever prints it makes it fit for a terminal. Exit code 1.
class Failure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// There is no database.
class DatabaseMissing : public Failure {
  public:
    explicit DatabaseMissing(const std::string& file)
        : Failure(file + ": there is no such database; `kestrel import` makes one") {}
};

/// The database has no record of an identifier.
class RecordMissing : public Failure {
  public:
    /// `id` is the identifier's text.
    explicit RecordMissing(const std::string& id) : Failure("there is no " + id) {}
};

/// An identifier is of a record that is not in the database yet.
class RecordUnsaved : public Failure {
  public:
    /// `id` is the identifier's text.
    explicit RecordUnsaved(const std::string& id) : Failure(id + " has not been saved") {}
};

/// A record is there, and of a type that has nothing of what was asked for.
class WrongType : public Failure {
  public:
    using Failure::Failure;
};

/// The database is in order, and so was the question: the answer is no. A record is deleted, or its permissions refuse
/// the user; there is no such user, or nobody is signed in.
class Refusal : public Failure {
  public:
    using Failure::Failure;
};

/// The record's permissions, or a restriction of the user's, do not let it be deleted.
class DeletionRefused : public Refusal {
  public:
    using Refusal::Refusal;
};

/// The command was called in a way that it does not have. Exit code 2.
class WrongUsage : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Services carry both as errors, so that whoever asked can throw them again: AnyError::as tells them.

inline constexpr const char* errorDomain = "KestrelHost";

[[nodiscard]] inline PlatformError platformError(const Failure& failure) {
    return {.domain = errorDomain, .code = 1, .localizedDescription = failure.what()};
}
[[nodiscard]] inline PlatformError platformError(const WrongUsage& problem) {
    return {.domain = errorDomain, .code = 2, .localizedDescription = problem.what()};
}

}  // namespace kestrel::host
