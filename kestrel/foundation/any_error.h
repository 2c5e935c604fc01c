#pragma once

#include <kestrel/foundation/enumeration.h>
#include <kestrel/foundation/platform_error.h>
#include <kestrel/foundation/type_name.h>
#include <concepts>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace kestrel {

class AnyError;

namespace error_detail {

template <class E>
concept HasCases = requires(const E& error) {
    { error.caseIndex() } -> std::convertible_to<std::size_t>;
};
/// A type that says itself what its platform form is, in a function beside it.
template <class E>
concept HasPlatformForm = requires(const E& error) {
    { platformError(error) } -> std::same_as<PlatformError>;
};

/// Says in the current language that such an error happened. Defined in localization/, which stands below this room.
[[nodiscard]] std::string describePlainForm(std::string_view domain, std::int64_t code);

[[nodiscard]] PlatformError plainForm(std::string_view type, std::int64_t code);

}  // namespace error_detail

/// What may be carried as an AnyError: a PlatformError, an enumeration, a choice, or a type with a function
/// `PlatformError platformError(const E&)` beside it.
template <class E>
concept ErrorValue =
    !std::same_as<E, AnyError> &&
    (std::same_as<E, PlatformError> || error_detail::HasPlatformForm<E> || Enumeration<E> || error_detail::HasCases<E>);

namespace error_detail {

template <ErrorValue E>
[[nodiscard]] PlatformError formOf(const E& error) {
    if constexpr (std::same_as<E, PlatformError>) {
        return error;
    } else if constexpr (HasPlatformForm<E>) {
        return platformError(error);
    } else if constexpr (Enumeration<E>) {
        return plainForm(typeName<E>(), static_cast<std::int64_t>(error));
    } else {
        return plainForm(typeName<E>(), static_cast<std::int64_t>(error.caseIndex()));
    }
}

}  // namespace error_detail

/// Any error. A value that its copies share; never empty but after it was moved from.
class AnyError {
  public:
    /// Takes the error as it is. Any error converts, so that functions can take an AnyError.
    template <ErrorValue E>
    // NOLINTNEXTLINE(google-explicit-constructor): every error is one.
    AnyError(E error) : error_(std::make_shared<const Holder<E>>(std::move(error))) {}

    /// The error itself when it is an `E`, else null.
    template <class E>
    [[nodiscard]] const E* as() const noexcept {
        const auto* holder = dynamic_cast<const Holder<E>*>(error_.get());
        return holder == nullptr ? nullptr : &holder->error;
    }
    /// Its common form. Enumerations and choices that do not say otherwise have "KestrelService." and their name as
    /// domain, and the case's number as code: the raw value, or the place in the order of declaration.
    [[nodiscard]] PlatformError platformError() const { return error_->form(); }

    /// The same common form.
    friend bool operator==(const AnyError& a, const AnyError& b) {
        return a.error_ == b.error_ ||
               (a.error_ != nullptr && b.error_ != nullptr && a.platformError() == b.platformError());
    }

  private:
    struct Base {
        Base() = default;
        Base(const Base&) = delete;
        Base& operator=(const Base&) = delete;
        virtual ~Base() = default;
        [[nodiscard]] virtual PlatformError form() const = 0;
    };
    template <class E>
    struct Holder final : Base {
        // Asked here: a concept that asks it would have a choice that is an error ask whether it is its own payload.
        static_assert(std::copy_constructible<E>);
        explicit Holder(E held) : error(std::move(held)) {}
        [[nodiscard]] PlatformError form() const override { return error_detail::formOf(error); }
        E error;
    };

    std::shared_ptr<const Base> error_;
};

}  // namespace kestrel
