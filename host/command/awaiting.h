#pragma once

#include <kestrel/platform/system.h>
#include <kestrel/reactive/publisher.h>
#include <expected>
#include <optional>
#include <utility>
#include <vector>

namespace kestrel::host {

/// What a publisher sent until its end, or how it failed. Runs the main loop until then.
template <class Value, class Failing>
[[nodiscard]] std::expected<std::vector<Value>, Failing> awaited(const AnyPublisher<Value, Failing>& publisher) {
    std::vector<Value> values;
    std::optional<Completion<Failing>> end;
    bool isRunning = false;
    const auto subscription = publisher.sink([&](const Value& value) { values.push_back(value); },
                                             [&](const Completion<Failing>& completion) {
                                                 end = completion;
                                                 if (isRunning) platform::quitMainLoop();
                                             });
    if (!end) {
        isRunning = true;
        platform::runMainLoop();
    }
    if (end->failure()) return std::unexpected(*end->failure());
    return values;
}

}  // namespace kestrel::host
