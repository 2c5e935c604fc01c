#pragma once

#include <concepts>
#include <type_traits>
#include <utility>

namespace kestrel {

class CodingAccess;

/// A member that callers read and only its owner replaces.
///
/// A record's identifier is declared `ReadOnly<ObjectID<Contact>, Contact> contactID;`. It is initialised from a plain
/// value and reads as one, an optional value as an optional. Assigning to it does not compile outside `Owner`, yet
/// whole records still copy, move, swap and sort, because their implicit assignment is the owner's own.
template <class T, class Owner>
class ReadOnly {
  public:
    /// What is held.
    using Value = T;
    /// Whether the value is an optional, so that it reads as one.
    static constexpr bool isOptional = requires(const T& value) {
        value.has_value();
        typename T::value_type;
    };

    /// From the plain value.
    // NOLINTNEXTLINE(google-explicit-constructor): an initialiser gives the plain value.
    constexpr ReadOnly(T value) : value_(std::move(value)) {}
    /// From whatever makes a value without a cast, such as a primary key for an identifier.
    template <std::convertible_to<T> U>
        requires(!std::same_as<std::remove_cvref_t<U>, ReadOnly> && !std::same_as<std::remove_cvref_t<U>, T>)
    // NOLINTNEXTLINE(google-explicit-constructor,bugprone-forwarding-reference-overload)
    constexpr ReadOnly(U&& value) : value_(std::forward<U>(value)) {}
    /// Empty, absent or zero. An identifier has no such value: it is always given.
    constexpr ReadOnly()
        requires(std::default_initializable<T> && !requires { typename T::Record; })
        : value_() {}
    ReadOnly(const ReadOnly&) = default;
    ReadOnly(ReadOnly&&) = default;
    ~ReadOnly() = default;

    /// Valid as long as the member.
    // NOLINTNEXTLINE(google-explicit-constructor): reads as the plain value.
    [[nodiscard]] constexpr operator const T&() const noexcept { return value_; }
    /// The value itself: of an optional, the optional. Valid as long as the member.
    [[nodiscard]] constexpr const T& get() const noexcept { return value_; }
    /// The value; of an optional, what it holds.
    [[nodiscard]] constexpr const auto& operator*() const noexcept {
        if constexpr (isOptional) {
            return *value_;
        } else {
            return value_;
        }
    }
    /// Reaches into the value; of an optional, into what it holds, which has to be there.
    [[nodiscard]] constexpr const auto* operator->() const noexcept { return &**this; }
    /// Whether the optional holds something.
    [[nodiscard]] constexpr explicit operator bool() const noexcept
        requires(isOptional)
    {
        return value_.has_value();
    }
    /// Whether the optional holds something.
    [[nodiscard]] constexpr bool has_value() const noexcept
        requires(isOptional)
    {
        return value_.has_value();
    }
    /// What the optional holds, or the given value when it holds nothing.
    template <class U>
    [[nodiscard]] constexpr auto value_or(U&& otherwise) const
        requires(isOptional)
    {
        return value_.value_or(std::forward<U>(otherwise));
    }

    /// Equal when the values are.
    friend constexpr bool operator==(const ReadOnly& a, const ReadOnly& b) { return a.value_ == b.value_; }
    /// With the plain value.
    friend constexpr bool operator==(const ReadOnly& a, const T& b) { return a.value_ == b; }
    /// With whatever the value compares with: a literal, an absent value.
    template <class U>
        requires(!std::same_as<U, ReadOnly> && !std::same_as<U, T> &&
                 requires(const T& value, const U& other) {
                     { value == other } -> std::convertible_to<bool>;
                 })
    friend constexpr bool operator==(const ReadOnly& a, const U& b) {
        return a.value_ == b;
    }

  private:
    friend Owner;
    friend CodingAccess;
    ReadOnly& operator=(const ReadOnly&) = default;
    ReadOnly& operator=(ReadOnly&&) = default;

    T value_;
};

}  // namespace kestrel
