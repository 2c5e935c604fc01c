#include <fmt/format.h>
#include <kestrel/coding/debug_mirror.h>

namespace kestrel {

void DebugMirror::newLine() {
    // A key whose value starts on the next line leaves no blank behind it.
    if (text_.ends_with(' ')) text_.pop_back();
    text_ += '\n';
    text_.append(depth_ * 2, ' ');
}

void DebugMirror::show(const std::string& value) {
    text_ += '"';
    for (const char c : value) {
        if (c == '"' || c == '\\') {
            text_ += '\\';
            text_ += c;
        } else if (c == '\n') {
            text_ += "\\n";
        } else if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) {
            text_ += fmt::format("\\u{:04x}", static_cast<unsigned char>(c));
        } else {
            text_ += c;
        }
    }
    text_ += '"';
}

void DebugMirror::show(std::int64_t value) {
    text_ += fmt::format("{}", value);
}
void DebugMirror::show(double value) {
    text_ += fmt::format("{}", value);
}
void DebugMirror::show(Date value) {
    text_ += value.description();
}
void DebugMirror::show(const Data& value) {
    text_ += fmt::format("{} bytes", value.bytes.size());
}

void DebugMirror::open() {
    ++depth_;
    absent_ += '\n';
}

void DebugMirror::close() {
    const std::size_t start = absent_.rfind('\n');
    if (start + 1 < absent_.size()) {
        newLine();
        text_ += "absent: ";
        text_ += std::string_view(absent_).substr(start + 1);
    }
    absent_.resize(start);
    --depth_;
}

void DebugMirror::member(std::string_view key) {
    newLine();
    text_ += key;
    text_ += ": ";
}

void DebugMirror::element(std::size_t index) {
    newLine();
    text_ += fmt::format("[{}] ", index);
}

void DebugMirror::absent(std::string_view key) {
    if (absent_.back() != '\n') absent_ += ", ";
    absent_ += key;
}

}  // namespace kestrel
