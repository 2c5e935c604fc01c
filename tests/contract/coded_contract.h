#pragma once

#include <gtest/gtest.h>
#include <kestrel/coding/json.h>

#include <map>
#include <random>
#include <string>
#include <string_view>
#include <vector>

/// What holds for every coded type that is described by a list of fields, checked from a list of its own: stored names
/// and kinds, in order, as "name:kind name:kind?". A question mark marks a field that may be absent.
namespace contract {

/// Two different values of a kind as JSON, and one of another JSON kind.
struct Kind {
    std::string first;
    std::string second;
    std::string wrong;
};

inline const std::map<std::string, Kind, std::less<>>& kinds() {
    const auto identifier = [](const std::string& record, int key) {
        return R"({"recordName":")" + record + R"(","primaryKey":)" + std::to_string(key) + "}";
    };
    const auto set = [&](int key) { return R"({"teamIDs":[)" + identifier("Team", key) + "]}"; };
    const auto permissions = [&](int key) {
        return R"({"readPermissions":)" + set(key) + R"(,"writePermissions":)" + set(key + 1) + "}";
    };
    const auto category = [&](int key) {
        return R"({"categoryID":)" + identifier("Category", key) + R"(,"isActive":true,"order":2})";
    };
    const auto named = [](const std::string& name) { return "{\"" + name + "\":{}}"; };
    const auto activity = [&](int key) {
        return R"({"type":{"task":{"_0":)" + identifier("Task", key) + R"(}},"date":12.5,"isAllDay":false})";
    };
    const auto filter = [&](int key) {
        return R"({"pipelineDefinitionID":)" + identifier("PipelineDefinition", key) + "}";
    };
    const auto object = [&](const std::string& member, const std::string& record, int key, const std::string& rest) {
        return "{\"" + member + "\":" + identifier(record, key) + rest + "}";
    };
    // A list of one such object, and of none.
    const auto list = [&](const std::string& member, const std::string& record, const std::string& rest) {
        return Kind{"[" + object(member, record, 3, rest) + "]", "[]", "{}"};
    };
    const auto one = [&](const std::string& member, const std::string& record, const std::string& rest) {
        return Kind{object(member, record, 3, rest), object(member, record, 4, rest), "[]"};
    };
    const std::string unrestricted = R"({"readPermissions":{"teamIDs":[]},"writePermissions":{"teamIDs":[]}})";
    const std::string plain = R"("isBold":false,"isItalic":false,"isStruckThrough":false,"isUnderlined":true)";
    static const std::map<std::string, Kind, std::less<>> table = [&] {
        std::map<std::string, Kind, std::less<>> made{
            {"string", {R"("first é")", R"("")", "17"}},
            {"text", {R"("first é")", R"("another")", "17"}},
            {"int", {"-9223372036854775808", "42", R"("42")"}},
            {"double", {"0.1", "-2.5e-300", "true"}},
            {"bool", {"true", "false", "1"}},
            {"date", {"536457600.25", "-1", R"("2017-12-31T00:00:00Z")"}},
            {"data", {R"("AAEC/w==")", R"("")", "[]"}},
            {"color",
             {R"({"red":1,"green":0,"blue":0.5,"alpha":1})", R"({"red":1,"green":0,"blue":0.5,"alpha":0})", "[]"}},
            {"teams", {"[" + identifier("Team", 3) + "]", "[]", "{}"}},
            {"set", {set(3), set(4), "[]"}},
            {"permissions", {permissions(3), permissions(4), "[]"}},
            {"category", {category(3), category(4), R"("Hot")"}},
            {"preset",
             {R"({"objectID":)" + identifier("VisibilityPreset", 3) + R"(,"noReadAccess":0,"noWriteAccess":0})",
              R"({"objectID":)" + identifier("VisibilityPreset", 4) + R"(,"noReadAccess":0,"noWriteAccess":0})", "3"}},
            {"range", {named("thisYear"), named("none"), R"("thisYear")"}},
            {"scope", {named("single"), named("allFuture"), "1"}},
            {"sortKey", {R"("due")", R"("name")", "0"}},
            {"sortOrder", {R"("reverse")", R"("forward")", "0"}},
            {"sort", {R"({"key":"due","order":"reverse"})", R"({"key":"due","order":"forward"})", "[]"}},
            {"filter", {filter(3), filter(4), "[]"}},
            {"activityType",
             {R"({"task":{"_0":)" + identifier("Task", 3) + "}}",
              R"({"appointment":{"_0":)" + identifier("Timeblock", 3) + "}}", "[]"}},
            {"activities", {"[" + activity(3) + "]", "[]", "{}"}},
            {"avatar", {R"({"name":"Jane Roe"})", R"({"name":"J"})", "[]"}},
            {"boardID",
             {R"({"project":{"_0":)" + identifier("Project", 3) + "}}",
              R"({"opportunity":{"_0":)" + identifier("Opportunity", 3) + "}}", "[]"}},
            {"header",
             {R"({"id":3,"title":"Won","count":1,"total":2.5,"active":true})",
              R"({"id":3,"title":"Won","count":1,"active":true})", "[]"}},
            {"cards",
             {"[]",
              R"([{"project":{"_0":{"id":)" + identifier("Project", 3) +
                  R"(,"title":"","linkedPeople":"","linkedCompanies":""}}}])",
              "{}"}},
            {"enum", {"1", "0", R"("1")"}},
            {"status", {"4", "0", R"("open")"}},
            {"texts", {R"(["one",""])", "[]", R"("one")"}},
            {"label",
             one("labelID", "AnyLabel",
                 R"(,"isActive":true,"isForElectronicAddress":true,"isForGeoAddress":false,"isForPhone":true,"order":1)")},
            {"image", one("imageAssetID", "ImageAsset", R"(,"height":0,"width":7)")},
            {"electronicAddresses", list("electronicAddressID", "AnyElectronicAddress", R"(,"kind":2)")},
            {"geoAddresses", list("geoAddressID", "GeoAddress", "")},
            {"phones", list("phoneID", "Phone", R"(,"number":"+49 30 901820")")},
            {"keywords", list("keywordID", "Keyword", R"(,"isActive":true,"order":0)")},
            {"roleType",
             one("roleTypeID", "AnyRoleType",
                 R"(,"appliesTo":1,"isActive":true,"isForCompany":true,"isForContact":true,"isForOpportunity":false,)"
                 R"("isForProject":false)")},
            {"relationshipType", one("relationshipTypeID", "RelationshipType",
                                     R"(,"isActive":true,"isForCompany":true,"isForContact":true)")},
            {"customRecord", one("customRecordID", "CustomRecord", R"(,"order":1)")},
            {"customDefinition", one("customRecordDefinitionID", "CustomRecordDefinition",
                                     R"(,"choices":["a"],"isRequired":true,"kind":5,"order":1)")},
            {"setDefinition",
             one("customRecordSetDefinitionID", "CustomRecordSetDefinition", R"(,"isActive":true,"order":1)")},
            {"fields",
             {R"([{"record":)" + object("customRecordID", "CustomRecord", 3, R"(,"order":1)") + "}]", "[]", "{}"}},
            {"form", one("customRecordSetID", "Form", R"(,"permissions":)" + unrestricted + R"(,"keywords":[])")},
            {"note", one("noteID", "Note", R"(,"permissions":)" + unrestricted + R"(,"keywords":[])")},
            {"email",
             one("emailID", "Email", R"(,"dmiStatusCode":20,"permissions":)" + unrestricted + R"(,"keywords":[])")},
            {"file", one("fileAttachmentID", "FileAttachment", R"(,"size":1,"permissions":)" + unrestricted)},
            {"link", one("urlReferenceID", "URLReference", R"(,"permissions":)" + unrestricted)},
            {"timeblock",
             one("timeblockID", "Timeblock",
                 R"(,"isAllDay":false,"isArchived":false,"kind":8,"repeatByNthDay":0,"repeatCount":0,)"
                 R"("repeatFrequency":0,"repeatInterval":0,"resendExternalInvitations":false,"showAsBusy":true,)"
                 R"("status":2,"permissions":)" +
                     unrestricted + R"(,"keywords":[])")},
            {"task", one("taskID", "Task",
                         R"(,"isSomeday":false,"kind":0,"priority":0,"repeatByNthDay":0,"repeatCount":0,)"
                         R"("repeatFrequency":0,"repeatInterval":0,"status":0,"permissions":)" +
                             unrestricted + R"(,"keywords":[])")},
            {"name", {R"({"first":"Ada"})", "{}", "[]"}},
            {"body", {R"({"html":{"_0":"<p>"}})", R"({"plainText":{"_0":"<p>"}})", "[]"}},
            {"runs", {R"([{"start":1,"length":2,"attributes":{)" + plain + "}}]", "[]", "{}"}},
            {"columns",
             {"[]", R"([{"id":3,"header":{"id":3,"title":"Won","count":0,"active":true},"cards":[]}])", "{}"}},
        };
        return made;
    }();
    return table;
}

struct Field {
    std::string name;
    Kind kind;
    bool isOptional = false;
};

/// Reads "name:kind?"; a kind that starts with a capital is an identifier of that record.
inline std::vector<Field> parseFields(std::string_view list) {
    std::vector<Field> fields;
    std::size_t at = 0;
    while (at < list.size()) {
        const std::size_t end = std::min(list.find(' ', at), list.size());
        std::string entry(list.substr(at, end - at));
        at = end + 1;
        if (entry.empty()) continue;
        Field field;
        if (entry.ends_with('?')) {
            field.isOptional = true;
            entry.pop_back();
        }
        const std::size_t colon = entry.find(':');
        field.name = entry.substr(0, colon);
        const std::string kind = entry.substr(colon + 1);
        if (kind[0] >= 'A' && kind[0] <= 'Z') {
            const auto identifier = [&](const char* key) {
                return R"({"recordName":")" + kind + R"(","primaryKey":)" + key + "}";
            };
            field.kind = {identifier("7"), identifier("-7"), "7"};
        } else {
            field.kind = kinds().at(kind);
        }
        fields.push_back(std::move(field));
    }
    return fields;
}

/// An object of those fields, each as its first value but for what `change` says: a field's text, or nothing to leave
/// it out.
inline std::string document(const std::vector<Field>& fields, const std::map<std::string, std::string>& change = {}) {
    std::string text = "{";
    for (const Field& field : fields) {
        const auto changed = change.find(field.name);
        const std::string& value = changed != change.end() ? changed->second : field.kind.first;
        if (value.empty()) continue;
        if (text.size() > 1) text += ',';
        text += '"' + field.name + "\":" + value;
    }
    return text + "}";
}

template <class T>
void expectFailure(const std::string& text, kestrel::DecodingError::Kind kind, const kestrel::CodingPath& path) {
    const auto decoded = kestrel::decodeJSON<T>(text);
    ASSERT_FALSE(decoded.has_value()) << text;
    EXPECT_EQ(decoded.error().kind, kind) << decoded.error().message() << "\n" << text;
    EXPECT_EQ(decoded.error().codingPath, path) << decoded.error().message() << "\n" << text;
}

/// Any order of the members, any of the optional ones left out, unknown members and white space between them: the value
/// is that of the plain document, which is also what it is written as.
template <class T>
void expectSameInAnyOrder(const std::vector<Field>& fields, unsigned seed) {
    std::mt19937 engine(seed);
    const auto space = [&] { return std::string(engine() % 4 == 0 ? engine() % 3 : 0, " \n\t"[engine() % 3]); };
    for (int round = 0; round < 60; ++round) {
        std::map<std::string, std::string> change;
        for (const Field& field : fields) {
            if (engine() % 2 == 0) change[field.name] = field.kind.second;
            if (field.isOptional && engine() % 2 == 0) change[field.name] = "";
        }
        const std::string plain = document(fields, change);
        const auto value = kestrel::decodeJSON<T>(plain);
        ASSERT_TRUE(value.has_value()) << value.error().message() << plain;
        ASSERT_EQ(kestrel::encodeJSON(*value), plain);

        std::vector<Field> shuffled = fields;
        // Whole runs in order, single members elsewhere: as other writers and older versions have them.
        for (auto moves = engine() % (round < 30 ? 4 : 100); moves > 0; --moves) {
            std::swap(shuffled[engine() % shuffled.size()], shuffled[engine() % shuffled.size()]);
        }
        std::string text = "{" + space();
        bool first = true;
        const auto add = [&](const std::string& key, const std::string& member) {
            text += (first ? "" : "," + space()) + '"' + key + '"' + space() + ":" + space() + member + space();
            first = false;
        };
        for (const Field& field : shuffled) {
            if (engine() % 8 == 0) add("unknown " + std::to_string(engine() % 100), R"([{"a":[1,"\u00e9"]},null])");
            const auto changed = change.find(field.name);
            const std::string& member = changed != change.end() ? changed->second : field.kind.first;
            if (!member.empty()) add(field.name, member);
            // A key that comes again forces the careful pass; the value stays the same.
            if (!member.empty() && engine() % 200 == 0) add(field.name, member);
        }
        ASSERT_EQ(kestrel::decodeJSON<T>(text + "}"), *value) << text;
    }
}

/// Decoding, encoding, equality and hashing of one value and of every value that differs from it in one field.
template <class T>
void expectCodedAs(std::string_view fieldList) {
    using enum kestrel::DecodingError::Kind;
    using kestrel::decodeJSON;
    const std::vector<Field> fields = parseFields(fieldList);
    const std::string whole = document(fields);
    const auto value = decodeJSON<T>(whole);
    ASSERT_TRUE(value.has_value()) << value.error().message() << "\n" << whole;
    const auto again = kestrel::encodeJSON(*value);
    ASSERT_TRUE(again.has_value());
    EXPECT_EQ(*again, whole) << "the stored names, in their order";
    EXPECT_EQ(decodeJSON<T>(*again), *value);

    // The members in another order, unknown ones among them, white space, and a first try that is overruled by the
    // last.
    std::string shuffled = " { \"unknown\" : [ { \"deep\" : null } ] ";
    shuffled += ", \"" + fields.back().name + "\" : " + fields.back().kind.second;
    for (auto field = fields.rbegin(); field != fields.rend(); ++field) {
        shuffled += "\n, \"" + field->name + "\"\t:\r\n" + field->kind.first + " , \"x\":\"\\u0041\"";
    }
    EXPECT_EQ(decodeJSON<T>(shuffled + "}"), *value) << shuffled;

    expectSameInAnyOrder<T>(fields, static_cast<unsigned>(whole.size()));

    const std::hash<T> hash;
    for (const Field& field : fields) {
        SCOPED_TRACE(field.name);
        const auto changed = decodeJSON<T>(document(fields, {{field.name, field.kind.second}}));
        ASSERT_TRUE(changed.has_value()) << changed.error().message();
        EXPECT_NE(*changed, *value) << "equality overlooks the field";
        EXPECT_NE(hash(*changed), hash(*value)) << "the hash overlooks the field";
        EXPECT_NE(kestrel::debugMirror(*changed), kestrel::debugMirror(*value)) << "the mirror overlooks the field";
        if constexpr (requires { differences(*value, *changed); }) {
            EXPECT_EQ(differences(*value, *changed), std::vector<std::string_view>{field.name});
        }

        expectFailure<T>(document(fields, {{field.name, field.kind.wrong}}), typeMismatch, {field.name});
        const std::string missing = document(fields, {{field.name, ""}});
        const std::string null = document(fields, {{field.name, "null"}});
        if (field.isOptional) {
            const auto absent = decodeJSON<T>(missing);
            ASSERT_TRUE(absent.has_value()) << absent.error().message();
            EXPECT_NE(*absent, *value);
            EXPECT_EQ(decodeJSON<T>(null), *absent) << "null reads as absent";
            EXPECT_EQ(kestrel::encodeJSON(*absent), missing) << "the absent is left out";
        } else {
            expectFailure<T>(missing, keyNotFound, {});
            expectFailure<T>(null, valueNotFound, {field.name});
        }
    }
}

}  // namespace contract
