#pragma once

#include <kestrel/reactive/subscriber.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/// A subscriber that notes what it receives and checks that the publisher keeps to the protocol.
template <class Output, class Failure = kestrel::Never>
class Probe : public kestrel::Subscriber<Output, Failure> {
  public:
    explicit Probe(kestrel::Demand initial = kestrel::Demand::unlimited()) : initial_(initial) {}

    void receive(std::shared_ptr<kestrel::Subscription> given) override {
        if (subscription != nullptr) faults.emplace_back("a second subscription");
        subscription = std::move(given);
        request(initial_);
    }
    kestrel::Demand receive(const Output& value) override {
        if (subscription == nullptr) faults.emplace_back("a value before the subscription");
        if (!completions.empty()) faults.emplace_back("a value after the end");
        if (!asked_.take()) faults.emplace_back("a value that was not asked for");
        values.push_back(value);
        const kestrel::Demand more = onValue ? onValue(value) : kestrel::Demand::none();
        asked_ += more;
        return more;
    }
    void receive(kestrel::Completion<Failure> completion) override {
        if (subscription == nullptr) faults.emplace_back("an end before the subscription");
        if (!completions.empty()) faults.emplace_back("a second end");
        completions.push_back(std::move(completion));
    }
    void request(kestrel::Demand demand) {
        asked_ += demand;
        if (!demand.isNone()) subscription->request(demand);
    }

    std::shared_ptr<kestrel::Subscription> subscription;
    std::vector<Output> values;
    std::vector<kestrel::Completion<Failure>> completions;
    /// What the publisher did against the protocol.
    std::vector<std::string> faults;
    /// What to ask for on top after each value; nothing when it is not set.
    std::function<kestrel::Demand(const Output&)> onValue;

  private:
    kestrel::Demand initial_;
    kestrel::Demand asked_ = kestrel::Demand::none();
};
