#pragma once

#include <kestrel/coding/coding_access.h>
#include <kestrel/foundation/any_error.h>
#include <kestrel/foundation/choice.h>
#include <kestrel/foundation/enumeration.h>
#include <concepts>
#include <cstddef>
#include <optional>
#include <utility>
#include <variant>

namespace kestrel {

/// A choice that tells its case without the payload. `CaseName` is an enumeration of the same cases, backed by their
/// names as texts and coded as such.
template <class C>
concept AutoCaseName = TextBacked<typename C::CaseName> && requires(const C& value) {
    { value.caseName() } -> std::same_as<typename C::CaseName>;
};

/// The payload of a case that carries any error. `Which` keeps the payloads of different cases apart.
template <std::size_t Which>
struct ErrorPayload {
    /// From an AnyError alone: were every error to convert here, a choice that is an error itself would ask whether it
    /// is its own payload.
    template <std::same_as<AnyError> E>
    explicit ErrorPayload(E carried) : error(std::move(carried)) {}

    /// What is carried; never empty.
    AnyError error;

    friend bool operator==(const ErrorPayload&, const ErrorPayload&) = default;
};

/// The error of a payload; absent for none.
template <std::size_t Which>
[[nodiscard]] std::optional<AnyError> errorIn(const ErrorPayload<Which>* payload) {
    return payload != nullptr ? std::optional(payload->error) : std::nullopt;
}

namespace session_detail {

template <class P>
constexpr bool standsAt(std::size_t /*place*/, const P* /*type*/) {
    return true;
}
template <std::size_t Which>
constexpr bool standsAt(std::size_t place, const NoPayload<Which>* /*type*/) {
    return place == Which;
}
template <std::size_t Which>
constexpr bool standsAt(std::size_t place, const ErrorPayload<Which>* /*type*/) {
    return place == Which;
}

}  // namespace session_detail

/// A choice whose cases are those of the enumeration `Name`, in the same order. Cases are made and read by name, so a
/// list of payloads that does not agree with the enumeration does not compile.
template <class Derived, TextBacked Name, class... Payloads>
class NamedChoice : public Choice<Derived, Payloads...> {
  public:
    /// The enumeration of the cases.
    using CaseName = Name;

    /// The case without its payload.
    [[nodiscard]] constexpr CaseName caseName() const noexcept { return static_cast<CaseName>(this->caseIndex()); }

    friend bool operator==(const NamedChoice&, const NamedChoice&) = default;

  protected:
    /// For the constructor of what derives from this.
    using Base = NamedChoice;
    /// What holds the payload, in the order of the cases.
    using Variant = typename Choice<Derived, Payloads...>::Variant;

    /// From a payload at its place.
    explicit NamedChoice(Variant value) : Choice<Derived, Payloads...>(std::move(value)) { check(); }

    /// The case of that name, with a payload made of the arguments.
    template <Name name, class... Arguments>
    [[nodiscard]] static Derived make(Arguments&&... arguments) {
        return CodingAccess::make<Derived>(
            Variant(std::in_place_index<static_cast<std::size_t>(name)>, std::forward<Arguments>(arguments)...));
    }
    /// The payload of that case, or null for a value of another case.
    template <Name name>
    [[nodiscard]] const auto* payloadOf() const noexcept {
        return std::get_if<static_cast<std::size_t>(name)>(&CodingAccess::variant(*this));
    }
    /// The error of that case; absent for a value of another case.
    template <Name name>
    [[nodiscard]] std::optional<AnyError> errorOf() const {
        return errorIn(payloadOf<name>());
    }

  private:
    static constexpr void check() {
        static_assert(sizeof...(Payloads) == allCases<Name>.size(), "The names list the cases of the choice.");
        []<std::size_t... I>(std::index_sequence<I...>) {
            static_assert(((rawValueOfPlace(I) == I) && ...), "Names have the raw values 0, 1, 2 and so on.");
            static_assert((session_detail::standsAt(I, static_cast<const Payloads*>(nullptr)) && ...),
                          "A payload's number is its case's place.");
        }(std::make_index_sequence<sizeof...(Payloads)>());
    }
    static constexpr std::size_t rawValueOfPlace(std::size_t place) {
        return static_cast<std::size_t>(allCases<Name>[place]);
    }
};

}  // namespace kestrel
