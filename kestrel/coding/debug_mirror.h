#pragma once

#include <kestrel/foundation/data.h>
#include <kestrel/foundation/date.h>
#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

namespace kestrel {

/// Builds the text in which a value is shown to people who debug: one line a member, nested values indented, the names
/// of absent members gathered in a last line. Nothing parses it.
class DebugMirror {
  public:
    void show(const std::string& value);
    void show(std::int64_t value);
    void show(double value);
    void show(std::same_as<bool> auto value) { word(value ? "true" : "false"); }
    void show(Date value);
    void show(const Data& value);
    /// A text without quotes, such as a type's or a case's name.
    void word(std::string_view text) { text_ += text; }

    /// Starts a level of members, or of elements.
    void open();
    void close();
    /// Starts the line of a member.
    void member(std::string_view key);
    void element(std::size_t index);
    void absent(std::string_view key);

    [[nodiscard]] std::string take() { return std::move(text_); }

  private:
    void newLine();

    std::string text_;
    /// The absent members of every open level.
    std::string absent_;
    std::size_t depth_ = 0;
};

}  // namespace kestrel
