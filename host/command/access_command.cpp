#include <fmt/format.h>
#include <host/command/access_command.h>
#include <host/services/host_runtime.h>
#include <host/services/records_service.h>
#include <host/services/value_of.h>
#include <host/store/find_record.h>
#include <host/terminal/json_object.h>
#include <host/terminal/text.h>

#include <array>
#include <string>
#include <string_view>

namespace kestrel::host {
namespace {

/// One of the things that a user may do with a record.
struct Action {
    std::string_view name;
    /// As in "may …".
    std::string_view verb;
    AccessDecision decision;
    /// The teams that may do it.
    TeamIDs teams;
};

struct Verdict {
    std::string record;
    std::string userName;
    std::string visibility;
    std::array<Action, 3> actions;
};

Verdict verdictOf(const std::string& record, const RecordAccess& access) {
    const TeamIDs& readers = access.permissions.readPermissions.teamIDs;
    const TeamIDs& writers = access.permissions.writePermissions.teamIDs;
    return {.record = record,
            .userName = shownName(access.user),
            .visibility = access.visibility,
            .actions = {{{"read", "read it", access.read, readers},
                         {"update", "change it", access.update, writers},
                         {"delete", "delete it", access.deletion, writers}}}};
}

/// "the team Central", "the teams Central and Moses Frase".
std::string teamsCalled(const Directory& directory, const TeamIDs& teams) {
    const std::vector<std::string> names = directory.teamNames(teams);
    std::string text = names.size() == 1 ? "the team " : "the teams ";
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i > 0) text += i + 1 == names.size() ? " and " : ", ";
        text += names[i];
    }
    return text;
}

/// The rule in plain words.
std::string reason(const Action& action, const User& user, const Directory& directory) {
    using enum AccessRule;
    const std::string name = shownName(user);
    switch (action.decision.rule) {
        case noUser:
        case noUserMayNotDelete: return "nobody is signed in";
        case restrictedMayNotDelete:
            return fmt::format("{} is restricted to delete records, and neither administrator nor super user", name);
        case permissionSystemDisabled: return "the permission system is switched off";
        case permissionSystemOverridden: return "the permission system is overridden";
        case userWithoutTeams:
            return fmt::format("{} is in no team, and such users may {} whatever teams it names", name, action.verb);
        case recordUnrestricted: return fmt::format("no team is named that may {}, so everybody may", action.verb);
        case sharedTeam:
            return fmt::format("{} may {}, and {} is in {}", teamsCalled(directory, action.teams), action.verb, name,
                               directory.teamName(action.decision.sharedTeamID.value()));
        case noSharedTeam:
            return fmt::format("only {} may {}, and {} is in {}", teamsCalled(directory, action.teams), action.verb,
                               name, teamsCalled(directory, user.teamIDs));
    }
    throw Failure("the access rule is unknown");
}

std::string verdictText(const Verdict& verdict, const User& user, const Directory& directory) {
    constexpr std::size_t labelWidth = 12;
    constexpr std::size_t answerWidth = 5;
    const auto row = [&](std::string_view label, const std::string& text) {
        return padded(label, labelWidth) + printable(text) + "\n";
    };
    std::string text =
        row("record", verdict.record) + row("user", verdict.userName) + row("visibility", verdict.visibility);
    for (const Action& action : verdict.actions) {
        text += row(action.name,
                    padded(action.decision.isAllowed ? "yes" : "no", answerWidth) + reason(action, user, directory));
    }
    return text;
}

std::string verdictJSON(const Verdict& verdict, const User& user, const Directory& directory) {
    JSONObject json;
    json.add("record", verdict.record).add("user", verdict.userName).add("visibility", verdict.visibility);
    for (const Action& action : verdict.actions) {
        JSONObject decision;
        decision.add("isAllowed", action.decision.isAllowed).add("rule", caseName(action.decision.rule));
        decision.add("teams", directory.teamNames(action.teams));
        if (const auto& shared = action.decision.sharedTeamID) decision.add("sharedTeam", directory.teamName(*shared));
        decision.add("reason", reason(action, user, directory));
        json.add(action.name, decision);
    }
    return json.json();
}

}  // namespace

void accessCommand(const AccessOptions& options, Output& output, const Terminal& terminal) {
    const AnyObjectID id = identifierOf(options.record);
    Runtime runtime = makeUserRuntime(options.database, options.user);
    RecordsService& records = runtime[host_services::records];
    const RecordAccess access = valueOf(records.decideAccess(id), id);
    const Directory directory = valueOf(records.fetchDirectory());
    const Verdict verdict = verdictOf(id.stringValue(), access);
    if (!options.isJSON) return output.write(verdictText(verdict, access.user, directory));
    writeJSONLine(verdictJSON(verdict, access.user, directory), output, terminal);
}

}  // namespace kestrel::host
