#pragma once

#include <kestrel/foundation/choice.h>
#include <kestrel/foundation/read_only.h>
#include <utility>

namespace kestrel {

/// The codecs' way into members that are read-only and choices that have no default: a value that is being decoded is
/// filled in place.
class CodingAccess {
  public:
    /// What a member that is read-only holds, to be written.
    template <class T, class Owner>
    [[nodiscard]] static constexpr T& member(ReadOnly<T, Owner>& member) noexcept {
        return member.value_;
    }
    /// A member that is not read-only: itself.
    template <class T>
    [[nodiscard]] static constexpr T& member(T& member) noexcept {
        return member;  // NOLINT(bugprone-return-const-ref-from-parameter): members outlive the call.
    }
    /// What a member that is read-only holds.
    template <class T, class Owner>
    [[nodiscard]] static constexpr const T& member(const ReadOnly<T, Owner>& member) noexcept {
        return member.get();
    }
    /// What holds the payload of a choice, to be written.
    template <class Derived, class... Payloads>
    [[nodiscard]] static std::variant<Payloads...>& variant(Choice<Derived, Payloads...>& choice) noexcept {
        return choice.value_;
    }
    /// What holds the payload of a choice.
    template <class Derived, class... Payloads>
    [[nodiscard]] static const std::variant<Payloads...>& variant(const Choice<Derived, Payloads...>& choice) noexcept {
        return choice.value_;
    }
    /// A choice of the type `C` that holds the given variant.
    template <class C>
    [[nodiscard]] static C make(typename C::Variant variant) {
        return C(std::move(variant));
    }
};

/// What a member holds, seen through `ReadOnly`.
template <class M>
struct MemberValue {
    /// That of the member.
    using Type = M;
};
/// Of a member that is read-only: what it holds.
template <class T, class Owner>
struct MemberValue<ReadOnly<T, Owner>> {
    /// That of what it holds.
    using Type = T;
};
/// The type of what a member holds.
template <class M>
using MemberValueOf = typename MemberValue<M>::Type;

}  // namespace kestrel
