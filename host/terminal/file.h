#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace kestrel::host {

/// All bytes of a file. A Failure names the file and what is wrong with it.
[[nodiscard]] std::string readFile(const std::filesystem::path& file);

/// The bytes of a file or of standard input, line by line as they arrive. A line may hold any bytes and be of any
/// length. A Failure names the file and what is wrong with it.
class LineSource {
  public:
    /// Standard input when there is no file.
    explicit LineSource(const std::optional<std::string>& file);
    ~LineSource();
    LineSource(const LineSource&) = delete;
    LineSource& operator=(const LineSource&) = delete;

    /// Whether the next line is at hand, so that asking for it does not wait for more input.
    [[nodiscard]] bool hasLine();
    /// The next line without its line feed, valid until the next call; absent at the end. What stands behind the last
    /// line feed is a line unless it is empty.
    [[nodiscard]] std::optional<std::string_view> next();
    /// All that has not been read yet.
    [[nodiscard]] std::string rest();

  private:
    /// Reads some more; false at the end of the input.
    bool readMore();

    std::string name_;
    int descriptor_;
    std::string buffer_;
    /// Where the next line starts, and up to where it is known to have no line feed.
    std::size_t start_ = 0;
    std::size_t searched_ = 0;
};

/// Replaces a file as a whole, or makes it: who reads it meanwhile, or afterwards when the power fails, sees the old
/// text or the new one. The file keeps its access rights; a symbolic link stays one. A Failure names the file.
void writeFileAtomically(const std::filesystem::path& file, std::string_view text);

}  // namespace kestrel::host
