#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace kestrel::localization {

/// The texts of one language, read from a compiled gettext catalogue (.mo) in UTF-8.
///
/// Immutable: any number of threads may look up at once. Needs no locale of the operating system.
class Catalogue {
  public:
    /// Reads the whole file. A file that cannot be read or is no such catalogue is fatal().
    explicit Catalogue(std::filesystem::path file);
    ~Catalogue();
    Catalogue(const Catalogue&) = delete;
    Catalogue& operator=(const Catalogue&) = delete;

    /// The translation of a text, or nothing if the catalogue lacks it. A damaged catalogue is fatal().
    [[nodiscard]] std::optional<std::string> find(std::string_view text) const;

  private:
    struct Messages;

    std::filesystem::path file_;
    std::unique_ptr<const Messages> messages_;
};

}  // namespace kestrel::localization
