#include <gtest/gtest.h>
#include <kestrel/access/permission_checker.h>
#include <kestrel/records/company.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <random>
#include <set>

namespace {

using namespace kestrel;
using Visibility = PermissionChecker::Visibility;

const Team sales{.teamID = 1, .name = "Sales"};
const Team support{.teamID = 2, .name = "Support"};
const Team privateTeam{.teamID = 3, .isUserPrivateTeam = true, .name = "Jane"};
const Team nameless{.teamID = 4};

PermissionChecker checkerFor(std::optional<User> user) {
    return {.user = std::move(user), .teams = {sales, support, privateTeam, nameless}};
}
User member(TeamIDs teams) {
    return {.userID = 1, .teamIDs = std::move(teams)};
}
Permissions both(PermissionSet set) {
    return {.readPermissions = set, .writePermissions = set};
}

TEST(PermissionSets, shareATeamOrAreEmpty) {
    std::mt19937 engine(3);
    for (int i = 0; i < 3000; ++i) {
        std::set<std::int64_t> a;
        std::set<std::int64_t> b;
        for (auto n = engine() % 6; n > 0; --n)
            a.insert(static_cast<std::int64_t>(engine() % 9));
        for (auto n = engine() % 6; n > 0; --n)
            b.insert(static_cast<std::int64_t>(engine() % 9));
        bool shared = false;
        for (const auto key : a)
            shared = shared || b.contains(key);
        const PermissionSet set{TeamIDs(a.begin(), a.end())};
        EXPECT_EQ(set.isAuthorized(TeamIDs(b.begin(), b.end())), a.empty() || shared);
        EXPECT_EQ(set.isAuthorized(4), a.empty() || a.contains(4));
    }
}

/// Few teams and many, close to each other and far apart, saved and not.
TEST(TeamSets, shareTheFirstTeamThatIsInBoth) {
    std::mt19937_64 engine(5);
    constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
    constexpr std::int64_t greatest = std::numeric_limits<std::int64_t>::max();
    const ObjectID<Team> unsaved;
    std::size_t overlaps = 0;
    constexpr int rounds = 20'000;
    for (int i = 0; i < rounds; ++i) {
        static constexpr std::int64_t firsts[] = {0, -30, least, greatest - 200};
        static constexpr std::int64_t spans[] = {9, 63, 64, 65, 200};
        static constexpr std::size_t sizes[] = {1, 2, 4, 9, 18, 34};
        const std::int64_t first = firsts[engine() % 4];
        const std::int64_t span = spans[engine() % 5];
        const auto draw = [&] {
            TeamIDs teams;
            for (auto n = sizes[engine() % 6]; n > 0; --n)
                teams.insert(first + static_cast<std::int64_t>(engine() % static_cast<std::uint64_t>(span + 1)));
            if (engine() % 8 == 0) teams.insert(unsaved);
            return teams;
        };
        const TeamIDs a = draw();
        const TeamIDs b = draw();
        std::optional<ObjectID<Team>> shared;
        for (const auto& team : a) {
            if (!shared && std::ranges::find(b, team) != b.end()) shared = team;
        }
        overlaps += shared ? 1U : 0U;
        ASSERT_EQ(firstSharedTeam(a, b), shared) << first << " " << span;
        ASSERT_EQ(firstSharedTeam(b, a), shared) << first << " " << span;
    }
    EXPECT_GT(overlaps, rounds / 4U);
    EXPECT_LT(overlaps, rounds - rounds / 8U);
}

TEST(PermissionSets, readAndWriteThePipeForm) {
    EXPECT_EQ(PermissionSet::parsePipeSet("|17|3|"), (PermissionSet{3, 17}));
    EXPECT_EQ((PermissionSet{17, 3, -2}.pipeSet()), "|-2|3|17|");
    for (const char* text : {"", "|"})
        EXPECT_EQ(PermissionSet::parsePipeSet(text), PermissionSet());
    EXPECT_EQ(PermissionSet().pipeSet(), "|");
    for (const char* text :
         {"||", "|3", "3|", "3", "|3||4|", "|x|", "|3 |", "|1.5|", "|9223372036854775808|", "|3|17", "|+3|"}) {
        EXPECT_EQ(PermissionSet::parsePipeSet(text), std::unexpected(PermissionSetError::invalidPipeSet)) << text;
    }
    EXPECT_FALSE(PermissionSet{ObjectID<Team>()}.pipeSet()) << "an unsaved team has no key";
}

TEST(Permissions, changeOneSetAtATime) {
    Permissions permissions;
    permissions.giveWriteAccess(1);
    EXPECT_TRUE(permissions.readPermissions.isEmpty());
    EXPECT_TRUE(permissions.isReadableByTeam(9));
    EXPECT_FALSE(permissions.isWritableByAnyTeamIn({2, 3}));
    EXPECT_FALSE(permissions.isWritableByAnyTeamIn({})) << "no team is in a set that has some";
    permissions.removeWriteAccess(1);
    EXPECT_TRUE(permissions.isWritableByTeam(2)) << "without its last team a set restricts nobody";
}

TEST(Verdicts, followTheRulesInTheirOrder) {
    using enum AccessRule;
    const Permissions salesOnly = both({1});
    struct Case {
        const char* name;
        PermissionChecker checker;
        Permissions permissions;
        AccessDecision read;
        AccessDecision remove;
    };
    const auto with = [](PermissionChecker checker, bool enabled, bool overridden) {
        checker.permissionSystemEnabled = enabled;
        checker.overridePermissionSystem = overridden;
        return checker;
    };
    const auto restricted = [](bool isAdmin, bool isSuper) {
        User user = member({1});
        user.isRestrictedToDeleteObjects = true;
        user.isAdmin = isAdmin;
        user.isSuper = isSuper;
        return user;
    };
    const AccessDecision shared{true, sharedTeam, ObjectID<Team>(1)};
    const Case cases[] = {
        {"empty", PermissionChecker::empty(), {}, {false, noUser}, {false, noUserMayNotDelete}},
        {"off, nobody",
         with(checkerFor({}), false, false),
         salesOnly,
         {true, permissionSystemDisabled},
         {false, noUserMayNotDelete}},
        {"overridden, nobody",
         with(checkerFor({}), true, true),
         salesOnly,
         {true, permissionSystemOverridden},
         {false, noUserMayNotDelete}},
        {"overridden",
         with(checkerFor(member({2})), true, true),
         salesOnly,
         {true, permissionSystemOverridden},
         {true, permissionSystemOverridden}},
        {"no teams", checkerFor(member({})), salesOnly, {true, userWithoutTeams}, {true, userWithoutTeams}},
        {"unrestricted", checkerFor(member({2})), {}, {true, recordUnrestricted}, {true, recordUnrestricted}},
        {"shared", checkerFor(member({1, 2})), salesOnly, shared, shared},
        {"not shared", checkerFor(member({2})), salesOnly, {false, noSharedTeam}, {false, noSharedTeam}},
        {"restricted", checkerFor(restricted(false, false)), salesOnly, shared, {false, restrictedMayNotDelete}},
        {"restricted, off",
         with(checkerFor(restricted(false, false)), false, false),
         salesOnly,
         {true, permissionSystemDisabled},
         {false, restrictedMayNotDelete}},
        {"restricted administrator", checkerFor(restricted(true, false)), salesOnly, shared, shared},
        {"restricted super user", checkerFor(restricted(false, true)), salesOnly, shared, shared},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.checker.decideRead(c.permissions), c.read);
        EXPECT_EQ(c.checker.decideUpdate(c.permissions), c.read) << "the same steps over the same set";
        EXPECT_EQ(c.checker.decideDelete(c.permissions), c.remove);
        EXPECT_EQ(c.checker.canDelete(c.permissions), c.remove.isAllowed);
    }
    const Company company{.organizationID = 1, .permissions = {.readPermissions = {1}, .writePermissions = {2}}};
    const PermissionChecker reader = checkerFor(member({1}));
    EXPECT_TRUE(reader.canRead(company));
    EXPECT_FALSE(reader.canUpdate(company));
    EXPECT_FALSE(reader.canDelete(company));
}

TEST(Visibilities, areTheFirstThatFits) {
    const VisibilityPreset internal{.visibilityPresetID = 1, .name = "Internal"};
    const PermissionChecker checker = checkerFor({});
    const auto of = [&](PermissionSet read, PermissionSet write) {
        return checker.visibility(
            Permissions{.readPermissions = std::move(read), .writePermissions = std::move(write)});
    };
    EXPECT_EQ(checker.visibility(Permissions{.visibilityPreset = internal}), Visibility::preset(internal));
    EXPECT_EQ(of({}, {}), Visibility::public_());
    EXPECT_EQ(of({1}, {2}), Visibility::private_()) << "only the counts matter";
    EXPECT_EQ(of({1, 3}, {1, 3}), Visibility::privateForTeam(sales));
    EXPECT_EQ(of({1, 3, 99}, {1}), Visibility::privateForTeam(sales)) << "unknown teams do not matter";
    EXPECT_EQ(of({1, 2}, {1}), Visibility::custom());
    EXPECT_EQ(of({1, 3}, {2, 3}), Visibility::custom());
    EXPECT_EQ(of({1}, {}), Visibility::custom());
    EXPECT_EQ(of({3, 99}, {3, 98}), Visibility::custom()) << "no ordinary team is left";

    EXPECT_EQ(of({}, {}).localizedDisplayName(), "Public");
    EXPECT_EQ(of({1}, {2}).localizedDisplayName(), "Private");
    EXPECT_EQ(of({1, 2}, {1}).localizedDisplayName(), "Custom");
    EXPECT_EQ(of({1, 3}, {1, 3}).localizedDisplayName(), "Sales");
    EXPECT_EQ(of({3, 4}, {3, 4}).localizedDisplayName(), "No Name");
    EXPECT_EQ(Visibility::preset({.visibilityPresetID = 2}).localizedDisplayName(), "No Name");
    EXPECT_EQ(of({1, 3}, {1, 3}).privateTeam(), sales);
    EXPECT_FALSE(of({1, 3}, {1, 3}).visibilityPreset());
}

}  // namespace
