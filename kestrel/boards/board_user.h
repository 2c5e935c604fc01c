#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/identity/object_id.h>
#include <cstdint>
#include <string>

namespace kestrel {

/// A user as a board's user picker shows one.
struct BoardUser {
    using Coded = void;

    /// The user.
    ObjectID<User> id;
    /// The name to show.
    std::string name{};
    /// The number beside the name.
    std::int64_t count{};

    friend bool operator==(const BoardUser&, const BoardUser&) = default;
};
extern template struct Codec<BoardUser>;

}  // namespace kestrel
