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
    /// A text in quotes, with its control characters written out.
    void show(const std::string& value);
    /// A number, in decimal.
    void show(std::int64_t value);
    /// A number, so that it reads back as it is.
    void show(double value);
    /// "true" or "false".
    void show(std::same_as<bool> auto value) { word(value ? "true" : "false"); }
    /// Date::description.
    void show(Date value);
    /// How many bytes there are.
    void show(const Data& value);
    /// A text without quotes, such as a type's or a case's name.
    void word(std::string_view text) { text_ += text; }

    /// Starts a level of members, or of elements.
    void open();
    /// Ends the level that was opened last, with the names of its absent members.
    void close();
    /// Starts the line of a member.
    void member(std::string_view key);
    /// Starts the line of an element.
    void element(std::size_t index);
    /// Keeps the name of a member that is absent for the end of the level.
    void absent(std::string_view key);

    /// The text, which ends the mirror.
    [[nodiscard]] std::string take() { return std::move(text_); }

  private:
    void newLine();

    std::string text_;
    /// The absent members of every open level.
    std::string absent_;
    std::size_t depth_ = 0;
};

}  // namespace kestrel
