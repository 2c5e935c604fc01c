#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kestrel::host {

/// A line that the user types behind a question, without its end; absent at the end of the input. The question is asked
/// on standard error, and only when standard input is a terminal.
[[nodiscard]] std::optional<std::string> ask(std::string_view question);
/// The same for what nobody is to see: on a terminal it is not shown.
[[nodiscard]] std::optional<std::string> askForSecret(std::string_view question);

}  // namespace kestrel::host
