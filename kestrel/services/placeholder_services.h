#pragma once

#include <kestrel/services/email_capabilities_service.h>
#include <kestrel/services/email_parsing_service.h>
#include <kestrel/services/scene_lifecycle_service.h>

// For hosts that lack what a service speaks of. Each keeps the promise of its protocol.
namespace kestrel {

/// Of a host without windows: nothing ever happens to them.
class EmptySceneLifecycleService final : public SceneLifecycleService {
  public:
    [[nodiscard]] AnyPublisher<Void> didActivate() const override { return empty<Void>(); }
    [[nodiscard]] AnyPublisher<Void> willDeactivate() const override { return empty<Void>(); }
    [[nodiscard]] AnyPublisher<Void> didEnterBackground() const override { return empty<Void>(); }
    [[nodiscard]] AnyPublisher<Void> willEnterForeground() const override { return empty<Void>(); }
};

/// Of a host that sends no mail.
class SystemOnlyEmailCapabilitiesService final : public EmailCapabilitiesService {
  public:
    [[nodiscard]] EmailCapabilities currentEmailCapabilities() const override { return {}; }
    [[nodiscard]] AnyPublisher<EmailCapabilities> subscribeEmailCapabilities() override {
        return just(currentEmailCapabilities());
    }
};

/// Of a host that reads no HTML.
class UnimplementedEmailParsingService final : public EmailParsingService {
  public:
    [[nodiscard]] std::optional<std::string> extractPlainText(std::string_view /*html*/) override {
        return std::nullopt;
    }
};

}  // namespace kestrel
