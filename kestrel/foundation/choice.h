#pragma once

#include <cstddef>
#include <optional>
#include <utility>
#include <variant>

namespace kestrel {

class CodingAccess;

/// The payload of a case that has none. `Which` keeps the payloads of different cases apart.
template <std::size_t Which>
struct NoPayload {
    friend constexpr bool operator==(NoPayload, NoPayload) = default;
};

/// A choice between a closed set of cases, each with a payload of its own type. What derives from it names the cases:
/// a static function makes each, a member function of the same name reads it back as an optional.
///
///     const TaskID id = TaskID::taskOccurrence(series, dueDate);
///     id.taskOccurrence()->dueDate;
///     id.match([](const ObjectID<Task>& task) { … }, [](const TaskID::TaskOccurrence& occurrence) { … });
///
/// Two values are equal when they are of the same case and their payloads are equal.
template <class Derived, class... Payloads>
class Choice {
  public:
    /// What holds the payload, in the order of the cases. For codecs: others use `match` and the named cases.
    using Variant = std::variant<Payloads...>;

    /// Calls the visitor whose parameter is the payload of this value's case. One visitor a case: a missing one does
    /// not compile.
    template <class... Visitors>
    // NOLINTNEXTLINE(modernize-use-nodiscard): visitors may be called for what they do.
    decltype(auto) match(Visitors&&... visitors) const {
        return std::visit(Overloaded{std::forward<Visitors>(visitors)...}, value_);
    }
    /// The case's place in the order of declaration, from 0.
    [[nodiscard]] constexpr std::size_t caseIndex() const noexcept { return value_.index(); }

    friend bool operator==(const Choice&, const Choice&) = default;

  protected:
    /// From a payload at its place. What derives from this calls it for each of its cases.
    explicit Choice(Variant value) : value_(std::move(value)) {}

    /// The payload when it is of that type, else null. Valid as long as the value.
    template <class Payload>
    [[nodiscard]] const Payload* payloadIf() const noexcept {
        return std::get_if<Payload>(&value_);
    }
    /// A copy of the payload when it is of that type, else absent.
    template <class Payload>
    [[nodiscard]] std::optional<Payload> payload() const {
        if (const auto* found = payloadIf<Payload>()) return *found;
        return std::nullopt;
    }

  private:
    friend CodingAccess;

    template <class... Visitors>
    struct Overloaded : Visitors... {
        using Visitors::operator()...;
    };
    template <class... Visitors>
    Overloaded(Visitors...) -> Overloaded<Visitors...>;

    Variant value_;
};

}  // namespace kestrel
