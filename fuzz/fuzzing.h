#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

/// What the fuzz targets share. A target is one source file with `LLVMFuzzerTestOneInput`: whatever the bytes are, the
/// promises that it names hold. A promise that does not hold stops the program.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace kestrel::fuzzing {

/// Says what was promised, shows what there was instead, and stops.
[[noreturn]] inline void broken(std::string_view promise, std::string_view found = {}) {
    std::fprintf(stderr, "BROKEN PROMISE: %.*s\n%.*s\n", static_cast<int>(promise.size()), promise.data(),
                 static_cast<int>(found.size()), found.data());
    std::abort();
}

inline void require(bool holds, std::string_view promise, std::string_view found = {}) {
    if (!holds) broken(promise, found);
}
/// With what shows what there was instead.
template <std::invocable Show>
void require(bool holds, std::string_view promise, Show&& show) {
    if (!holds) broken(promise, show());
}

inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

/// Bytes that are read as a script, from front to back; behind their end there are only zeros.
class Script {
  public:
    explicit Script(std::string_view bytes) : bytes_(bytes) {}

    [[nodiscard]] bool atEnd() const { return at_ == bytes_.size(); }
    unsigned next() { return atEnd() ? 0U : static_cast<unsigned char>(bytes_[at_++]); }
    /// At most so many bytes, as they stand.
    std::string_view take(std::size_t count) {
        const std::string_view taken = bytes_.substr(at_, count);
        at_ += taken.size();
        return taken;
    }
    std::string_view rest() { return take(bytes_.size()); }

  private:
    std::string_view bytes_;
    std::size_t at_ = 0;
};

}  // namespace kestrel::fuzzing
