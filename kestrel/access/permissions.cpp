#include <kestrel/access/permissions.h>
#include <kestrel/coding/wire_form.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <span>
#include <utility>

namespace kestrel {

KESTREL_FIELDS(PermissionSet, teamIDs);
KESTREL_FIELDS(Permissions, readPermissions, writePermissions, visibilityPreset);

namespace {

using Teams = std::span<const ObjectID<Team>>;

Teams teamsOf(const TeamIDs& set) noexcept {
    return set.empty() ? Teams() : Teams(&*set.begin(), set.size());
}

std::uint64_t bitOf(const ObjectID<Team>& saved) noexcept {
    return std::uint64_t{1} << (static_cast<std::uint64_t>(*saved.value()) & 63U);
}

/// A bit for the last six bits of each key. Sets whose bits differ share nothing; a company's teams have keys so close
/// to each other that the reverse is mostly true, too.
std::uint64_t bitsOf(Teams saved) noexcept {
    std::uint64_t bits = 0;
    for (const ObjectID<Team>& team : saved)
        bits |= bitOf(team);
    return bits;
}

/// Whether all keys lie so close to each other that different ones have different bits.
bool haveBitsOfTheirOwn(Teams a, Teams b) noexcept {
    const std::int64_t least = std::min(*a.front().value(), *b.front().value());
    const std::int64_t greatest = std::max(*a.back().value(), *b.back().value());
    return static_cast<std::uint64_t>(greatest) - static_cast<std::uint64_t>(least) < 64;
}

/// Whether a set has a key, found by halving, without jumps that depend on keys.
bool hasKey(Teams saved, std::int64_t key) noexcept {
    std::size_t at = 0;
    for (std::size_t left = saved.size(); left > 1;) {
        const std::size_t half = left / 2;
        at += half & (std::size_t{0} - static_cast<std::size_t>(*saved[at + half].value() <= key));
        left -= half;
    }
    return *saved[at].value() == key;
}

/// The first of a few saved teams that is among many: by comparing all, where they are few, or by their bits. What bits
/// that are shared by keys leave open is looked for, in searches that need nothing of each other, and so overlap.
const ObjectID<Team>* firstSharedOfSaved(Teams few, Teams many) noexcept {
    constexpr std::size_t fewComparisons = 8;
    if (few.size() * many.size() <= fewComparisons) {
        for (const ObjectID<Team>& team : few) {
            bool isShared = false;
            for (const ObjectID<Team>& other : many)
                isShared |= *other.value() == *team.value();
            if (isShared) return &team;
        }
        return nullptr;
    }
    const std::uint64_t bits = bitsOf(many);
    const bool isExact = haveBitsOfTheirOwn(few, many);
    if (!isExact && (bitsOf(few) & bits) == 0) return nullptr;
    for (const ObjectID<Team>& team : few) {
        if ((bitOf(team) & bits) != 0 && (isExact || hasKey(many, *team.value()))) return &team;
    }
    return nullptr;
}

const ObjectID<Team>* firstShared(Teams few, Teams many) noexcept {
    if (few.size() > many.size()) std::swap(few, many);
    if (few.empty()) return nullptr;
    // Saved teams stand in front of others: when the last one is saved, all are.
    constexpr std::size_t usual = 32;
    if (many.size() <= usual && few.back().isPersistent() && many.back().isPersistent())
        return firstSharedOfSaved(few, many);
    if (few.back() < many.front() || many.back() < few.front()) return nullptr;
    for (std::size_t i = 0, k = 0; i < few.size() && k < many.size();) {
        const auto order = few[i] <=> many[k];
        if (order == 0) return &few[i];
        if (order < 0) {
            ++i;
        } else {
            ++k;
        }
    }
    return nullptr;
}

}  // namespace

std::optional<ObjectID<Team>> firstSharedTeam(const TeamIDs& a, const TeamIDs& b) noexcept {
    const ObjectID<Team>* const shared = firstShared(teamsOf(a), teamsOf(b));
    return shared != nullptr ? std::optional(*shared) : std::nullopt;
}

bool PermissionSet::isAuthorized(const TeamIDs& anyOf) const noexcept {
    return isEmpty() || firstShared(teamsOf(teamIDs), teamsOf(anyOf)) != nullptr;
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
