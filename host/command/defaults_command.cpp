#include <fmt/format.h>
#include <host/command/awaiting.h>
#include <host/command/defaults_command.h>
#include <host/failure.h>
#include <host/terminal/json_object.h>
#include <host/terminal/table.h>
#include <kestrel/services/system_services_module.h>
#include <kestrel/services/user_defaults_service.h>

#include <array>
#include <charconv>
#include <map>
#include <memory>
#include <utility>

namespace kestrel::host {
namespace {

/// The names of the types, in the order of DefaultsValue's alternatives.
constexpr std::array<std::string_view, std::variant_size_v<DefaultsValue>> typeNames{
    "string", "data", "integer", "double", "boolean", "date", "url"};

std::string_view typeOf(const DefaultsValue& value) {
    return typeNames.at(value.index());
}

/// What signs a user in is stored here too, and shown nowhere.
bool isSecret(std::string_view key) {
    return key == "DeviceToken" || key == "LastPasswordHash";
}

std::string textOf(const DefaultsValue& value) {
    struct Text {
        std::string operator()(const std::string& text) const { return text; }
        std::string operator()(const Data& data) const { return data.base64(); }
        std::string operator()(std::int64_t number) const { return fmt::format("{}", number); }
        std::string operator()(double number) const { return fmt::format("{}", number); }
        std::string operator()(bool flag) const { return flag ? "true" : "false"; }
        std::string operator()(Date date) const { return date.description(); }
        std::string operator()(const URL& url) const { return url.text(); }
    };
    return std::visit(Text(), value);
}

template <class Number>
std::optional<DefaultsValue> numberOf(std::string_view text) {
    Number number{};
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (problem != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

template <class Value>
std::optional<DefaultsValue> storedForm(const std::optional<Value>& value) {
    return value ? std::optional<DefaultsValue>(*value) : std::nullopt;
}

std::optional<DefaultsValue> valueOf(std::string_view type, const std::string& text) {
    if (type == "string") return text;
    if (type == "integer") return numberOf<std::int64_t>(text);
    if (type == "double") return numberOf<double>(text);
    if (type == "date") return storedForm(Date::parseISO8601(text));
    if (type == "url") return storedForm(URL::parse(text));
    if (type == "data") return storedForm(Data::fromBase64(text));
    if (text == "true" || text == "yes" || text == "1") return true;
    if (text == "false" || text == "no" || text == "0") return false;
    return std::nullopt;
}

/// The preferences that the options mean, as a service.
class Preferences {
  public:
    explicit Preferences(const DefaultsOptions& options) : runtime_(Runtime::makeSystem()) {
        if (!options.file.empty()) {
            const auto opened = platform::openUserDefaults(options.file);
            if (!opened) throw Failure(opened.error().localizedDescription);
            runtime_[services::systemDefaults] = std::make_shared<UserDefaultsService>(*opened);
        }
    }
    [[nodiscard]] SystemUserDefaultsService& service() { return runtime_[services::systemDefaults]; }
    [[nodiscard]] const UserDefaultsStore& store() const {
        return *static_cast<UserDefaultsService&>(*runtime_.find(services::systemDefaults)).userDefaults();
    }

  private:
    Runtime runtime_;
};

void require(const DefaultsWritten& written) {
    if (!written) throw Failure(written.error().localizedDescription);
}

std::string entryJSON(const std::string& key, const std::optional<DefaultsValue>& value) {
    JSONObject object;
    object.add("key", key);
    if (value) object.add("type", typeOf(*value)).add("value", textOf(*value));
    return object.json();
}

/// Reads whatever is there.
std::optional<DefaultsValue> anyValue(std::string_view name, const UserDefaultsStore& store) {
    return store.object(name);
}

}  // namespace

void getDefaults(const DefaultsOptions& options, Output& output, const Terminal& terminal) {
    Preferences preferences(options);
    if (!options.key.empty()) {
        const auto value = preferences.service().readStored(options.key, anyValue);
        if (!value) throw Failure(fmt::format("\"{}\" is not set", options.key));
        if (isSecret(options.key)) throw Failure(fmt::format("\"{}\" is secret", options.key));
        if (options.isJSON) return writeJSONLine(entryJSON(options.key, value), output, terminal);
        return output.write((terminal.isTerminal ? printable(textOf(*value)) : textOf(*value)) + "\n");
    }
    std::vector<std::string> entries;
    Table table(3);
    for (const std::string& key : preferences.store().keys()) {
        const auto value = preferences.service().readStored(key, anyValue);
        if (!value || isSecret(key)) continue;
        entries.push_back(entryJSON(key, value));
        table.add({key, std::string(typeOf(*value)), textOf(*value)});
    }
    if (options.isJSON) return writeJSONLine(JSONObject::array(entries), output, terminal);
    output.write(table.rendered(terminal));
}

void setDefaults(const DefaultsOptions& options) {
    const auto value = valueOf(options.type, options.value);
    if (!value) throw WrongUsage(fmt::format("\"{}\" is no value of the type {}", options.value, options.type));
    require(Preferences(options).service().writeStored(value, options.key));
}

void removeDefaults(const DefaultsOptions& options) {
    require(Preferences(options).service().remove(options.key));
}

void watchDefaults(const DefaultsOptions& options, Output& output, const Terminal& terminal) {
    Preferences preferences(options);
    std::size_t left = options.count.value_or(0);
    std::map<std::string, DefaultsValue> known;
    const auto snapshot = [&] {
        std::map<std::string, DefaultsValue> values;
        for (const std::string& key : preferences.store().keys()) {
            if (isSecret(key) || (!options.key.empty() && key != options.key)) continue;
            if (auto value = preferences.service().readStored(key, anyValue)) values.emplace(key, *std::move(value));
        }
        return values;
    };
    const auto tell = [&](const std::string& key, const std::optional<DefaultsValue>& value) {
        if (options.isJSON) {
            writeJSONLine(entryJSON(key, value), output, terminal);
        } else {
            output.write(printable(key) + (value ? " = " + printable(textOf(*value)) : " is not set") + "\n");
        }
        output.flush();
        if (!options.count || left == 0) return;
        --left;
        if (left == 0) platform::quitMainLoop();
    };
    known = snapshot();
    const auto watching = NotificationCenter::standard()
                              .notifications(userDefaultsDidChangeNotification, &preferences.store())
                              .sink([&](const Notification&) {
                                  const auto before = std::exchange(known, snapshot());
                                  for (const auto& [key, value] : before) {
                                      if (!known.contains(key)) tell(key, std::nullopt);
                                  }
                                  for (const auto& [key, value] : known) {
                                      const auto old = before.find(key);
                                      if (old == before.end() || old->second != value) tell(key, value);
                                  }
                              });
    // Whoever starts this in the background knows now that no change is missed.
    writeErrorLine("watching");
    platform::runMainLoop();
}

}  // namespace kestrel::host
