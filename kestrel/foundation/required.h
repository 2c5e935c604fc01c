#pragma once

#include <kestrel/foundation/fatal.h>
#include <source_location>
#include <string>
#include <string_view>
#include <utility>

namespace kestrel {

/// The pointer or function itself. One that is empty is a mistake in the program: fatal(), saying what is missing.
template <class Pointer>
[[nodiscard]] Pointer required(Pointer pointer, std::string_view what,
                               std::source_location where = std::source_location::current()) {
    if (!pointer) fatal(std::string(what) + " is missing.", where);
    return pointer;
}

}  // namespace kestrel
