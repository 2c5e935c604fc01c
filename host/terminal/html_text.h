#pragma once

#include <string>
#include <string_view>

namespace kestrel::host {

/// The text of an HTML fragment, for lists: without marks, comments, scripts and styles, each block on a line of its
/// own, runs of white space as one blank, and character references as what they stand for. Takes any text and never
/// fails; what is no mark stays as it is.
[[nodiscard]] std::string plainTextOfHTML(std::string_view html);

}  // namespace kestrel::host
