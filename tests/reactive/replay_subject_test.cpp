#include <gtest/gtest.h>
#include <kestrel/reactive/pass_through_subject.h>
#include <kestrel/reactive/replay_subject.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "probe.h"

namespace {

using namespace kestrel;
using Numbers = std::vector<int>;

std::shared_ptr<Probe<int>> subscribe(const ReplaySubject<int>& subject, Demand demand = Demand::unlimited()) {
    auto subscriber = std::make_shared<Probe<int>>(demand);
    subject.receive(subscriber);
    return subscriber;
}

TEST(AReplaySubject, replaysItsLastValuesAndItsEnd) {
    const ReplaySubject<int> subject(2);
    const auto early = subscribe(subject);
    for (const int value : {1, 2, 3})
        subject.send(value);
    const auto late = subscribe(subject);
    EXPECT_EQ(late->values, (Numbers{2, 3}));
    subject.send(4);
    subject.finish();
    subject.send(5);
    subject.finish();
    const auto last = subscribe(subject);
    EXPECT_EQ(early->values, (Numbers{1, 2, 3, 4}));
    EXPECT_EQ(late->values, (Numbers{2, 3, 4}));
    EXPECT_EQ(last->values, (Numbers{4, 5})) << "what comes after the end is only replayed";
    for (const auto& each : {early, late, last}) {
        EXPECT_EQ(each->completions.size(), 1U);
        EXPECT_EQ(each->faults, std::vector<std::string>());
    }
    EXPECT_EQ(subject.subscriptionCount(), 0U);
    const ReplaySubject<int> none(0);
    none.send(1);
    EXPECT_EQ(subscribe(none)->values, Numbers());
}

TEST(AReplaySubject, dropsWhatIsNotAskedFor) {
    const ReplaySubject<int> subject(3);
    for (const int value : {1, 2, 3})
        subject.send(value);
    const auto subscriber = subscribe(subject, 2);
    EXPECT_EQ(subscriber->values, (Numbers{1, 2})) << "the replay keeps to the demand too";
    subject.send(4);
    subscriber->request(0);
    subscriber->request(1);
    subject.send(5);
    subject.send(6);
    EXPECT_EQ(subscriber->values, (Numbers{1, 2, 5}));
    subscriber->subscription->cancel();
    subscriber->subscription->cancel();
    subscriber->subscription->request(9);
    subject.send(7);
    subject.finish();
    EXPECT_EQ(subscriber->values, (Numbers{1, 2, 5}));
    EXPECT_TRUE(subscriber->completions.empty());
    EXPECT_EQ(subscriber.use_count(), 1) << "the subject has let it go";
}

TEST(AReplaySubject, takesValuesFromInsideADelivery) {
    const ReplaySubject<int> subject(4);
    const auto sender = std::make_shared<Probe<int>>();
    sender->onValue = [&](int value) {
        if (value < 10) subject.send(value * 10);
        return Demand::none();
    };
    subject.receive(sender);
    const auto listener = subscribe(subject);
    subject.send(1);
    EXPECT_EQ(sender->values, (Numbers{1, 10}));
    EXPECT_EQ(listener->values, (Numbers{10, 1})) << "the inner value reaches everybody first";
    // In the middle of a replay: nothing is lost and nothing comes twice.
    const ReplaySubject<int> other(2);
    other.send(1);
    other.send(2);
    const auto echo = std::make_shared<Probe<int>>();
    echo->onValue = [&](int value) {
        if (value == 1) other.send(3);
        return Demand::none();
    };
    other.receive(echo);
    other.send(4);
    EXPECT_EQ(echo->values, (Numbers{1, 3, 2, 4}));
    EXPECT_EQ(subscribe(other)->values, (Numbers{3, 4}));
}

TEST(AReplaySubject, isChangedFromInsideADelivery) {
    const ReplaySubject<int> subject(1);
    const auto first = std::make_shared<Probe<int>>();
    const auto second = subscribe(subject);
    std::vector<std::shared_ptr<Probe<int>>> late;
    first->onValue = [&](int) {
        first->subscription->cancel();
        second->subscription->cancel();
        for (int i = 0; i < 50; ++i)
            late.push_back(subscribe(subject));
        return Demand::none();
    };
    subject.receive(first);
    subject.send(1);
    EXPECT_EQ(first->values, Numbers{1});
    for (const auto& each : late)
        EXPECT_EQ(each->values, Numbers{1}) << "by the replay alone";
    EXPECT_EQ(subject.subscriptionCount(), 50U);
    // Values that are sent while the subscriber is given its subscription come behind the replay, however many.
    const ReplaySubject<int> fresh(1);
    fresh.send(0);
    class Eager : public Probe<int> {
      public:
        explicit Eager(const ReplaySubject<int>& subject) : subject_(&subject) {}
        using Probe<int>::receive;
        void receive(std::shared_ptr<Subscription> given) override {
            Probe<int>::receive(std::move(given));
            subject_->send(1);
            subject_->send(2);
            subject_->finish();
        }

      private:
        const ReplaySubject<int>* subject_;
    };
    const auto eager = std::make_shared<Eager>(fresh);
    fresh.receive(eager);
    EXPECT_EQ(eager->values, (Numbers{0, 1, 2}));
    EXPECT_EQ(eager->completions.size(), 1U);
    EXPECT_EQ(eager->faults, std::vector<std::string>());
}

TEST(AReplaySubjectDeathTest, stopsAtNegativeNumbers) {
    EXPECT_DEATH(ReplaySubject<int>(-1), "negative size");
    const ReplaySubject<int> subject(1);
    const auto subscriber = subscribe(subject, 0);
    EXPECT_DEATH(subscriber->subscription->request(-1), "negative number of values");
}

/// How much arrives for what is asked for at first and after each value, by a table of cases that others have agreed
/// on.
TEST(Subjects, deliverAsMuchAsTheTableOfDemandsSays) {
    const std::filesystem::path file =
        std::filesystem::path(KESTREL_SHARED_DIR) / "corpora/demand-rules/demand_matrix.tsv";
    if (!std::filesystem::exists(file)) GTEST_SKIP() << file << " is not there";
    const auto demandOf = [](const std::string& text) {
        return text == "none" ? Demand::none() : text == "unlimited" ? Demand::unlimited() : Demand(std::stoll(text));
    };
    std::ifstream lines(file);
    std::string line;
    std::getline(lines, line);
    int checked = 0;
    while (std::getline(lines, line)) {
        std::istringstream row(line);
        std::string initial;
        std::string returned;
        int sent = 0;
        std::size_t received = 0;
        std::size_t completions = 0;
        row >> initial >> returned >> sent >> received >> completions;
        ASSERT_FALSE(row.fail()) << line;
        // "0x5": five times 0; otherwise one demand a value, separated by commas; nothing behind them.
        std::vector<Demand> perValue;
        if (const auto times = returned.find('x'); times != std::string::npos) {
            perValue.assign(std::stoul(returned.substr(times + 1)), demandOf(returned.substr(0, times)));
        } else {
            std::istringstream list(returned);
            for (std::string each; std::getline(list, each, ',');)
                perValue.push_back(demandOf(each));
        }
        const auto check = [&](const auto& subject) {
            const auto subscriber = std::make_shared<Probe<int>>(demandOf(initial));
            subscriber->onValue = [&](int) {
                const std::size_t index = subscriber->values.size() - 1;
                return index < perValue.size() ? perValue[index] : Demand::none();
            };
            subject.subscribe(subscriber);
            for (int i = 0; i < sent; ++i)
                subject.send(i);
            subject.finish();
            EXPECT_EQ(subscriber->values.size(), received) << line;
            EXPECT_EQ(subscriber->completions.size(), completions) << line;
            EXPECT_EQ(subscriber->faults, std::vector<std::string>()) << line;
        };
        check(ReplaySubject<int>(16));
        check(PassThroughSubject<int>());
        ++checked;
    }
    EXPECT_EQ(checked, 25);
}

/// Subscribers of a crowd: request, cancel and send back at random, and see the order in which everybody sees values.
TEST(AReplaySubject, servesManyThreadsAtOnce) {
    constexpr int senders = 8;
    constexpr int subscribers = 16;
    constexpr int rounds = 2'000;
    const ReplaySubject<int> subject(16);
    std::atomic<int> sentBack = 0;
    class Wild : public Subscriber<int, Never> {
      public:
        Wild(const ReplaySubject<int>& subject, std::atomic<int>& sentBack, unsigned seed)
            : subject_(&subject), sentBack_(&sentBack), random_(seed) {}
        void receive(std::shared_ptr<Subscription> given) override {
            {
                const std::scoped_lock lock(mutex_);
                subscription_ = given;
            }
            given->request(5);
        }
        Demand receive(const int& value) override {
            values.push_back(value);
            if (value >= 0 && random_() % 64 == 0 && sentBack_->fetch_add(1) < 500) subject_->send(-1);
            return random_() % 3 == 0 ? Demand(2) : Demand(1);
        }
        void receive(Completion<Never> /*completion*/) override { ++ends; }
        std::shared_ptr<Subscription> subscription() {
            const std::scoped_lock lock(mutex_);
            return subscription_;
        }
        // Touched under the subject's lock only, and read when all is over.
        std::vector<int> values;
        int ends = 0;

      private:
        const ReplaySubject<int>* subject_;
        std::atomic<int>* sentBack_;
        std::mt19937 random_;
        std::mutex mutex_;
        std::shared_ptr<Subscription> subscription_;
    };
    std::vector<std::shared_ptr<Wild>> all(subscribers);
    std::vector<std::thread> threads;
    for (int i = 0; i < senders; ++i) {
        threads.emplace_back([&, i] {
            for (int round = 0; round < rounds; ++round)
                subject.send(round * senders + i);
        });
    }
    for (int i = 0; i < subscribers; ++i) {
        threads.emplace_back([&, i] {
            std::mt19937 random(static_cast<unsigned>(i));
            const auto wild = std::make_shared<Wild>(subject, sentBack, static_cast<unsigned>(i));
            all[static_cast<std::size_t>(i)] = wild;
            subject.receive(wild);
            for (int round = 0; round < 200; ++round) {
                wild->subscription()->request(static_cast<std::int64_t>(random() % 3));
                if (random() % 97 == 0) wild->subscription()->cancel();
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    const auto whole = subscribe(subject);
    subject.finish();
    EXPECT_EQ(whole->completions.size(), 1U);
    for (const auto& each : all) {
        EXPECT_LE(each->ends, 1);
        // Of each sender the values come in the order in which it sent them.
        std::vector<int> last(senders, -1);
        for (const int value : each->values) {
            if (value < 0) continue;
            EXPECT_GT(value / senders, last[static_cast<std::size_t>(value % senders)]);
            last[static_cast<std::size_t>(value % senders)] = value / senders;
        }
    }
}

}  // namespace
