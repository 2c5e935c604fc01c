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

/// Stands in for the applications of the desktop.
class FakeWorkspace final : public Workspace {
  public:
    /// Calls back on that queue.
    explicit FakeWorkspace(std::shared_ptr<Scheduler> queue) : queue_(std::move(queue)) {}

    /// The applications for URLs of a scheme, the preferred one first.
    std::map<std::string, std::vector<std::string>, std::less<>> handlers{};
    /// What opening reports.
    std::optional<PlatformError> error{};
    /// What was to be opened, in that order.
    std::vector<URL> opened{};

    /// Those of `handlers`.
    [[nodiscard]] std::vector<std::string> applicationsToOpen(const URL& url) const override {
        const auto found = handlers.find(url.scheme());
        return found == handlers.end() ? std::vector<std::string>() : found->second;
    }
    /// Keeps the URL, and reports `error` when the queue runs.
    void open(const URL& url, CompletionHandler completionHandler) override {
        opened.push_back(url);
        queue_->schedule([reported = error, handler = std::move(completionHandler)]() mutable { handler(reported); });
    }

  private:
    std::shared_ptr<Scheduler> queue_;
};

/// Stands in for the maps of the desktop.
class FakeMapApplication final : public MapApplication {
  public:
    /// What opening answers.
    bool canOpen = true;
    /// What was to be shown, in that order, the refused ones included.
    std::vector<MapItem> opened{};

    /// Keeps the place, and answers `canOpen`.
    [[nodiscard]] bool open(const MapItem& item) override {
        opened.push_back(item);
        return canOpen;
    }
};

/// Stands in for the notifications of the desktop.
class FakeUserNotificationCenter final : public UserNotificationCenter {
  public:
    /// Calls back on that queue.
    explicit FakeUserNotificationCenter(std::shared_ptr<Scheduler> queue) : queue_(std::move(queue)) {}

    /// What the user has allowed.
    NotificationSettings settings{};
    /// What the user says when asked, and what is reported beside it.
    bool isGranted = true;
    /// What is reported beside the user's word; absent for no error.
    std::optional<PlatformError> error{};
    /// What was asked for, in that order.
    std::vector<NotificationAuthorizationOptions> requests{};

    /// Gives `settings`, as they are at that moment, when the queue runs.
    void getNotificationSettings(SettingsHandler completionHandler) override {
        queue_->schedule([known = settings, handler = std::move(completionHandler)]() mutable { handler(known); });
    }
    /// Keeps the question, and answers `isGranted` and `error` when the queue runs.
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

/// Stands in for the network.
class FakeReachability final : public ReachabilityProtocol {
  public:
    /// What starting answers.
    bool canStart = true;
    /// How often it was started, in vain or not.
    int starts = 0;
    /// How often it was stopped.
    int stops = 0;

    /// The status of the last change; Wi-Fi before any.
    [[nodiscard]] std::int64_t currentReachabilityStatus() const override { return status_; }
    /// Counts, and answers `canStart`.
    [[nodiscard]] bool startNotifier() override {
        ++starts;
        return canStart;
    }
    /// Counts.
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
