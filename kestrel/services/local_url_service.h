#pragma once

#include <kestrel/foundation/required.h>
#include <kestrel/platform/workspace.h>
#include <kestrel/services/system_url_service.h>
#include <memory>
#include <utility>

namespace kestrel {

/// The applications of the desktop.
class LocalURLService final : public SystemURLService {
  public:
    /// With the applications of that desktop. Null is a mistake in the program: fatal().
    explicit LocalURLService(std::shared_ptr<Workspace> workspace)
        : workspace_(required(std::move(workspace), "The workspace of URLs")) {}

    [[nodiscard]] bool canOpenURL(const URL& url) const override;
    [[nodiscard]] AnyPublisher<Never, PlatformError> openURL(const URL& url) override;

  private:
    std::shared_ptr<Workspace> workspace_;
};

}  // namespace kestrel
