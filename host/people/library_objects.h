#pragma once

#include <memory>

/// How the objects of the C libraries that parse files are held: they go with their scope.
namespace kestrel::host {

template <auto Release>
struct Releaser {
    template <class T>
    void operator()(T* object) const {
        Release(object);
    }
};
/// Something that a library gave away, released by the function.
template <class T, auto Release>
using Owned = std::unique_ptr<T, Releaser<Release>>;

}  // namespace kestrel::host
