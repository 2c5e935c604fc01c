#pragma once

#include <span>
#include <string_view>

namespace kestrel::host {

/// A file of the page, built into the program, so that it is found wherever the program lies.
struct PageFile {
    /// Within host/serve/page: "style.css".
    std::string_view name;
    std::string_view content;
};
/// By name.
[[nodiscard]] std::span<const PageFile> pageFiles();

}  // namespace kestrel::host
