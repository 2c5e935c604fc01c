#pragma once

#include <string_view>

namespace kestrel {

/// The name of a type, without its namespaces and template arguments, as the compiler spells it.
template <class T>
[[nodiscard]] consteval std::string_view typeName() {
    std::string_view text = __PRETTY_FUNCTION__;
    text = text.substr(text.find("T = ") + 4);
    text = text.substr(0, text.find_first_of(";]<"));
    const auto colon = text.find_last_of(':');
    return colon == std::string_view::npos ? text : text.substr(colon + 1);
}

}  // namespace kestrel
