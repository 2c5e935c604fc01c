#pragma once

#include <kestrel/reactive/publisher.h>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace kestrel {

namespace stub_detail {

/// How an argument is kept: a view as what it views.
template <class Argument>
struct Kept {
    using Type = std::remove_cvref_t<Argument>;
};
template <>
struct Kept<std::string_view> {
    using Type = std::string;
};

template <class Result>
struct Unprepared {
    static Result answer() { return Result(); }
};
template <class Output, class Failure>
struct Unprepared<AnyPublisher<Output, Failure>> {
    static AnyPublisher<Output, Failure> answer() { return empty<Output, Failure>(); }
};

}  // namespace stub_detail

/// Declared for all signatures, and defined for those of functions.
template <class Signature>
class Stub;

/// One requirement of a recording service: keeps the arguments of every call, and answers as it was prepared to.
/// Without preparation a publisher finishes without a value, and any other answer is the empty or the first one of its
/// type.
template <class Result, class... Arguments>
class Stub<Result(Arguments...)> {
  public:
    /// The arguments of one call; views as what they view.
    using Call = std::tuple<typename stub_detail::Kept<Arguments>::Type...>;

    /// What it was called with, in that order.
    [[nodiscard]] const std::vector<Call>& calls() const noexcept { return calls_; }
    /// How often it was called.
    [[nodiscard]] std::size_t callCount() const noexcept { return calls_.size(); }

    /// Every call from now on is answered with that.
    template <class Value>
        requires(std::convertible_to<Value, Result>)
    void returns(Value value) {
        answer_ = [value = Result(std::move(value))](Arguments...) { return value; };
    }
    /// Every call from now on is answered with what the function gives for its arguments.
    void answers(std::function<Result(Arguments...)> answer) { answer_ = std::move(answer); }

    /// Keeps the arguments and answers.
    Result operator()(Arguments... arguments) {
        calls_.emplace_back(typename stub_detail::Kept<Arguments>::Type(arguments)...);
        if (answer_) return answer_(std::forward<Arguments>(arguments)...);
        return stub_detail::Unprepared<Result>::answer();
    }

  private:
    std::vector<Call> calls_;
    std::function<Result(Arguments...)> answer_;
};

}  // namespace kestrel
