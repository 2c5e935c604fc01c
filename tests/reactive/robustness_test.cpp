#include <gtest/gtest.h>
#include <kestrel/reactive/first_value.h>
#include <kestrel/reactive/pass_through_subject.h>
#include <kestrel/reactive/replay_subject.h>

#include <atomic>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include "probe.h"

// What subscribers may do at any moment: let everything go, ask, end, throw, and come from several threads.
namespace {

using namespace kestrel;
using Numbers = std::vector<int>;

TEST(ASubscriber, mayLetGoOfTheSubjectInsideADelivery) {
    auto replay = std::make_unique<ReplaySubject<int>>(3);
    Numbers values;
    AnyCancellable first = replay->eraseToAnyPublisher().sink([&](int value) {
        values.push_back(value);
        first.cancel();
        replay.reset();
    });
    const auto second = replay->eraseToAnyPublisher().sink([&](int value) { values.push_back(-value); });
    replay->send(1);
    EXPECT_EQ(values, (Numbers{1, -1}));

    // Also from its destructor, when it is the last to know the subject; and who cancels then is spared the rest.
    replay = std::make_unique<ReplaySubject<int>>(3);
    AnyCancellable fifth;
    AnyCancellable fourth = replay->eraseToAnyPublisher().sink([&, subject = *replay](int) {
        replay.reset();
        fourth.cancel();
        fifth.cancel();
    });
    fifth = replay->eraseToAnyPublisher().sink([&](int value) { values.push_back(value); });
    replay->send(2);
    EXPECT_EQ(values, (Numbers{1, -1}));

    auto through = std::make_unique<PassThroughSubject<int>>();
    const auto third = std::make_shared<Probe<int>>();
    third->onValue = [&](int) {
        third->subscription->cancel();
        third->subscription.reset();
        through.reset();
        return Demand(1);
    };
    through->subscribe(third);
    through->send(1);
    EXPECT_EQ(third->values, Numbers{1});
}

TEST(ASubscriber, mayLetGoOfItsSubscriptionInsideADeliveryThatItAskedFor) {
    const auto subscriber = std::make_shared<Probe<int>>(Demand::none());
    create<int>([](const Emitter<int, Never>& emitter) {
        emitter.send(1);
        emitter.send(2);
        return AnyCancellable();
    }).subscribe(subscriber);
    subscriber->onValue = [&](int) {
        subscriber->subscription->cancel();
        subscriber->subscription.reset();
        return Demand(1);
    };
    subscriber->request(Demand(1));
    EXPECT_EQ(subscriber->values, Numbers{1});
}

TEST(ASubscriber, getsTheRestWhenAPublisherEndsInsideADelivery) {
    const PassThroughSubject<int> subject;
    const auto subscriber = std::make_shared<Probe<int>>(Demand(1));
    subscriber->onValue = [&](int value) {
        if (value == 1) subject.finish();
        return Demand(1);
    };
    subject.eraseToAnyPublisher().append(just(2)).subscribe(subscriber);
    subject.send(1);
    EXPECT_EQ(subscriber->values, (Numbers{1, 2}));
    EXPECT_EQ(subscriber->completions.size(), 1U);
    EXPECT_EQ(subscriber->faults, std::vector<std::string>());
}

TEST(ASubscriber, whoThrowsStopsNothingElse) {
    const ReplaySubject<int> replay(2);
    std::optional<Emitter<int, Never>> emitter;
    int emitted = 0;
    int replayed = 0;
    const auto source = create<int>([&](const Emitter<int, Never>& given) {
        emitter = given;
        return AnyCancellable();
    });
    const auto throwingAtFirst = [](int& last) {
        return [&last](int value) {
            last = value;
            if (value == 1) throw std::bad_alloc();
        };
    };
    const auto first = source.sink(throwingAtFirst(emitted));
    const auto second = replay.eraseToAnyPublisher().sink(throwingAtFirst(replayed));
    EXPECT_THROW(emitter->send(1), std::bad_alloc);
    EXPECT_THROW(replay.send(1), std::bad_alloc);
    emitter->send(2);
    replay.send(2);
    EXPECT_EQ(emitted, 2);
    EXPECT_EQ(replayed, 2);
    for (int i = 0; i < 100; ++i)
        (void)replay.eraseToAnyPublisher().sink([](int) {});
    EXPECT_EQ(replay.subscriptionCount(), 1U);
}

/// A subscriber that nobody but the publisher knows, and that ends the subject when it gets a value.
template <class Subject>
class EndsItsSubject final : public Subscriber<int, Never> {
  public:
    EndsItsSubject(const Subject& subject, bool& isCutShort) : subject_(subject), isCutShort_(isCutShort) {}
    EndsItsSubject(const EndsItsSubject&) = delete;
    EndsItsSubject& operator=(const EndsItsSubject&) = delete;
    ~EndsItsSubject() override { isCutShort_ = isReceiving_; }

    void receive(std::shared_ptr<Subscription> given) override { given->request(Demand::unlimited()); }
    Demand receive(const int& /*value*/) override {
        isReceiving_ = true;
        subject_.finish();
        isReceiving_ = false;
        return Demand::none();
    }
    void receive(Completion<Never> /*completion*/) override {}

  private:
    const Subject& subject_;
    bool& isCutShort_;
    bool isReceiving_ = false;
};

template <class Subject>
void expectThatItMayEnd(const Subject& subject) {
    bool isCutShort = true;
    subject.subscribe(std::make_shared<EndsItsSubject<Subject>>(subject, isCutShort));
    subject.send(1);
    EXPECT_FALSE(isCutShort);
}

TEST(ASubscriber, mayEndTheSubjectInsideADeliveryToItself) {
    expectThatItMayEnd(ReplaySubject<int>(1));
    expectThatItMayEnd(PassThroughSubject<int>());
}

/// Cancels when it goes.
class CancelsAtLast final : public Subscriber<int, Never> {
  public:
    CancelsAtLast() = default;
    CancelsAtLast(const CancelsAtLast&) = delete;
    CancelsAtLast& operator=(const CancelsAtLast&) = delete;
    ~CancelsAtLast() override { subscription_->cancel(); }

    void receive(std::shared_ptr<Subscription> given) override {
        subscription_ = std::move(given);
        subscription_->request(Demand::unlimited());
    }
    Demand receive(const int& /*value*/) override { return Demand::none(); }
    void receive(Completion<Never> /*completion*/) override {}

  private:
    std::shared_ptr<Subscription> subscription_;
};

TEST(AnEmitter, letsGoOfASubscriberThatCancelsAtLast) {
    // Whoever is let go under the lock that cancelling takes waits for ever.
    std::optional<Emitter<int, Never>> emitter;
    const auto source = create<int>([&](const Emitter<int, Never>& given) {
        emitter = given;
        return AnyCancellable();
    });
    source.subscribe(std::make_shared<CancelsAtLast>());
    emitter->send(1);
    emitter->finish();
    EXPECT_TRUE(emitter->isCancelled());

    // The same for what a stage keeps, when it is cancelled during a value.
    AnyCancellable listening;
    const auto kept = std::make_shared<std::function<void()>>();
    listening =
        source.map([atLast = std::shared_ptr<void>(nullptr, [&](void*) { (*kept)(); })](int value) { return value; })
            .sink([&](int) { listening.cancel(); });
    bool wasCancelled = false;
    *kept = [&] { wasCancelled = emitter->isCancelled(); };
    emitter->send(2);
    EXPECT_TRUE(wasCancelled);
}

/// Throws when it is given its subscription, or at its first value.
class Throws final : public Subscriber<int, Never> {
  public:
    explicit Throws(bool atOnce) : atOnce_(atOnce) {}

    void receive(std::shared_ptr<Subscription> given) override {
        given->request(Demand::unlimited());
        if (atOnce_) throw std::bad_alloc();
    }
    Demand receive(const int& /*value*/) override { throw std::bad_alloc(); }
    void receive(Completion<Never> /*completion*/) override {}

  private:
    bool atOnce_;
};

TEST(ASubscriber, whoThrowsAtTheReplayIsNotSubscribed) {
    const ReplaySubject<int> replay(2);
    replay.send(1);
    for (const bool atOnce : {true, false})
        EXPECT_THROW(replay.receive(std::make_shared<Throws>(atOnce)), std::bad_alloc);
    EXPECT_EQ(replay.subscriptionCount(), 0U);
    replay.send(2);
    Numbers values;
    const auto listening = replay.eraseToAnyPublisher().sink([&](int value) { values.push_back(value); });
    EXPECT_EQ(values, (Numbers{1, 2}));
}

TEST(ASubscription, mayBeCancelledAgainWhenTheSubjectHasGone) {
    std::optional<ReplaySubject<int>> replay(ReplaySubject<int>(1));
    const auto probe = std::make_shared<Probe<int>>();
    const auto ended = std::make_shared<Probe<int>>();
    replay->subscribe(probe);
    probe->subscription->cancel();
    replay->subscribe(ended);
    replay->finish();
    replay.reset();
    probe->subscription->cancel();
    ended->subscription->cancel();
    probe->subscription->request(1);
    EXPECT_EQ(ended->completions.size(), 1U);
    EXPECT_EQ(probe->faults.size() + ended->faults.size(), 0U);
}

TEST(APassThroughSubject, countsThoseWhoCancelOnSeveralThreads) {
    constexpr int threads = 4;
    constexpr int each = 100;
    for (int round = 0; round < 20; ++round) {
        const PassThroughSubject<int> subject;
        const auto staying = subject.eraseToAnyPublisher().sink([](int) {});
        std::vector<std::vector<AnyCancellable>> leaving(threads);
        for (auto& ofThread : leaving) {
            for (int i = 0; i < each; ++i)
                ofThread.push_back(subject.eraseToAnyPublisher().sink([](int) {}));
        }
        std::vector<std::thread> running;
        for (auto& ofThread : leaving)
            running.emplace_back([&] { ofThread.clear(); });
        for (auto& thread : running)
            thread.join();
        std::vector<AnyCancellable> late;
        for (int i = 0; i < each; ++i)
            late.push_back(subject.eraseToAnyPublisher().sink([](int) {}));
        EXPECT_EQ(subject.subscriberCount(), each + 1U);
    }
}

TEST(ASubscriber, isCalledByOneThreadAtATimeAndNotAfterTheEnd) {
    class Watchful final : public Subscriber<int, Never> {
      public:
        void receive(std::shared_ptr<Subscription> subscription) override {
            const Inside inside(*this);
            hasSubscription = true;
            subscription->request(Demand::unlimited());
        }
        Demand receive(const int& /*value*/) override {
            const Inside inside(*this);
            if (!hasSubscription || hasEnded) ++faults;
            std::this_thread::yield();
            return Demand::none();
        }
        void receive(Completion<Never> /*completion*/) override {
            const Inside inside(*this);
            if (!hasSubscription || hasEnded) ++faults;
            hasEnded = true;
        }
        // Plain, so that a sanitizer sees who is not ordered.
        bool hasSubscription = false;
        bool hasEnded = false;
        std::atomic<int> faults = 0;

      private:
        struct Inside {
            explicit Inside(Watchful& watchful) : own(watchful) {
                if (own.callers++ > 0) ++own.faults;
            }
            ~Inside() { --own.callers; }
            Inside(const Inside&) = delete;
            Inside& operator=(const Inside&) = delete;
            Watchful& own;
        };
        std::atomic<int> callers = 0;
    };
    for (int round = 0; round < 200; ++round) {
        const PassThroughSubject<int> subject;
        std::vector<std::shared_ptr<Watchful>> subscribers;
        for (int i = 0; i < 4; ++i)
            subscribers.push_back(std::make_shared<Watchful>());
        subject.subscribe(subscribers[0]);
        {
            std::vector<std::jthread> threads;
            for (int sender = 0; sender < 3; ++sender) {
                threads.emplace_back([subject] {
                    for (int value = 0; value < 20; ++value)
                        subject.send(value);
                });
            }
            threads.emplace_back([subject, subscribers] {
                for (std::size_t i = 1; i < subscribers.size(); ++i)
                    subject.subscribe(subscribers[i]);
            });
            threads.emplace_back([subject] { subject.finish(); });
        }
        for (const auto& each : subscribers) {
            ASSERT_EQ(each->faults, 0);
            ASSERT_TRUE(each->hasEnded);
        }
    }
}

TEST(ASubscriber, mayBeOneOfVeryMany) {
    const ReplaySubject<int> replay(1);
    const PassThroughSubject<int> through;
    std::vector<AnyCancellable> all;
    for (int i = 0; i < 50'000; ++i) {
        all.push_back(replay.eraseToAnyPublisher().sink([](int) {}));
        all.push_back(through.eraseToAnyPublisher().sink([](int) {}));
    }
    // Quadratic work would take minutes here.
    all.clear();
    EXPECT_EQ(replay.subscriptionCount(), 0U);
    EXPECT_EQ(through.subscriberCount(), 0U);
}

TEST(ACoroutine, awaitsTheEndOfAPublisherThatOnlyEnds) {
    std::vector<int> ends;
    const auto wait = [&](AnyPublisher<Never, int> publisher) -> DetachedCoroutine {
        const std::expected<void, int> ended = co_await publisher;
        ends.push_back(ended ? 0 : ended.error());
    };
    wait(empty<Never, int>());
    wait(fail<Never>(7));
    const PassThroughSubject<Never, int> subject;
    wait(subject.eraseToAnyPublisher());
    EXPECT_EQ(ends, (Numbers{0, 7}));
    subject.finish();
    EXPECT_EQ(ends, (Numbers{0, 7, 0}));

    int told = 0;
    const auto listening = fail<Never>(3).sink([&](const Completion<int>& end) { told = end.failure().value(); });
    EXPECT_EQ(told, 3);
}

TEST(ATimer, losesWhatNobodyAsksFor) {
    std::optional<Emitter<int, Never>> emitter;
    const auto subscriber = std::make_shared<Probe<int>>(Demand(1));
    createUnbuffered<int>([&](const Emitter<int, Never>& given) {
        emitter = given;
        return AnyCancellable();
    }).subscribe(subscriber);
    for (const int value : {1, 2, 3})
        emitter->send(value);
    subscriber->request(Demand(1));
    EXPECT_EQ(subscriber->values, Numbers{1});
    // Of those that are sent inside a delivery only as many wait as are asked for.
    subscriber->request(Demand(1));
    subscriber->onValue = [&](int value) {
        if (value == 4) {
            emitter->send(5);
            emitter->send(6);
        }
        return Demand::none();
    };
    emitter->send(4);
    EXPECT_EQ(subscriber->values, (Numbers{1, 4, 5}));
    subscriber->request(Demand(1));
    emitter->send(7);
    emitter->finish();
    EXPECT_EQ(subscriber->values, (Numbers{1, 4, 5, 7}));
    EXPECT_EQ(subscriber->completions.size(), 1U);
}

}  // namespace
