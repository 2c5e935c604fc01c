#pragma once

namespace kestrel {

/// The value of a publisher that only says when: there is nothing more to say.
struct Void {
    friend constexpr bool operator==(Void, Void) = default;
};

}  // namespace kestrel
