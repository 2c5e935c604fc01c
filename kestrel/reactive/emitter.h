#pragma once

#include <kestrel/reactive/cancellable.h>
#include <kestrel/reactive/subscriber.h>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

namespace kestrel {

namespace reactive_detail {

/// What stands between an emitter and its subscriber: keeps values until they are asked for, and delivers them one
/// after the other, whichever threads they come from.
template <class Output, class Failure>
class Emission final : public Subscription, public std::enable_shared_from_this<Emission<Output, Failure>> {
  public:
    /// Values that the subscriber does not ask for wait, or are lost.
    Emission(std::shared_ptr<Subscriber<Output, Failure>> downstream, bool keepsValues)
        : downstream_(std::move(downstream)), keepsValues_(keepsValues) {}

    void request(Demand demand) override {
        {
            const std::scoped_lock lock(mutex_);
            demand_ += demand;
        }
        deliver();
    }
    void cancel() override {
        std::shared_ptr<Subscriber<Output, Failure>> downstream;
        std::list<Output> waiting;
        AnyCancellable work;
        {
            const std::scoped_lock lock(mutex_);
            isCancelled_ = true;
            downstream.swap(downstream_);
            waiting.swap(waiting_);
            work = std::move(work_);
        }
        work.cancel();
    }
    void send(Output value) {
        {
            const std::scoped_lock lock(mutex_);
            if (downstream_ == nullptr || completion_) return;
            // Those that wait for their turn are asked for, too.
            if (const auto asked = demand_.count();
                !keepsValues_ && asked && std::cmp_less_equal(*asked, waiting_.size()))
                return;
            waiting_.push_back(std::move(value));
        }
        deliver();
    }
    void end(Completion<Failure> completion) {
        {
            const std::scoped_lock lock(mutex_);
            if (downstream_ == nullptr || completion_) return;
            completion_ = std::move(completion);
        }
        deliver();
    }
    /// Keeps what ends with the subscription.
    void own(AnyCancellable work) {
        {
            const std::scoped_lock lock(mutex_);
            if (!isCancelled_) work_ = std::move(work);
        }
        // Cancelled before it was there: it ends now. What was kept has left nothing to cancel.
        work.cancel();  // NOLINT(bugprone-use-after-move)
    }
    [[nodiscard]] bool isCancelled() const {
        const std::scoped_lock lock(mutex_);
        return isCancelled_;
    }

  private:
    void deliver() {
        // The subscriber may let this go.
        const auto self = this->shared_from_this();
        std::unique_lock lock(mutex_);
        if (std::exchange(isDelivering_, true)) return;
        const Delivering delivering(*this, lock);
        while (downstream_ != nullptr) {
            if (!waiting_.empty()) {
                if (!demand_.take()) break;
                Demand more = Demand::none();
                {
                    // Let go outside of the lock: what ends with them may come back here.
                    std::list<Output> taken;
                    taken.splice(taken.begin(), waiting_, waiting_.begin());
                    const auto downstream = downstream_;
                    lock.unlock();
                    more = downstream->receive(taken.front());
                }
                lock.lock();
                demand_ += more;
            } else if (completion_) {
                {
                    const auto downstream = std::exchange(downstream_, nullptr);
                    lock.unlock();
                    downstream->receive(*completion_);
                }
                lock.lock();
            } else {
                break;
            }
        }
    }
    /// Ends a delivery, also when the subscriber throws.
    struct Delivering {
        Emission& emission;
        std::unique_lock<std::mutex>& lock;
        Delivering(Emission& delivered, std::unique_lock<std::mutex>& held) : emission(delivered), lock(held) {}
        Delivering(const Delivering&) = delete;
        Delivering& operator=(const Delivering&) = delete;
        ~Delivering() {
            if (!lock.owns_lock()) lock.lock();
            emission.isDelivering_ = false;
        }
    };

    mutable std::mutex mutex_;
    std::shared_ptr<Subscriber<Output, Failure>> downstream_;
    /// A list, for an empty one needs no memory: cancelling must not fail.
    std::list<Output> waiting_;
    std::optional<Completion<Failure>> completion_;
    Demand demand_ = Demand::none();
    AnyCancellable work_;
    bool keepsValues_;
    bool isDelivering_ = false;
    bool isCancelled_ = false;
};

}  // namespace reactive_detail

/// Sends values to one subscriber. A handle: copies send to the same one, from any thread. What is sent after the end,
/// or when the subscriber has gone, is lost.
template <class Output, class Failure>
class Emitter {
  public:
    /// For `create`, which makes them.
    explicit Emitter(const std::shared_ptr<reactive_detail::Emission<Output, Failure>>& emission)
        : emission_(emission) {}

    /// Sends a value; it waits until the subscriber asks for it, or with createUnbuffered is lost.
    void send(Output value) const {
        if (const auto emission = emission_.lock()) emission->send(std::move(value));
    }
    /// Ends the subscriber behind the values that wait. Only the first end counts.
    void finish() const { end(Completion<Failure>::finished()); }
    /// Ends the subscriber with a failure, behind the values that wait. Only the first end counts.
    void fail(Failure failure) const { end(Completion<Failure>::failed(std::move(failure))); }
    /// Whether nobody listens any more.
    [[nodiscard]] bool isCancelled() const {
        const auto emission = emission_.lock();
        return emission == nullptr || emission->isCancelled();
    }

  private:
    void end(Completion<Failure> completion) const {
        if (const auto emission = emission_.lock()) emission->end(std::move(completion));
    }

    /// The subscriber keeps it, and nobody else: it ends when the subscriber lets its subscription go.
    std::weak_ptr<reactive_detail::Emission<Output, Failure>> emission_;
};

namespace reactive_detail {

template <class Output, class Failure, class Start>
void startEmission(const std::shared_ptr<Subscriber<Output, Failure>>& subscriber, Start&& start,
                   bool keepsValues = true) {
    const auto emission = std::make_shared<Emission<Output, Failure>>(subscriber, keepsValues);
    subscriber->receive(emission);
    if (emission->isCancelled()) return;
    Emitter<Output, Failure> emitter(emission);
    emission->own(start(emitter));
}

}  // namespace reactive_detail

}  // namespace kestrel
