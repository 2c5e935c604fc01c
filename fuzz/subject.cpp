#include <fuzz/fuzzing.h>
#include <fuzz/subject_models.h>
#include <kestrel/reactive/pass_through_subject.h>
#include <kestrel/reactive/replay_subject.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Subjects under scripts of subscribing, asking, sending, cancelling and letting go, from the outside and from inside
// of deliveries. What subscribers receive, and in what order, is compared with a model; the protocol between publishers
// and subscribers is held to in any case.
namespace {

using namespace kestrel;
using fuzzing::require;
using fuzzing::Script;

using Value = int;
using Failure = int;

struct Event {
    enum class Kind { subscription, value, finished, failed, count, released };
    Kind kind{};
    std::size_t subscriber{};
    int number{};

    friend bool operator==(const Event&, const Event&) = default;
};

std::string shown(const std::vector<Event>& events) {
    static constexpr const char* kinds[] = {"subscription", "value", "finished", "failed", "count", "released"};
    std::string text;
    for (const Event& event : events)
        text += std::string(kinds[static_cast<std::size_t>(event.kind)]) + " " + std::to_string(event.subscriber) +
                " " + std::to_string(event.number) + "\n";
    return text;
}

template <class Subject>
class World {
  public:
    /// With `goesOut`, subscribers act when they are let go, too.
    World(std::unique_ptr<Subject> subject, std::string_view script, bool goesOut)
        : subject_(std::move(subject)), script_(script), goesOut_(goesOut) {}
    World(const World&) = delete;
    World& operator=(const World&) = delete;
    ~World() = default;

    std::vector<Event> play() {
        while (!script_.atEnd()) {
            act();
            noteReleased();
        }
        drop();
        subscriptions_.clear();
        noteReleased();
        require(living_ == 0, "a subject that has gone has let all its subscribers go", history());
        return std::exchange(events_, {});
    }

  private:
    class Listener final : public Subscriber<Value, Failure> {
      public:
        Listener(World& world, std::size_t index, Demand first) : world_(world), index_(index), first_(first) {
            ++world.living_;
        }
        Listener(const Listener&) = delete;
        Listener& operator=(const Listener&) = delete;
        ~Listener() override {
            --world_.living_;
            if (world_.goesOut_) world_.act();
        }

        void receive(std::shared_ptr<Subscription> subscription) override {
            require(!std::exchange(isSubscribed_, true), "a subscriber gets one subscription");
            world_.note({Event::Kind::subscription, index_, 0});
            world_.subscriptions_[index_] = subscription;
            if (!first_.isNone()) {
                asked_ += first_;
                subscription->request(first_);
            }
            world_.actInside();
        }
        Demand receive(const Value& value) override {
            require(isSubscribed_ && !isOver_, "values come between the subscription and the end", world_.history());
            require(asked_.take(), "no value comes that nobody asked for", world_.history());
            world_.note({Event::Kind::value, index_, value});
            const unsigned answer = world_.actInside();
            const Demand more = world_.demandOf(answer);
            asked_ += more;
            return more;
        }
        void receive(Completion<Failure> completion) override {
            require(isSubscribed_ && !isOver_, "there is one end, behind the subscription", world_.history());
            isOver_ = true;
            world_.note({completion.isFinished() ? Event::Kind::finished : Event::Kind::failed, index_,
                         completion.failure().value_or(0)});
            world_.actInside();
        }
        void noteRequest(Demand demand) { asked_ += demand; }
        void noteCancel() { isOver_ = true; }

      private:
        World& world_;
        std::size_t index_;
        Demand first_;
        Demand asked_ = Demand::none();
        bool isSubscribed_ = false;
        /// Ended or cancelled.
        bool isOver_ = false;
    };

    static Demand demandOf(unsigned byte) {
        switch (byte % 8) {
            case 0:
            case 1: return Demand::none();
            case 7: return Demand::unlimited();
            default: return static_cast<std::int64_t>(byte % 8 - 1);
        }
    }
    void note(Event event) { events_.push_back(event); }
    [[nodiscard]] auto history() const {
        return [this] { return shown(events_); };
    }

    /// Acts from inside of a delivery; gives back what the script says the subscriber's answer is.
    unsigned actInside() {
        const unsigned byte = script_.next();
        for (unsigned i = 0; i < byte % 4; ++i)
            act();
        return byte / 4;
    }
    void act() {
        constexpr int deepest = 24;
        if (depth_ == deepest || script_.atEnd()) return;
        ++depth_;
        const unsigned byte = script_.next();
        switch (byte % 12) {
            case 0:
            case 1:
            case 2:
                if (subject_ != nullptr) subject_->send(++sent_);
                break;
            case 3:
            case 4: subscribe(demandOf(script_.next())); break;
            case 5:
            case 6: request(script_.next(), demandOf(byte / 12)); break;
            case 7: cancel(script_.next()); break;
            case 8:
                // Rare, for nothing much comes behind it.
                if (subject_ != nullptr && script_.next() % 4 == 0) subject_->send(Completion<Failure>::finished());
                break;
            case 9:
                if (subject_ != nullptr && script_.next() % 4 == 0) subject_->send(Completion<Failure>::failed(7));
                break;
            case 10:
                if (script_.next() % 4 == 0) drop();
                break;
            default: count(); break;
        }
        --depth_;
    }
    void subscribe(Demand first) {
        constexpr std::size_t most = 40;
        if (subject_ == nullptr || subscriptions_.size() == most) return;
        auto listener = std::make_shared<Listener>(*this, subscriptions_.size(), first);
        subscriptions_.emplace_back();
        listeners_.push_back(listener);
        isReleased_.push_back(false);
        // From here on the subject alone keeps it.
        subject_->subscribe(std::move(listener));
    }
    void request(unsigned which, Demand demand) {
        if (subscriptions_.empty()) return;
        const std::size_t index = which % subscriptions_.size();
        const auto subscription = subscriptions_[index];
        if (subscription == nullptr) return;
        if (const auto listener = listeners_[index].lock()) listener->noteRequest(demand);
        subscription->request(demand);
    }
    void cancel(unsigned which) {
        if (subscriptions_.empty()) return;
        const std::size_t index = which % subscriptions_.size();
        // Now and then the subscription is let go with it, or instead.
        const auto subscription = which >= 192 ? std::exchange(subscriptions_[index], nullptr) : subscriptions_[index];
        if (subscription == nullptr || which >= 240) return;
        if (const auto listener = listeners_[index].lock()) listener->noteCancel();
        subscription->cancel();
    }
    void drop() { const auto gone = std::move(subject_); }
    void count() {
        if (subject_ == nullptr) return;
        std::size_t subscribers = 0;
        if constexpr (requires { subject_->subscriptionCount(); }) {
            subscribers = subject_->subscriptionCount();
        } else {
            subscribers = subject_->subscriberCount();
        }
        note({Event::Kind::count, 0, static_cast<int>(subscribers)});
    }
    void noteReleased() {
        for (std::size_t i = 0; i < listeners_.size(); ++i) {
            if (isReleased_[i] || !listeners_[i].expired()) continue;
            isReleased_[i] = true;
            note({Event::Kind::released, i, 0});
        }
    }

    std::unique_ptr<Subject> subject_;
    Script script_;
    bool goesOut_;
    std::vector<Event> events_;
    std::vector<std::shared_ptr<Subscription>> subscriptions_;
    std::vector<std::weak_ptr<Listener>> listeners_;
    std::vector<bool> isReleased_;
    int living_ = 0;
    int depth_ = 0;
    int sent_ = 0;
};

template <class Subject, class... Arguments>
std::vector<Event> play(std::string_view script, bool goesOut, Arguments... arguments) {
    return World<Subject>(std::make_unique<Subject>(arguments...), script, goesOut).play();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t longest = 4096;
    if (size > longest) return -1;
    Script script(fuzzing::textOf(data, size));
    const unsigned mode = script.next();
    const bool goesOut = (mode & 2U) != 0 && (mode & 4U) != 0;
    const std::int64_t bufferSize = mode / 8 % 6;
    const std::string_view steps = script.rest();
    std::vector<Event> real;
    std::vector<Event> expected;
    if ((mode & 1U) != 0) {
        real = play<ReplaySubject<Value, Failure>>(steps, goesOut, bufferSize);
        if (!goesOut) expected = play<fuzzing::ReplayModel<Value, Failure>>(steps, goesOut, bufferSize);
    } else {
        real = play<PassThroughSubject<Value, Failure>>(steps, goesOut);
        if (!goesOut) expected = play<fuzzing::PassThroughModel<Value, Failure>>(steps, goesOut);
    }
    // What subscribers do when they are let go falls between the steps, and when that is, is nobody's promise.
    if (!goesOut)
        require(real == expected, "subscribers receive what the description of the subject says",
                [&] { return "received\n" + shown(real) + "expected\n" + shown(expected); });
    return 0;
}
