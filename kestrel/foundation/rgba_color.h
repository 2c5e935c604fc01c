#pragma once

namespace kestrel {

/// A colour by its components, each from 0 to 1 in the sRGB colour space; alpha 1 is opaque.
struct RGBAColor {
    using Coded = void;

    double red{};
    double green{};
    double blue{};
    double alpha{1};

    friend bool operator==(const RGBAColor&, const RGBAColor&) = default;
};

}  // namespace kestrel
