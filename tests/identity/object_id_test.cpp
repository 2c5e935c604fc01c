#include <gtest/gtest.h>
#include <kestrel/coding/json.h>
#include <kestrel/identity/any_object_id.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/records/company.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <boost/unordered/unordered_flat_set.hpp>
#include <set>
#include <thread>

namespace {

using namespace kestrel;

TEST(Identifiers, describeWhatTheyAre) {
    static_assert(!std::is_constructible_v<ObjectID<Contact>, bool> &&
                  !std::is_constructible_v<ObjectID<Contact>, char>);
    static_assert(!std::is_constructible_v<ObjectID<Contact>, double> &&
                  !std::is_constructible_v<ObjectID<Contact>, std::uint64_t>);
    const ObjectID<Contact> saved = 42;
    EXPECT_EQ(saved.stringValue(), "Contact/42");
    EXPECT_EQ(saved.description(), "#42");
    EXPECT_EQ(saved.value(), 42);
    EXPECT_FALSE(saved.isNew());
    EXPECT_EQ(ObjectID<Contact>(-3).stringValue(), "Contact/-3");
    EXPECT_EQ(ObjectID<AnyLabel>(3).stringValue(), "Label/3");

    const ObjectID<Company> unsaved;
    EXPECT_TRUE(unsaved.isNew() && !unsaved.isPersistent() && !unsaved.value());
    const std::string uuid = unsaved.storage().new_()->text();
    EXPECT_EQ(unsaved.description(), uuid);
    EXPECT_EQ(unsaved.stringValue(), "Organization/new/" + uuid + ")");
    EXPECT_EQ(uuid[14], '4') << "a random UUID is of version 4";
    EXPECT_EQ(UUID::parse(uuid), unsaved.storage().new_());

    const ObjectID<Contact> temporary(ObjectIdentifier(std::uintptr_t{0x7f00ab}));
    EXPECT_TRUE(temporary.isNew());
    EXPECT_EQ(temporary.description(), "ObjectIdentifier(0x00000000007f00ab)");
    EXPECT_EQ(temporary.stringValue(), "Contact/temp/ObjectIdentifier(0x00000000007f00ab))");
}

TEST(Identifiers, orderSavedThenTemporaryThenNew) {
    const auto uuid = [](std::uint64_t high, std::uint64_t low) {
        return ObjectID<Contact>(ObjectIDStorage::new_({high, low}));
    };
    const auto temp = [](std::uintptr_t word) { return ObjectID<Contact>(ObjectIdentifier(word)); };
    const std::vector<ObjectID<Contact>> ordered{-9,
                                                 2,
                                                 9,
                                                 temp(1),
                                                 temp(~std::uintptr_t{0}),
                                                 uuid(0, 1),
                                                 uuid(1, 0),
                                                 uuid(0x8000000000000000U, 0),
                                                 uuid(~std::uint64_t{0}, ~std::uint64_t{0})};
    for (std::size_t i = 0; i < ordered.size(); ++i) {
        for (std::size_t j = 0; j < ordered.size(); ++j) {
            EXPECT_EQ(ordered[i] < ordered[j], i < j) << i << ' ' << j;
            EXPECT_EQ(ordered[i] == ordered[j], i == j);
            EXPECT_EQ(ordered[i] >= ordered[j], i >= j);
        }
    }
    std::vector<UUID> uuids(200);
    std::ranges::generate(uuids, UUID::random);
    std::ranges::sort(uuids);
    EXPECT_TRUE(std::ranges::is_sorted(uuids, {}, &UUID::text)) << "the order of the bytes is that of the texts";
    EXPECT_NE(std::hash<ObjectID<Contact>>{}(7), std::hash<ObjectID<Contact>>{}(temp(7)));
}

TEST(Identifiers, areCodedOnlyWhenSavedAndOnlyAsTheirRecordType) {
    EXPECT_EQ(encodeJSON(ObjectID<AnyLabel>(3)), R"({"recordName":"AnyLabel","primaryKey":3})");
    EXPECT_EQ(encodeJSON(ObjectID<Company>(-7)), R"({"recordName":"Company","primaryKey":-7})");
    const UUID uuid = UUID::random();
    const auto unsaved = encodeJSON(std::vector{ObjectID<Contact>(1), ObjectID<Contact>(ObjectIDStorage::new_(uuid))});
    ASSERT_FALSE(unsaved);
    EXPECT_EQ(unsaved.error().description, "Cannot encode a .new ObjectID using Encodable. Persist the record first.");
    EXPECT_EQ(std::get<UUID>(unsaved.error().value), uuid);
    EXPECT_EQ(unsaved.error().codingPath, CodingPath{std::size_t{1}});
    const ObjectIdentifier identity(&uuid);
    const auto temporary = encodeJSON(ObjectID<Contact>(identity));
    ASSERT_FALSE(temporary);
    EXPECT_EQ(temporary.error().description,
              "Cannot encode a .temp ObjectID using Encodable. Persist the record first.");
    EXPECT_EQ(std::get<ObjectIdentifier>(temporary.error().value), identity);

    for (const char* text : {R"({"recordName":"Contact","primaryKey":7})", R"({"primaryKey":7,"recordName":"Contact"})",
                             R"( { "x":[{}] , "primaryKey" : 7.0 , "recordName" : "Cont\u0061ct" } )",
                             R"({"recordName":3,"primaryKey":"x","recordName":"Contact","primaryKey":7})"}) {
        EXPECT_EQ(decodeJSON<ObjectID<Contact>>(text), ObjectID<Contact>(7)) << text;
    }
    using enum DecodingError::Kind;
    struct Case {
        const char* text;
        DecodingError::Kind kind;
        CodingPath path;
        const char* description;
    };
    const Case cases[] = {
        {R"({"recordName":"Company","primaryKey":7})",
         dataCorrupted,
         {"recordName"},
         "Mismatched record type found, got: Company, expected: Contact"},
        {R"({"primaryKey":"x","recordName":"contact"})",
         dataCorrupted,
         {"recordName"},
         "Mismatched record type found, got: contact, expected: Contact"},
        {R"({"primaryKey":7})", keyNotFound, {}, "No value for the key \"recordName\"."},
        {R"({"recordName":"Contact"})", keyNotFound, {}, "No value for the key \"primaryKey\"."},
        {R"({"recordName":null,"primaryKey":7})", valueNotFound, {"recordName"}, "Expected a string, found null."},
        {R"({"recordName":"Contact","primaryKey":true})",
         typeMismatch,
         {"primaryKey"},
         "Expected an integer, found a boolean."},
        {R"({"recordName":"Contact","primaryKey":9223372036854775808})",
         dataCorrupted,
         {"primaryKey"},
         "The number 9223372036854775808 does not fit a signed 64-bit integer."},
        {R"("Contact/7")", typeMismatch, {}, "Expected an object, found a string."},
    };
    for (const Case& c : cases) {
        const auto decoded = decodeJSON<ObjectID<Contact>>(c.text);
        ASSERT_FALSE(decoded) << c.text;
        EXPECT_EQ(decoded.error().kind, c.kind) << c.text;
        EXPECT_EQ(decoded.error().codingPath, c.path) << c.text;
        EXPECT_EQ(decoded.error().description, c.description) << c.text;
    }
}

TEST(ErasedIdentifiers, compareByEntityAndThenByStorage) {
    const AnyObjectID company = ObjectID<Company>(7);
    EXPECT_EQ(company.entityName(), "Organization");
    EXPECT_EQ(company.primaryKey(), 7);
    EXPECT_EQ(company.as<Company>(), ObjectID<Company>(7));
    EXPECT_FALSE(company.as<Contact>());
    EXPECT_NE(AnyObjectID(ObjectID<Contact>(7)), company);
    EXPECT_NE(std::hash<AnyObjectID>{}(ObjectID<Contact>(7)), std::hash<AnyObjectID>{}(company));

    std::vector<AnyObjectID> mixed{ObjectID<Project>(),
                                   ObjectID<Company>(9),
                                   ObjectID<Contact>(12),
                                   ObjectID<Company>(2),
                                   ObjectID<Company>(ObjectIdentifier(std::uintptr_t{1})),
                                   ObjectID<AnyLabel>(99)};
    std::ranges::sort(mixed);
    std::vector<std::string> texts;
    for (const auto& id : mixed)
        texts.push_back(id.stringValue().substr(0, 15));
    EXPECT_EQ(texts,
              (std::vector<std::string>{"Contact/12", "Label/99", "Organization/2", "Organization/9", "Organization/te",
                                        "Project/new/" + mixed[5].objectIDStorage().new_()->text().substr(0, 3)}));

    std::size_t types = 0;
    recordTypes.forEach([&]<class Record>(const RecordNames<Record>& names) {
        const AnyObjectID id = ObjectID<Record>(5);
        EXPECT_EQ(AnyObjectID::parse(std::string(names.entityName) + "/5"), id);
        ++types;
    });
    EXPECT_GE(types, 30U);
    for (const char* text : {"", "Contact", "Contact/", "Contact/x", "Contact/5 ", "Contact/05", "Contact/-0",
                             "Company/5", "/5", "Contact/9223372036854775808"}) {
        EXPECT_FALSE(AnyObjectID::parse(text)) << text;
    }
    boost::unordered_flat_set<AnyObjectID, std::hash<AnyObjectID>> set;
    for (int i = 0; i < 1000; ++i) {
        set.insert(ObjectID<Contact>(i));
        set.insert(ObjectID<Company>(i));
    }
    EXPECT_EQ(set.size(), 2000U);
}

TEST(NewIdentifiers, differAcrossThreadsAndForks) {
    std::set<UUID> drawn;
    std::vector<std::vector<UUID>> perThread(4, std::vector<UUID>(2000));
    {
        std::vector<std::jthread> threads;
        for (auto& uuids : perThread)
            threads.emplace_back([&uuids] { std::ranges::generate(uuids, UUID::random); });
    }
    for (const auto& uuids : perThread)
        drawn.insert(uuids.begin(), uuids.end());
    EXPECT_EQ(drawn.size(), 8000U);

    int channel[2];
    ASSERT_EQ(pipe(channel), 0);
    (void)UUID::random();
    const pid_t child = fork();
    if (child == 0) {
        const auto bytes = UUID::random().bytes();
        _exit(write(channel[1], bytes.data(), bytes.size()) == 16 ? 0 : 1);
    }
    UUID::Bytes theirs{};
    ASSERT_EQ(read(channel[0], theirs.data(), theirs.size()), 16);
    EXPECT_NE(UUID::random().bytes(), theirs);
    ASSERT_EQ(waitpid(child, nullptr, 0), child);
    close(channel[0]);
    close(channel[1]);
}

}  // namespace
