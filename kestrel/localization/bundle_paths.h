#pragma once

#include <string_view>

namespace kestrel::localization {

/// What the build system knows of the bundle's places; defined in a source that it generates.
struct BundlePaths {
    /// The data directory as seen from the installation prefix, such as "share".
    static const std::string_view dataDirectory;
    /// Absolute: the folder that holds the bundle in the configured installation, and the one in the build tree.
    static const std::string_view installed;
    static const std::string_view built;
};

}  // namespace kestrel::localization
