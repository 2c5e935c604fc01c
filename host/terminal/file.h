#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace kestrel::host {

/// All bytes of a file. A Failure names the file and what is wrong with it.
[[nodiscard]] std::string readFile(const std::filesystem::path& file);

/// All bytes that are left on a file descriptor, for standard input. `name` is what a Failure calls it.
[[nodiscard]] std::string readDescriptor(int descriptor, std::string_view name);

/// Replaces a file as a whole, or makes it: who reads it meanwhile, or afterwards when the power fails, sees the old
/// text or the new one. The file keeps its access rights; a symbolic link stays one. A Failure names the file.
void writeFileAtomically(const std::filesystem::path& file, std::string_view text);

}  // namespace kestrel::host
