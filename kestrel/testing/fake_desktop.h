#pragma once

#include <kestrel/platform/reachability.h>
#include <kestrel/platform/user_notification_center.h>
#include <kestrel/platform/workspace.h>
#include <kestrel/reactive/scheduler.h>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// Stand-ins for the parts of a desktop, for tests: each does what its members say and keeps what it was asked. What
// calls back does so later, as the real ones do: when the queue that it was given runs.
namespace kestrel {

class FakeWorkspace final : public Workspace {
  public:
    explicit FakeWorkspace(std::shared_ptr<Scheduler> queue) : queue_(std::move(queue)) {}

    /// The applications for URLs of a scheme, the preferred one first.
    std::map<std::string, std::vector<std::string>, std::less<>> handlers{};
    /// What opening reports.
    std::optional<PlatformError> error{};
    std::vector<URL> opened{};

    [[nodiscard]] std::vector<std::string> applicationsToOpen(const URL& url) const override {
        const auto found = handlers.find(url.scheme());
        return found == handlers.end() ? std::vector<std::string>() : found->second;
    }
    void open(const URL& url, CompletionHandler completionHandler) override {
        opened.push_back(url);
        queue_->schedule([reported = error, handler = std::move(completionHandler)]() mutable { handler(reported); });
    }

  private:
    std::shared_ptr<Scheduler> queue_;
};

class FakeMapApplication final : public MapApplication {
  public:
    bool canOpen = true;
    std::vector<MapItem> opened{};

    [[nodiscard]] bool open(const MapItem& item) override {
        opened.push_back(item);
        return canOpen;
    }
};

class FakeUserNotificationCenter final : public UserNotificationCenter {
  public:
    explicit FakeUserNotificationCenter(std::shared_ptr<Scheduler> queue) : queue_(std::move(queue)) {}

    NotificationSettings settings{};
    /// What the user says when asked, and what is reported beside it.
    bool isGranted = true;
    std::optional<PlatformError> error{};
    std::vector<NotificationAuthorizationOptions> requests{};

    void getNotificationSettings(SettingsHandler completionHandler) override {
        queue_->schedule([known = settings, handler = std::move(completionHandler)]() mutable { handler(known); });
    }
    void requestAuthorization(NotificationAuthorizationOptions options,
                              AuthorizationHandler completionHandler) override {
        requests.push_back(options);
        queue_->schedule([granted = isGranted, reported = error, handler = std::move(completionHandler)]() mutable {
            handler(granted, reported);
        });
    }

  private:
    std::shared_ptr<Scheduler> queue_;
};

class FakeReachability final : public ReachabilityProtocol {
  public:
    bool canStart = true;
    int starts = 0;
    int stops = 0;

    [[nodiscard]] std::int64_t currentReachabilityStatus() const override { return status_; }
    [[nodiscard]] bool startNotifier() override {
        ++starts;
        return canStart;
    }
    void stopNotifier() override { ++stops; }
    /// Changes the status and tells everybody, whether it is watched or not.
    void change(std::int64_t status) {
        status_ = status;
        NotificationCenter::standard().post(kReachabilityChangedNotification, this);
    }

  private:
    std::int64_t status_ = 1;
};

}  // namespace kestrel
