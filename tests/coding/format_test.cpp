#include <gtest/gtest.h>
#include <kestrel/coding/format.h>
#include <kestrel/identity/any_object_id.h>
#include <kestrel/lookups/keyword.h>
#include <kestrel/records/contact.h>

#include <unordered_set>

namespace {

using namespace kestrel;

TEST(Values, areFormattedAsPeopleReadThem) {
    EXPECT_EQ(fmt::format("{} {}", ObjectID<Contact>(12), AnyObjectID(ObjectID<Contact>(12))), "Contact/12 Contact/12");
    EXPECT_EQ(fmt::format("[{:>12}]", ObjectID<Contact>(12)), "[  Contact/12]");
    EXPECT_EQ(fmt::format("{}", ContactPriority::p1), "p1");
    const UUID uuid = UUID::random();
    EXPECT_EQ(fmt::format("{}", uuid), uuid.text());
    EXPECT_EQ(fmt::format("{}", *URL::parse("https://example.com/")), "https://example.com/");
    EXPECT_NE(fmt::format("{}", *Date::parseISO8601("2026-11-21T12:00:00Z")).find("2026-11-21"), std::string::npos);
    const Keyword keyword{.keywordID = 7, .name = "vip"};
    EXPECT_EQ(fmt::format("{}", keyword), debugMirror(keyword));
}

TEST(Values, goIntoHashedContainers) {
    EXPECT_EQ((std::unordered_set<Keyword>{{.keywordID = 7}, {.keywordID = 7}, {.keywordID = 8}}.size()), 2U);
    EXPECT_EQ((std::unordered_set<Date>{Date(0.0), Date(-0.0), Date(1)}.size()), 2U);
    const UUID uuid = UUID::random();
    EXPECT_EQ((std::unordered_set<UUID>{uuid, uuid, UUID::random()}.size()), 2U);
    EXPECT_EQ((std::unordered_set<Data>{*Data::fromBase64("YQ=="), *Data::fromBase64("YQ=="), Data()}.size()), 2U);
    EXPECT_EQ((std::unordered_set<URL>{*URL::parse("https://a/"), *URL::parse("https://a/"), *URL::parse("https://b/")}
                   .size()),
              2U);
}

TEST(Differences, areTheFieldsThatHaveChanged) {
    const Contact before{.contactID = 1, .firstName = "Ada", .lastName = "Feldman"};
    Contact after = before;
    EXPECT_EQ(differences(before, after), std::vector<std::string_view>());
    after.lastName = "Feldmann";
    after.firstName.reset();
    after.phones.push_back({.phoneID = 2, .number = "1"});
    after.permissions.giveReadAccess(7);
    EXPECT_EQ(differences(before, after),
              (std::vector<std::string_view>{"firstName", "lastName", "permissions", "phones"}))
        << "in the order of the keyed form";
}

}  // namespace
