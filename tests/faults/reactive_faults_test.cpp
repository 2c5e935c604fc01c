#include <gtest/gtest.h>
#include <kestrel/reactive/pass_through_subject.h>
#include <kestrel/reactive/replay_subject.h>

#include <cstddef>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "sweep.h"

// Publishers when memory runs out: whatever was being done, they go on, and cancelling cannot fail.
namespace {

using namespace kestrel;
using faults::FailingAllocation;

/// Long enough to need memory.
const std::string value = "a value that is too long to lie in the text itself";
const std::string later = "another value that is too long to lie in the text itself";
const std::string failure = "a failure that is too long to lie in the text itself";

struct Heard {
    std::size_t values = 0;
    bool isLast = false;
    int ends = 0;
};

class Listener final : public Subscriber<std::string, std::string> {
  public:
    explicit Listener(Heard& heard) : heard_(heard) {}
    void receive(std::shared_ptr<Subscription> given) override {
        subscription = std::move(given);
        subscription->request(Demand::unlimited());
    }
    Demand receive(const std::string& received) override {
        ++heard_.values;
        heard_.isLast = received == later;
        return Demand::none();
    }
    void receive(Completion<std::string> /*completion*/) override { ++heard_.ends; }

    std::shared_ptr<Subscription> subscription;

  private:
    Heard& heard_;
};

template <class Subject>
std::size_t countOf(const Subject& subject) {
    if constexpr (requires { subject.subscriptionCount(); }) {
        return subject.subscriptionCount();
    } else {
        return subject.subscriberCount();
    }
}

/// Does something; whether it came to an end.
template <class Work>
bool comesToAnEnd(std::size_t which, bool& hasFailed, Work work) {
    const FailingAllocation failing(which);
    bool isDone = true;
    try {
        work();
    } catch (const std::bad_alloc&) {
        isDone = false;
    }
    hasFailed = failing.hasFailed();
    EXPECT_TRUE(isDone || hasFailed);
    return isDone;
}

/// Two who listen to a subject to which something was sent.
template <class Subject>
struct Scene {
    explicit Scene(Subject given) : subject(std::move(given)) {
        for (Heard* heard : {&first, &second}) {
            const auto listener = std::make_shared<Listener>(*heard);
            subject.subscribe(listener);
            listeners.push_back(listener);
            subscriptions.push_back(listener->subscription);
        }
        subject.send(value);
    }
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;
    ~Scene() {
        for (const auto& listener : listeners) {
            if (const auto living = listener.lock()) living->subscription.reset();
        }
    }
    /// From another thread, which would wait for ever for a lock that was not given back.
    void sendLater() {
        std::thread([&] { subject.send(later); }).join();
    }

    Subject subject;
    Heard first{};
    Heard second{};
    std::vector<std::weak_ptr<Listener>> listeners;
    std::vector<std::shared_ptr<Subscription>> subscriptions;
};

template <class MakeSubject>
void check(MakeSubject make) {
    using Subject = std::invoke_result_t<MakeSubject&>;
    // Sending.
    EXPECT_GT(faults::failEach([&](std::size_t which) {
                  bool hasFailed = false;
                  Scene<Subject> scene(make());
                  const bool isSent = comesToAnEnd(which, hasFailed, [&] { scene.subject.send(value); });
                  EXPECT_TRUE(!isSent || (scene.first.values == 2 && scene.second.values == 2));
                  scene.sendLater();
                  EXPECT_TRUE(scene.first.isLast && scene.second.isLast);
                  EXPECT_EQ(countOf(scene.subject), 2U);
                  return hasFailed;
              }),
              0U);
    // Subscribing.
    EXPECT_GT(faults::failEach([&](std::size_t which) {
                  bool hasFailed = false;
                  Scene<Subject> scene(make());
                  Heard third;
                  std::weak_ptr<Listener> added;
                  const bool isSubscribed = comesToAnEnd(which, hasFailed, [&] {
                      const auto listener = std::make_shared<Listener>(third);
                      added = listener;
                      scene.subject.subscribe(listener);
                  });
                  EXPECT_EQ(countOf(scene.subject), isSubscribed ? 3U : 2U);
                  scene.sendLater();
                  EXPECT_TRUE(scene.first.isLast && scene.second.isLast && third.isLast == isSubscribed);
                  if (const auto listener = added.lock()) listener->subscription.reset();
                  return hasFailed;
              }),
              1U);
    // Subscribing with closures, and leaving.
    EXPECT_GT(faults::failEach([&](std::size_t which) {
                  bool hasFailed = false;
                  Scene<Subject> scene(make());
                  int received = 0;
                  (void)comesToAnEnd(which, hasFailed, [&] {
                      const auto listening = scene.subject.eraseToAnyPublisher()
                                                 .map([](const std::string& text) { return text.size(); })
                                                 .sink([&](std::size_t) { ++received; }, [](const auto&) {});
                  });
                  EXPECT_EQ(countOf(scene.subject), 2U);
                  const int before = received;
                  scene.sendLater();
                  EXPECT_EQ(received, before);
                  return hasFailed;
              }),
              2U);
    // Cancelling needs no memory, be it from inside of a delivery.
    EXPECT_EQ(faults::failEach([&](std::size_t which) {
                  bool hasFailed = false;
                  Scene<Subject> scene(make());
                  EXPECT_TRUE(comesToAnEnd(which, hasFailed, [&] { scene.subscriptions[0]->cancel(); }));
                  if (const auto left = scene.listeners[0].lock()) ADD_FAILURE() << "who has cancelled is not let go";
                  scene.sendLater();
                  EXPECT_TRUE(!scene.first.isLast && scene.second.isLast);
                  EXPECT_EQ(countOf(scene.subject), 1U);
                  return hasFailed;
              }),
              0U);
    // Ending. Who could not be told may be told again.
    EXPECT_GT(faults::failEach([&](std::size_t which) {
                  bool hasFailed = false;
                  Scene<Subject> scene(make());
                  (void)comesToAnEnd(which, hasFailed,
                                     [&] { scene.subject.send(Completion<std::string>::failed(failure)); });
                  std::thread([&] { scene.subject.send(Completion<std::string>::failed(failure)); }).join();
                  EXPECT_EQ(scene.first.ends, 1);
                  EXPECT_EQ(scene.second.ends, 1);
                  EXPECT_EQ(countOf(scene.subject), 0U);
                  return hasFailed;
              }),
              0U);
}

TEST(AReplaySubject, survivesEachFailureOfMemory) {
    check([] { return ReplaySubject<std::string, std::string>(2); });
}

TEST(APassThroughSubject, survivesEachFailureOfMemory) {
    check([] { return PassThroughSubject<std::string, std::string>(); });
}

TEST(APublisher, survivesEachFailureOfMemory) {
    EXPECT_GT(faults::failEach([&](std::size_t which) {
                  bool hasFailed = false;
                  std::optional<Emitter<std::string, std::string>> emitter;
                  std::size_t received = 0;
                  bool isCancelled = false;
                  {
                      const auto source = create<std::string, std::string>([&](const auto& given) {
                          emitter = given;
                          return AnyCancellable([&] { isCancelled = true; });
                      });
                      AnyCancellable listening;
                      const bool isListening = comesToAnEnd(which, hasFailed, [&] {
                          listening = source.filter([](const std::string& text) { return !text.empty(); })
                                          .sink([&](const std::string&) { ++received; });
                          emitter->send(value);
                      });
                      const std::size_t before = received;
                      if (listening) {
                          emitter->send(later);
                          EXPECT_EQ(received, before + 1);
                      }
                      EXPECT_TRUE(!isListening || received == 2);
                  }
                  EXPECT_TRUE(!emitter || emitter->isCancelled());
                  EXPECT_TRUE(isCancelled || hasFailed);
                  return hasFailed;
              }),
              3U);
    // Cancelling what waits needs none.
    EXPECT_EQ(faults::failEach([&](std::size_t which) {
                  bool hasFailed = false;
                  std::optional<Emitter<std::string, std::string>> emitter;
                  auto listening = create<std::string, std::string>([&](const auto& given) {
                                       emitter = given;
                                       return AnyCancellable();
                                   }).sink([](const std::string&) {});
                  EXPECT_TRUE(comesToAnEnd(which, hasFailed, [&] { listening.cancel(); }));
                  EXPECT_TRUE(emitter->isCancelled());
                  return hasFailed;
              }),
              0U);
}

}  // namespace
