#pragma once

#include <kestrel/reactive/publisher.h>
#include <kestrel/reactive/void.h>
#include <kestrel/runtime/service_protocol.h>
#include <memory>

namespace kestrel {

/// What becomes of the application's windows. Each publisher sends a value whenever it happens.
class SceneLifecycleService : public ServiceProtocol {
  public:
    /// The user works with the application.
    [[nodiscard]] virtual AnyPublisher<Void> didActivate() const = 0;
    /// The user turns to something else.
    [[nodiscard]] virtual AnyPublisher<Void> willDeactivate() const = 0;
    /// Nothing of it is to be seen any more.
    [[nodiscard]] virtual AnyPublisher<Void> didEnterBackground() const = 0;
    /// It is about to be seen again.
    [[nodiscard]] virtual AnyPublisher<Void> willEnterForeground() const = 0;
};

template <>
class Forwarding<SceneLifecycleService> : public SceneLifecycleService {
  public:
    [[nodiscard]] virtual std::shared_ptr<SceneLifecycleService> target() const = 0;

    [[nodiscard]] AnyPublisher<Void> didActivate() const override { return target()->didActivate(); }
    [[nodiscard]] AnyPublisher<Void> willDeactivate() const override { return target()->willDeactivate(); }
    [[nodiscard]] AnyPublisher<Void> didEnterBackground() const override { return target()->didEnterBackground(); }
    [[nodiscard]] AnyPublisher<Void> willEnterForeground() const override { return target()->willEnterForeground(); }
};

namespace services {
inline constexpr ServiceKey<SceneLifecycleService> sceneLifecycle;
}

}  // namespace kestrel
