#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel::localization {

/// A resource bundle that is there and complete.
struct BundleLocation {
    /// The folder with the marker.
    std::filesystem::path directory;
    /// What the marker lists, in alphabetical order.
    std::vector<std::string> languages;
};

/// The folders in which the bundle may be, in the order in which they count, each once. They need not exist.
/// `hostDirectory` is the host's own word; the empty path says nothing.
[[nodiscard]] std::vector<std::filesystem::path> bundlePlaces(const std::filesystem::path& hostDirectory);

/// The first of the places that has the bundle's marker. No such place, or a catalogue missing there, is fatal().
[[nodiscard]] BundleLocation locateBundle(const std::vector<std::filesystem::path>& places);

/// Where a bundle has the catalogue of one of its languages.
[[nodiscard]] std::filesystem::path cataloguePath(const std::filesystem::path& bundle, std::string_view language);

}  // namespace kestrel::localization
