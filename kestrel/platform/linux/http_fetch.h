#pragma once

#include <kestrel/reactive/cancellable.h>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace kestrel::platform {

struct HTTPRequest {
    /// http or https; a redirection does not lead from the second to the first.
    std::string url{};
    /// "Name: value" without line ends.
    std::vector<std::string> headers{};
    std::string userAgent{};
    /// In seconds, for everything: looking up the name, connecting, the whole answer.
    double timeout{};
    /// In bytes, unpacked.
    std::size_t largestAnswer{};
};

struct HTTPAnswer {
    /// Why there is none, in English; empty when there is one.
    std::string failure{};
    /// libcurl's number of that.
    int failureCode{};
    /// HTTP's.
    int status{};
    std::string body{};
};

/// Sends a GET request, driven by the main loop. The handler is called once, later, on the main thread; not at all when
/// the result is cancelled or destroyed before, which closes the connection. For use on the main thread.
[[nodiscard]] AnyCancellable fetch(const HTTPRequest& request, std::move_only_function<void(HTTPAnswer)> handler);

}  // namespace kestrel::platform
