#pragma once

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>

namespace kestrel {

/// Which features of the program are enabled, by their names: those that are enabled by default, and what a build, a
/// test or a user decided otherwise. A value that does not change; one of them is current for the whole process.
///
///     FeatureEnvironment::setCurrent(
///         std::make_shared<const FeatureEnvironment>(FeatureEnvironment::Names{"boards"}));
///     if (FeatureEnvironment::current()->isEnabled("boards")) …
class FeatureEnvironment {
  public:
    /// Of features; names are compared byte by byte.
    using Names = std::set<std::string, std::less<>>;
    /// Whether a feature is enabled, by its name.
    using Decisions = std::map<std::string, bool, std::less<>>;

    /// Enables nothing.
    FeatureEnvironment() = default;
    /// Decisions count before defaults.
    explicit FeatureEnvironment(Names enabledByDefault, Decisions decisions = {});

    /// A feature that is not known is not enabled.
    [[nodiscard]] bool isEnabled(std::string_view feature) const;

    /// The process's environment; never null. One that enables nothing until another is set. From any thread; what a
    /// caller holds stays as it is when another one is set.
    [[nodiscard]] static std::shared_ptr<const FeatureEnvironment> current();
    /// Makes an environment the process's; none goes back to the one that enables nothing. From any thread.
    static void setCurrent(std::shared_ptr<const FeatureEnvironment> environment);

  private:
    Names enabledByDefault_;
    Decisions decisions_;
};

}  // namespace kestrel
