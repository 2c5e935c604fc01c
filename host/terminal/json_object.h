#pragma once

#include <host/terminal/text.h>
#include <kestrel/coding/json.h>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel::host {

/// A JSON object of the command's own making, member by member. Keys are plain words.
class JSONObject {
  public:
    JSONObject& add(std::string_view key, std::string_view text) { return addJSON(key, encoded(validUTF8(text))); }
    JSONObject& add(std::string_view key, const char* text) { return add(key, std::string_view(text)); }
    JSONObject& add(std::string_view key, bool value) { return addJSON(key, encoded(value)); }
    JSONObject& add(std::string_view key, std::size_t number) {
        return addJSON(key, encoded(static_cast<std::int64_t>(number)));
    }
    JSONObject& add(std::string_view key, const std::vector<std::string>& texts) {
        std::vector<std::string> elements;
        for (const std::string& text : texts)
            elements.push_back(encoded(validUTF8(text)));
        return addJSON(key, array(elements));
    }
    JSONObject& add(std::string_view key, const JSONObject& object) { return addJSON(key, object.json()); }
    /// A member that is JSON already.
    JSONObject& addJSON(std::string_view key, std::string_view json) {
        if (!members_.empty()) members_ += ',';
        members_.append("\"").append(key).append("\":").append(json);
        return *this;
    }

    [[nodiscard]] std::string json() const { return "{" + members_ + "}"; }

    /// The array of elements that are JSON already.
    [[nodiscard]] static std::string array(const std::vector<std::string>& elements) {
        std::string json;
        for (const std::string& element : elements)
            json.append(json.empty() ? "" : ",").append(element);
        return "[" + json + "]";
    }
    /// The keyed form of what has one always: a text in UTF-8, an integer, a boolean.
    template <class T>
    [[nodiscard]] static std::string encoded(const T& value) {
        return encodeJSON(value).value();
    }

  private:
    std::string members_;
};

}  // namespace kestrel::host
