#pragma once

namespace kestrel {

/// A colour by its components, each from 0 to 1 in the sRGB colour space; alpha 1 is opaque.
struct RGBAColor {
    using Coded = void;

    /// From 0 to 1.
    double red{};
    /// From 0 to 1.
    double green{};
    /// From 0 to 1.
    double blue{};
    /// From 0, transparent, to 1, opaque.
    double alpha{1};

    friend bool operator==(const RGBAColor&, const RGBAColor&) = default;
};

}  // namespace kestrel
