#include <gtest/gtest.h>
#include <kestrel/boards/sort_descriptor.h>
#include <kestrel/foundation/enumeration.h>
#include <kestrel/foundation/fatal.h>
#include <kestrel/foundation/hashing.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/foundation/uuid.h>
#include <kestrel/identity/any_object_id.h>

#include <algorithm>
#include <set>
#include <vector>

namespace {

using namespace kestrel;

enum class Gapped : std::int64_t { first = 0, fourth = 4, private_ = 5, last = 63 };

TEST(Enumerations, knowTheirCasesFromTheirDeclaration) {
    EXPECT_EQ(allCases<Gapped>.size(), 4U);
    std::vector<std::string_view> names;
    for (const Gapped value : allCases<Gapped>) {
        names.push_back(caseName(value));
        EXPECT_EQ(fromCaseName<Gapped>(caseName(value)), value);
        EXPECT_EQ(fromRawValue<Gapped>(rawValue(value)), value);
    }
    EXPECT_EQ(names, (std::vector<std::string_view>{"first", "fourth", "private", "last"}));
    for (const std::int64_t raw :
         {std::int64_t{-1}, std::int64_t{1}, std::int64_t{3}, std::int64_t{64}, std::int64_t{1} << 62U, INT64_MIN}) {
        EXPECT_FALSE(fromRawValue<Gapped>(raw)) << raw;
    }
    EXPECT_FALSE(fromCaseName<Gapped>("private_"));
    EXPECT_EQ(caseName(static_cast<Gapped>(2)), "");
}

TEST(TextBackedEnumerations, haveTheirNamesAsRawValues) {
    EXPECT_EQ(rawValue(PipelineBoardSortOrder::reverse), "reverse");
    EXPECT_EQ(fromRawValue<PipelineBoardSortKey>("daysInStage"), PipelineBoardSortKey::daysInStage);
    EXPECT_FALSE(fromRawValue<PipelineBoardSortOrder>("Reverse"));
}

TEST(UUIDs, readOnlyTheirStandardForm) {
    const UUID uuid(0x0123456789abcdef, 0xfedcba9876543210);
    EXPECT_EQ(uuid.text(), "01234567-89AB-CDEF-FEDC-BA9876543210");
    EXPECT_EQ(UUID::parse("01234567-89ab-cdef-FEDC-ba9876543210"), uuid);
    EXPECT_EQ(uuid.bytes()[1], 0x23);
    EXPECT_EQ(uuid.bytes()[15], 0x10);
    for (const char* text : {"", "01234567-89AB-CDEF-FEDC-BA987654321", "01234567-89AB-CDEF-FEDC-BA98765432100",
                             "0123456789AB-CDEF-FEDC-BA98765432100", "01234567-89AB-CDEF-FEDC-BA987654321g",
                             "{1234567-89AB-CDEF-FEDC-BA987654321}", "01234567_89AB_CDEF_FEDC_BA9876543210"}) {
        EXPECT_FALSE(UUID::parse(text)) << text;
    }
}

struct Owner {
    ReadOnly<std::string, Owner> name;
    int rank{};
    friend bool operator==(const Owner&, const Owner&) = default;
};

TEST(ReadOnlyMembers, moveOnlyWithTheirOwner) {
    static_assert(!std::is_assignable_v<decltype(Owner::name)&, std::string>);
    static_assert(!std::is_assignable_v<decltype(Owner::name)&, decltype(Owner::name)>);
    static_assert(std::is_nothrow_move_constructible_v<Owner>);
    std::vector<Owner> owners{{"c", 3}, {"a", 1}, {"b", 2}};
    std::ranges::sort(owners, {}, &Owner::rank);
    EXPECT_EQ(owners, (std::vector<Owner>{{"a", 1}, {"b", 2}, {"c", 3}}));
    owners[0] = Owner{"d", 4};
    EXPECT_EQ(*owners[0].name, "d");
    EXPECT_EQ(owners[0].name->size(), 1U);
}

TEST(Hashes, spreadIdentifiersOverAllBits) {
    // Keys that differ in a few bits only, as primary keys do, must not meet in the low bits nor in the high ones.
    std::set<std::uint64_t> low;
    std::set<std::uint64_t> high;
    constexpr std::size_t count = 4096;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint64_t hash =
            std::hash<AnyObjectID>{}(ObjectID<Contact>(static_cast<std::int64_t>(i) << (i % 3 * 8)));
        low.insert(hash & 0xffffU);
        high.insert(hash >> 48U);
    }
    // 4,096 draws from 65,536 places leave some 3,970 different ones.
    EXPECT_GT(low.size(), 3800U);
    EXPECT_GT(high.size(), 3800U);
    Hasher a;
    a.combine("ab");
    a.combine("c");
    Hasher b;
    b.combine("a");
    b.combine("bc");
    EXPECT_NE(a.result(), b.result());
}

TEST(Fatal, stopsWithOneLine) {
    EXPECT_EXIT(fatal("Something is wrong."), testing::KilledBySignal(SIGABRT),
                "^KestrelService: Something is wrong. \\(values_test.cpp:[0-9]+\\)\n$");
}

}  // namespace
