#include <fuzz/fuzzing.h>
#include <host/command/codable_types.h>
#include <kestrel/access/permissions.h>
#include <kestrel/coding/json.h>
#include <kestrel/session/all_records.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

// Documents of every codable type. The first two bytes choose the type, the third how dates are written and whether it
// is an array of the type; the rest is the document.
namespace {

using namespace kestrel;
using fuzzing::require;

/// Whether writing may refuse what was read: a date may be one that another form can hold.
bool mayRefuse(const CodingOptions& options) {
    return options.dateStrategy != DateStrategy::deferred;
}

/// What every type promises, seen through text alone.
void checkText(host::Recoder recode, std::string_view document, const CodingOptions& options) {
    const auto once = recode(document, options);
    const bool isWellFormed = checkJSON(document).has_value();
    if (!once) {
        const host::CodingFailure& error = once.error();
        const auto message = [&] { return error.message; };
        require(error.offset <= document.size(), "an error's place lies within the document", message);
        require(error.message.find('\n') == std::string::npos, "an error is told in one line", message);
        const bool isOfWriting = error.kind == "invalidValue";
        require(!isOfWriting || mayRefuse(options), "what was read can be written", message);
        if (!isOfWriting)
            require(error.description.starts_with("Malformed JSON") != isWellFormed,
                    "what is malformed is told as such, and nothing else is", message);
        return;
    }
    require(isWellFormed, "what is read is well-formed", document);
    const auto twice = recode(*once, options);
    require(twice.has_value(), "what was written can be read", *once);
    // Where dates lose nothing on their way.
    if (!mayRefuse(options)) require(*twice == *once, "writing is stable", [&] { return *once + "\n" + *twice; });
}

/// What is known of a value only where its type is.
template <class T>
void checkValue(std::string_view document, const CodingOptions& options) {
    const auto value = decodeJSON<T>(document, options);
    if (!value) {
        const DecodingError& error = value.error();
        require(error.position.offset <= document.size(), "an error's place lies within the document");
        require(error.position.line >= 1 && error.position.column >= 1 &&
                    error.position.line + error.position.column <= document.size() + 2,
                "an error's line and column lie within the document", [&] { return error.message(); });
        return;
    }
    // The careful pass judges as the fast one does.
    JSONReader reader(document, options);
    require(reader.checkDocument(), "what is read is well-formed", document);
    reader.restartCarefully();
    T again = blankValue<T>();
    require(decodeValue(reader, again), "the careful pass reads what the fast one reads", document);
    require(again == *value, "both passes read the same", document);
    require(!debugMirror(*value).empty(), "a value can be shown");

    const auto hashOf = [](const T& hashed) {
        Hasher hasher;
        hashValue(hasher, hashed);
        return hasher.result();
    };
    require(hashOf(again) == hashOf(*value), "what is equal hashes alike", document);
    // All bits are kept in this form, whatever the other one loses.
    const auto text = encodeJSON(*value);
    require(text.has_value(), "what was read can be written", document);
    const auto back = decodeJSON<T>(*text);
    require(back.has_value(), "what was written can be read", *text);
    require(*back == *value, "what was written reads as what it was", *text);
    require(hashOf(*back) == hashOf(*value), "what is equal hashes alike", *text);
    require(encodeJSON(*back) == text, "writing is stable", *text);

    std::string appended = "before";
    const auto written = encodeJSON(*value, appended, options);
    require(written.has_value() || (mayRefuse(options) && appended == "before"), "a failure to write leaves nothing",
            appended);
}

struct Type {
    std::uint16_t place{};
    host::CodableType recode;
    /// For records.
    void (*value)(std::string_view, const CodingOptions&) = nullptr;
    void (*array)(std::string_view, const CodingOptions&) = nullptr;
};

/// All types, each at a place that its name alone decides: a type more leaves most inputs to the types that they have.
std::vector<Type> makeTypes() {
    std::vector<Type> types;
    for (const host::CodableType& each : host::codableTypes()) {
        Hasher hasher;
        hasher.combine(each.name);
        types.push_back({.place = static_cast<std::uint16_t>(hasher.result()), .recode = each});
    }
    recordTypes.forEach([&]<class Record>(const RecordNames<Record>& names) {
        const auto found = std::ranges::find_if(
            types, [&](const Type& type) { return type.recode.name == std::string(names.recordName); });
        require(found != types.end(), "every record is a codable type", names.recordName);
        found->value = &checkValue<Record>;
        found->array = &checkValue<std::vector<Record>>;
    });
    std::ranges::sort(types, {},
                      [](const Type& type) { return std::pair(type.place, std::string_view(type.recode.name)); });
    return types;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::vector<Type> types = makeTypes();
    if (size < 3) return -1;
    const auto chosen = static_cast<std::uint16_t>(data[0] << 8U | data[1]);
    auto type = std::ranges::lower_bound(types, chosen, {}, &Type::place);
    if (type == types.end()) type = types.begin();
    static constexpr DateStrategy strategies[] = {DateStrategy::deferred, DateStrategy::secondsSince1970,
                                                  DateStrategy::millisecondsSince1970, DateStrategy::iso8601};
    const CodingOptions options{.dateStrategy = strategies[data[2] & 3U]};
    const bool isArray = (data[2] & 4U) != 0;
    const std::string_view document = fuzzing::textOf(data + 3, size - 3);

    checkText(isArray ? type->recode.array : type->recode.value, document, options);
    if (const auto check = isArray ? type->array : type->value) check(document, options);
    return 0;
}
