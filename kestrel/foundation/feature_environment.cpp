#include <kestrel/foundation/feature_environment.h>

#include <mutex>
#include <utility>

namespace kestrel {

namespace {

struct Current {
    std::mutex mutex;
    std::shared_ptr<const FeatureEnvironment> environment = std::make_shared<const FeatureEnvironment>();
};

Current& theCurrent() {
    static Current current;
    return current;
}

}  // namespace

FeatureEnvironment::FeatureEnvironment(Names enabledByDefault, Decisions decisions)
    : enabledByDefault_(std::move(enabledByDefault)), decisions_(std::move(decisions)) {}

bool FeatureEnvironment::isEnabled(std::string_view feature) const {
    const auto decision = decisions_.find(feature);
    return decision != decisions_.end() ? decision->second : enabledByDefault_.contains(feature);
}

std::shared_ptr<const FeatureEnvironment> FeatureEnvironment::current() {
    auto& [mutex, environment] = theCurrent();
    const std::scoped_lock lock(mutex);
    return environment;
}

void FeatureEnvironment::setCurrent(std::shared_ptr<const FeatureEnvironment> environment) {
    if (environment == nullptr) environment = std::make_shared<const FeatureEnvironment>();
    auto& current = theCurrent();
    const std::scoped_lock lock(current.mutex);
    // Not destroyed under the lock: the old one leaves with the parameter.
    std::swap(current.environment, environment);
}

}  // namespace kestrel
