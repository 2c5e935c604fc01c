#include <kestrel/access/permissions.h>
#include <kestrel/coding/wire_form.h>

#include <charconv>

namespace kestrel {

KESTREL_FIELDS(PermissionSet, teamIDs);
KESTREL_FIELDS(Permissions, readPermissions, writePermissions, visibilityPreset);

std::optional<ObjectID<Team>> firstSharedTeam(const TeamIDs& a, const TeamIDs& b) noexcept {
    if (a.empty() || b.empty()) return std::nullopt;
    const ObjectID<Team>* left = &*a.begin();
    const ObjectID<Team>* const leftEnd = left + a.size();
    const ObjectID<Team>* right = &*b.begin();
    const ObjectID<Team>* const rightEnd = right + b.size();
    if (leftEnd[-1] < *right || rightEnd[-1] < *left) return std::nullopt;
    while (left != leftEnd && right != rightEnd) {
        const auto order = *left <=> *right;
        if (order == 0) return *left;
        if (order < 0) {
            ++left;
        } else {
            ++right;
        }
    }
    return std::nullopt;
}

bool PermissionSet::isAuthorized(const TeamIDs& anyOf) const noexcept {
    return isEmpty() || firstSharedTeam(teamIDs, anyOf).has_value();
}

std::expected<PermissionSet, PermissionSetError> PermissionSet::parsePipeSet(std::string_view text) {
    PermissionSet set;
    if (text.empty() || text == "|") return set;
    const std::unexpected invalid(PermissionSetError::invalidPipeSet);
    if (text.size() < 3 || text.front() != '|' || text.back() != '|') return invalid;
    text.remove_prefix(1);
    while (!text.empty()) {
        const std::string_view token = text.substr(0, text.find('|'));
        text.remove_prefix(token.size() + 1);
        std::int64_t key = 0;
        const auto [end, problem] = std::from_chars(token.data(), token.data() + token.size(), key);
        if (problem != std::errc() || end != token.data() + token.size()) return invalid;
        set.add(key);
    }
    return set;
}

std::optional<std::string> PermissionSet::pipeSet() const {
    std::string text = "|";
    for (const ObjectID<Team>& team : teamIDs) {
        const auto key = team.value();
        if (!key) return std::nullopt;
        text += std::to_string(*key);
        text += '|';
    }
    return text;
}

}  // namespace kestrel
