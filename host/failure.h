#pragma once

#include <stdexcept>
#include <string>

namespace kestrel::host {

/// What the command was asked for cannot be done. The text is one line for people, without the command's name in front;
/// it may quote data as it is, for whoever prints it makes it fit for a terminal. Exit code 1.
class Failure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The command was called in a way that it does not have. Exit code 2.
class WrongUsage : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace kestrel::host
