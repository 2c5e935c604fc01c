#include <gtest/gtest.h>
#include <kestrel/reactive/first_value.h>
#include <kestrel/reactive/pass_through_subject.h>

#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "probe.h"

namespace {

using namespace kestrel;

template <class Output, class Failure>
std::shared_ptr<Probe<Output, Failure>> probe(const AnyPublisher<Output, Failure>& publisher,
                                              Demand demand = Demand::unlimited()) {
    auto made = std::make_shared<Probe<Output, Failure>>(demand);
    publisher.subscribe(made);
    return made;
}

/// The numbers from 1 to `count`, as they are asked for.
AnyPublisher<int> numbers(int count) {
    return create<int>([count](const Emitter<int, Never>& emitter) {
        for (int i = 1; i <= count; ++i)
            emitter.send(i);
        emitter.finish();
        return AnyCancellable();
    });
}

using Numbers = std::vector<int>;

TEST(ADemand, addsUpToAnyNumber) {
    EXPECT_EQ(Demand(3) + Demand(4), Demand(7));
    EXPECT_EQ(Demand(3) + Demand::unlimited(), Demand::unlimited());
    EXPECT_EQ(Demand(std::numeric_limits<std::int64_t>::max() - 1) + Demand(5), Demand::unlimited());
    EXPECT_EQ(Demand::unlimited().count(), std::nullopt);
    Demand demand = 1;
    EXPECT_TRUE(demand.take());
    EXPECT_FALSE(demand.take());
    Demand any = Demand::unlimited();
    EXPECT_TRUE(any.take());
    EXPECT_TRUE(any.isUnlimited());
}

TEST(ADemandDeathTest, isNeverNegative) {
    EXPECT_DEATH((void)Demand(-1), "negative number of values");
}

TEST(APublisher, sendsWhatIsAskedForAndAnEnd) {
    const auto slow = probe(numbers(3), 0);
    EXPECT_EQ(slow->values, Numbers());
    slow->request(2);
    EXPECT_EQ(slow->values, (Numbers{1, 2}));
    EXPECT_TRUE(slow->completions.empty());
    slow->request(1);
    EXPECT_EQ(slow->values, (Numbers{1, 2, 3}));
    EXPECT_EQ(slow->completions.size(), 1U) << "the end needs no demand";
    slow->request(5);
    slow->subscription->cancel();
    slow->subscription->cancel();
    EXPECT_EQ(slow->faults, std::vector<std::string>());

    EXPECT_EQ(probe(empty<int>(), 0)->completions.size(), 1U);
    EXPECT_EQ((probe(fail<int>(std::string("broken")), 0)->completions.at(0).failure()), "broken");
    const auto one = probe(just(7), 0);
    EXPECT_TRUE(one->completions.empty());
    one->request(Demand::unlimited());
    EXPECT_EQ(one->values, Numbers{7});
}

TEST(APublisher, isMadeAnewForEachSubscriber) {
    int made = 0;
    const auto publisher = deferred([&made] { return just(++made); });
    EXPECT_EQ(made, 0);
    EXPECT_EQ(probe(publisher)->values, Numbers{1});
    EXPECT_EQ(probe(publisher)->values, Numbers{2});
    // What remembers does so for each subscriber too.
    const auto changes = numbers(3).map([](int) { return 1; }).removeDuplicates();
    EXPECT_EQ(probe(changes)->values, Numbers{1});
    EXPECT_EQ(probe(changes)->values, Numbers{1});
    EXPECT_EQ(probe(numbers(4).dropFirst(3))->values, Numbers{4});
}

TEST(Operators, transformValuesAndEnds) {
    EXPECT_EQ(probe(numbers(3).map([](int n) { return std::to_string(n); }))->values,
              (std::vector<std::string>{"1", "2", "3"}));
    const auto odd = [](int n) { return n % 2 == 1; };
    EXPECT_EQ(probe(numbers(5).filter(odd))->values, (Numbers{1, 3, 5}));
    EXPECT_EQ(
        probe(numbers(5).compactMap([&](int n) { return odd(n) ? std::optional(n * 10) : std::nullopt; }))->values,
        (Numbers{10, 30, 50}));
    EXPECT_EQ(probe(numbers(2).append(numbers(3)).append(just(9)))->values, (Numbers{1, 2, 1, 2, 3, 9}));
    EXPECT_EQ(probe(numbers(5).first())->values, Numbers{1});
    EXPECT_TRUE(probe(empty<int>().first())->completions.at(0).isFinished());
    const auto failed = fail<int>(std::string("broken")).append(just<int, std::string>(3));
    EXPECT_EQ(probe(failed)->values, Numbers()) << "what failed is not gone on with";
    EXPECT_EQ(probe(failed.mapError([](const std::string& text) { return text.size(); }))->completions.at(0).failure(),
              6U);
}

/// Every operator, whatever is asked for and however: never more than that, nothing lost, one end.
TEST(Operators, keepToWhatIsAskedFor) {
    const auto odd = [](int n) { return n % 2 == 1; };
    const std::vector<std::pair<AnyPublisher<int>, Numbers>> publishers{
        {numbers(6), {1, 2, 3, 4, 5, 6}},
        {numbers(3).map([](int n) { return -n; }), {-1, -2, -3}},
        {numbers(9).filter(odd), {1, 3, 5, 7, 9}},
        {numbers(5).compactMap([&](int n) { return odd(n) ? std::optional(n) : std::nullopt; }), {1, 3, 5}},
        {numbers(9).map([](int n) { return n / 3; }).removeDuplicates(), {0, 1, 2, 3}},
        {numbers(5).dropFirst(2), {3, 4, 5}},
        {numbers(2).append(numbers(3)).append(just(9)), {1, 2, 1, 2, 3, 9}},
        {empty<int>().append(numbers(2)), {1, 2}},
        {numbers(4).receiveOn(std::make_shared<ImmediateScheduler>()), {1, 2, 3, 4}},
        {numbers(4).filter(odd).append(numbers(5).dropFirst(3)).map([](int n) { return n * 2; }), {2, 6, 8, 10}},
    };
    for (std::size_t i = 0; i < publishers.size(); ++i) {
        const auto& [publisher, expected] = publishers[i];
        for (const std::int64_t initial : {0, 1, 2, 3, 100}) {
            for (const std::int64_t perValue : {0, 1, 2}) {
                const auto subscriber = std::make_shared<Probe<int>>(Demand(initial));
                subscriber->onValue = [&](int) { return Demand(perValue); };
                publisher.subscribe(subscriber);
                for (int more = 0; more < 30; ++more)
                    subscriber->request(1);
                EXPECT_EQ(subscriber->faults, std::vector<std::string>()) << i << " " << initial << " " << perValue;
                EXPECT_EQ(subscriber->values, expected) << i << " " << initial << " " << perValue;
                EXPECT_EQ(subscriber->completions.size(), 1U) << i << " " << initial << " " << perValue;
            }
        }
    }
}

TEST(Cancelling, letsEverybodyGoAndIsDoneOnce) {
    int cancelled = 0;
    const auto held = std::make_shared<int>(3);
    const std::weak_ptr<int> watched = held;
    std::optional<Emitter<int, Never>> emitter;
    const auto publisher = create<int>([&](const Emitter<int, Never>& given) {
        emitter = given;
        return AnyCancellable([&] { ++cancelled; });
    });
    Numbers received;
    auto watching = publisher.map([](int n) { return n + 1; }).sink([&, kept = held](int n) { received.push_back(n); });
    emitter->send(1);
    watching.cancel();
    watching.cancel();
    emitter->send(2);
    EXPECT_EQ(received, Numbers{2});
    EXPECT_EQ(cancelled, 1);
    EXPECT_TRUE(emitter->isCancelled());
    EXPECT_EQ(watched.use_count(), 1) << "the handler is gone";
    {
        auto another = publisher.sink([](int) {});
        auto moved = std::move(another);
        EXPECT_EQ(cancelled, 1);
    }
    EXPECT_EQ(cancelled, 2) << "destroyed";
    // From inside a delivery, while there is more to deliver.
    auto self = std::make_shared<AnyCancellable>();
    received.clear();
    PassThroughSubject<int> subject;
    *self = subject.eraseToAnyPublisher().append(numbers(9)).sink([&, self](int n) {
        received.push_back(n);
        self->cancel();
    });
    subject.send(1);
    subject.send(2);
    subject.finish();
    EXPECT_EQ(received, Numbers{1});
    EXPECT_EQ(subject.subscriberCount(), 0U);
}

TEST(APassThroughSubject, servesThoseWhoAreThere) {
    const PassThroughSubject<int, std::string> subject;
    subject.send(1);
    const auto early = probe(subject.eraseToAnyPublisher());
    subject.send(2);
    const auto late = probe(subject.eraseToAnyPublisher(), 1);
    subject.send(3);
    subject.send(4);
    subject.send(Completion<std::string>::failed("broken"));
    subject.send(5);
    subject.send(Completion<std::string>::finished());
    EXPECT_EQ(early->values, (Numbers{2, 3, 4}));
    EXPECT_EQ(late->values, Numbers{3}) << "what is not asked for is lost";
    EXPECT_EQ(early->completions, std::vector{Completion<std::string>::failed("broken")});
    EXPECT_EQ(late->completions.size(), 1U);
    EXPECT_EQ(probe(subject.eraseToAnyPublisher(), 0)->completions.size(), 1U) << "ended before they came";
    EXPECT_EQ(early->faults, std::vector<std::string>());
}

TEST(VirtualTime, doesWorkInTheOrderInWhichItFallsDue) {
    const auto scheduler = std::make_shared<VirtualTimeScheduler>(Date(100));
    std::string order;
    const auto note = [&](const char* what) { return [&order, what] { order += what; }; };
    const auto later = scheduler->scheduleAfter(10, note("c"));
    auto never = scheduler->scheduleAfter(1, note("x"));
    const auto soon = scheduler->scheduleAfter(5, [&] {
        order += "b";
        EXPECT_EQ(scheduler->now(), Date(105));
        scheduler->schedule(note("B"));
    });
    scheduler->schedule(note("a"));
    never.cancel();
    EXPECT_EQ(order, "");
    scheduler->run();
    EXPECT_EQ(order, "a");
    scheduler->advanceBy(9.5);
    EXPECT_EQ(order, "abB");
    scheduler->advanceTo(Date(110));
    EXPECT_EQ(order, "abBc");

    const auto subscriber = probe(numbers(3).receiveOn(scheduler));
    EXPECT_EQ(subscriber->values, Numbers());
    scheduler->run();
    EXPECT_EQ(subscriber->values, (Numbers{1, 2, 3}));
    EXPECT_EQ(subscriber->completions.size(), 1U);
    AnyCancellable outlives;
    {
        VirtualTimeScheduler brief;
        outlives = brief.scheduleAfter(1, [] {});
    }
    outlives.cancel();
}

TEST(ACoroutine, awaitsTheFirstValue) {
    std::string log;
    const PassThroughSubject<int, std::string> subject;
    const auto run = [&]() -> DetachedCoroutine {
        const auto first = co_await subject.eraseToAnyPublisher();
        log += first ? "value " + std::to_string(*first) : "failure " + first.error().failure.value_or("none");
        log += "; ";
    };
    const auto immediate = [&]() -> DetachedCoroutine {
        log += std::to_string((co_await numbers(3)).value()) + "; ";
        const auto none = co_await empty<int, std::string>();
        log += none ? "?" : none.error().failure ? "failed" : "nothing; ";
    };
    immediate();
    EXPECT_EQ(log, "1; nothing; ");
    log.clear();
    run();
    EXPECT_EQ(log, "");
    EXPECT_EQ(subject.subscriberCount(), 1U);
    subject.send(4);
    EXPECT_EQ(log, "value 4; ");
    EXPECT_EQ(subject.subscriberCount(), 0U);
    run();
    subject.send(Completion<std::string>::failed("broken"));
    EXPECT_EQ(log, "value 4; failure broken; ");
    // From another thread, over and over, to meet the moment of the suspension.
    for (int round = 0; round < 500; ++round) {
        const PassThroughSubject<int> other;
        std::atomic<int> got = 0;
        std::thread sender([&] {
            while (got == 0)
                other.send(5);
        });
        [](const PassThroughSubject<int>& from, std::atomic<int>& into) -> DetachedCoroutine {
            into = (co_await from.eraseToAnyPublisher()).value();
        }(other, got);
        sender.join();
        ASSERT_EQ(got, 5);
    }
}

}  // namespace
