#include <gtest/gtest.h>
#include <kestrel/coding/json.h>
#include <kestrel/services/address_geocoder_service.h>
#include <kestrel/services/core_location_geocoder_service.h>
#include <kestrel/services/live_reachability_service.h>
#include <kestrel/services/placeholder_services.h>
#include <kestrel/services/system_maps_service.h>
#include <kestrel/services/system_notifications_service.h>
#include <kestrel/services/system_url_service.h>
#include <kestrel/testing/test_services_module.h>

#include <optional>
#include <string>
#include <vector>

namespace {

using namespace kestrel;

class DesktopServices : public testing::Test {
  protected:
    TestServicesModule desktop;
    Runtime runtime{desktop};
};

PostalAddress street(int number) {
    return {.street = "Main Street " + std::to_string(number), .city = "Springfield"};
}
constexpr auto placeAt = [](double latitude) { return Placemark{.coordinate = {latitude, 1}}; };

/// What a geocoding subscriber receives.
struct Found {
    std::optional<Placemark> placemark;
    std::optional<Completion<GeocodeError>> end;
    AnyCancellable subscription;

    Found(AddressGeocoderService& service, const PostalAddress& address) {
        subscription = service.geocode(address).sink([this](const Placemark& place) { placemark = place; },
                                                     [this](const auto& completion) { end = completion; });
    }
};

TEST_F(DesktopServices, geocodeAnAddressOnceWhenItWasFound) {
    auto& service = runtime[services::geocoder];
    const Found first(service, street(1));
    const Found meanwhile(service, street(1));
    ASSERT_EQ(desktop.geocoding.requests().size(), 2U) << "a question under way is not shared";
    desktop.geocoding.answer(1, std::vector{placeAt(2), placeAt(3)}, std::nullopt);
    EXPECT_EQ(meanwhile.placemark, placeAt(2)) << "the first is the best";
    EXPECT_TRUE(meanwhile.end->isFinished());
    EXPECT_FALSE(first.end.has_value());

    const Found known(service, street(1));
    EXPECT_EQ(known.placemark, placeAt(2));
    EXPECT_TRUE(known.end->isFinished());
    PostalAddress other = street(1);
    other.isoCountryCode = "us";
    const Found different(service, other);
    EXPECT_EQ(desktop.geocoding.requests().size(), 3U) << "any difference is another address";
}

TEST_F(DesktopServices, askAgainForAnAddressThatFailed) {
    auto& service = runtime[services::geocoder];
    const PlatformError refused{.domain = "test", .code = 8, .localizedDescription = "Refused."};
    const Found failed(service, street(1));
    desktop.geocoding.fail(0, refused);
    EXPECT_EQ(failed.end->failure(), GeocodeError::underlyingError(refused)) << "8 means nothing elsewhere";
    const Found none(service, street(1));
    desktop.geocoding.fail(1, FakeGeocoding::noResult());
    EXPECT_EQ(none.end->failure(), GeocodeError::foundNoResult());
    const Found nothing(service, street(1));
    desktop.geocoding.answer(2, std::nullopt, std::nullopt);
    EXPECT_EQ(nothing.end->failure(), GeocodeError::foundNoResult());
    const Found noPlaces(service, street(1));
    desktop.geocoding.answer(3, std::vector<Placemark>(), refused);
    EXPECT_EQ(noPlaces.end->failure(), GeocodeError::underlyingError(refused));
    EXPECT_EQ(desktop.geocoding.requests().size(), 4U);

    Found cancelled(service, street(2));
    cancelled.subscription.cancel();
    EXPECT_TRUE(desktop.geocoding.isCancelled(4));
}

TEST_F(DesktopServices, rememberTheNewestHundredAddresses) {
    auto service = std::dynamic_pointer_cast<CoreLocationGeocoderService>(runtime.find(services::geocoder));
    ASSERT_NE(service, nullptr);
    std::vector<std::unique_ptr<Found>> all;
    for (int i = 0; i <= 100; ++i)
        all.push_back(std::make_unique<Found>(*service, street(i)));
    EXPECT_EQ(service->history().size(), 100U);
    EXPECT_EQ(service->history().front(), street(1)) << "the oldest is forgotten";
    desktop.geocoding.succeed(0, placeAt(5));
    EXPECT_EQ(all[0]->placemark, placeAt(5)) << "but whoever asked is told";
    EXPECT_EQ(service->history().front(), street(1));
    const Found again(*service, street(1));
    EXPECT_EQ(service->history().back(), street(1)) << "asking again makes it the newest";
    EXPECT_EQ(service->history().size(), 100U);

    runtime[services::geocoder] = nullptr;
    service.reset();
    desktop.geocoding.succeed(5, placeAt(6));
    EXPECT_EQ(all[5]->placemark, placeAt(6)) << "questions outlive their service";
}

TEST_F(DesktopServices, watchTheNetworkWhileSomebodyDoes) {
    LiveReachabilityService service(desktop.network);
    EXPECT_EQ(service.currentStatus(), ReachabilityStatus::reachableViaWiFi);
    std::vector<ReachabilityStatus> seen;
    const auto note = [&](ReachabilityStatus status) { seen.push_back(status); };
    const auto statuses = service.observeNetworkStatus();
    EXPECT_EQ(desktop.network->starts, 0);
    auto first = statuses.sink(note);
    auto second = statuses.sink([](ReachabilityStatus) {});
    EXPECT_EQ(desktop.network->starts, 1);
    EXPECT_EQ(service.observerCount(), 2);
    EXPECT_TRUE(seen.empty()) << "only changes";
    for (const std::int64_t status : {2, 3, -1, 0, 1})
        desktop.network->change(status);
    using enum ReachabilityStatus;
    EXPECT_EQ(seen, (std::vector{reachableViaWWAN, notReachable, notReachable, notReachable, reachableViaWiFi}));
    NotificationCenter::standard().post(kReachabilityChangedNotification);
    FakeReachability other;
    other.change(2);
    EXPECT_EQ(seen.size(), 5U) << "other networks do not count";

    first.cancel();
    EXPECT_TRUE(service.observing());
    second.cancel();
    EXPECT_EQ(desktop.network->stops, 1);
    EXPECT_FALSE(service.observing());
    first = statuses.sink(note);
    EXPECT_EQ(desktop.network->starts, 2);
}

TEST_F(DesktopServices, doNotRetryToWatchTheNetworkWhileAFailedWatchIsHeld) {
    LiveReachabilityService service(desktop.network);
    desktop.network->canStart = false;
    int failures = 0;
    const auto watch = [&] {
        return service.observeNetworkStatus().sink(
            [](ReachabilityStatus) {},
            [&](const auto& end) { failures += end.failure() == ReachabilityError::failedToStartNotifier ? 1 : 0; });
    };
    auto first = watch();
    desktop.network->canStart = true;
    auto second = watch();
    EXPECT_EQ(failures, 2);
    EXPECT_EQ(desktop.network->starts, 1);
    EXPECT_EQ(service.observerCount(), 2);
    first.cancel();
    second.cancel();
    EXPECT_EQ(service.observerCount(), 0);
    const auto third = watch();
    EXPECT_EQ(failures, 2);
    EXPECT_TRUE(service.observing());
}

TEST_F(DesktopServices, deliverTheUsersWordOnNotificationsOnTheMainQueue) {
    desktop.notifications->settings.soundSetting = NotificationSetting::enabled;
    std::optional<NotificationSettings> settings;
    const auto reading =
        runtime[services::systemNotifications].readSettings().sink([&](const auto& each) { settings = each; });
    EXPECT_FALSE(settings.has_value());
    desktop.mainQueue->run();
    EXPECT_EQ(settings, desktop.notifications->settings);

    const auto ask = [&] {
        std::optional<UserNotificationErrorCode> failure;
        settings.reset();
        const auto asking =
            runtime[services::systemNotifications]
                .requestAuthorization(NotificationAuthorizationOptions::alert | NotificationAuthorizationOptions::sound)
                .sink([&](const auto& each) { settings = each; }, [&](const auto& end) { failure = end.failure(); });
        desktop.mainQueue->run();
        return failure;
    };
    EXPECT_EQ(ask(), std::nullopt);
    EXPECT_EQ(settings, desktop.notifications->settings);
    desktop.notifications->isGranted = false;
    EXPECT_EQ(ask(), UserNotificationErrorCode{1});
    desktop.notifications->error = PlatformError{.domain = "elsewhere", .code = 5};
    EXPECT_EQ(ask(), UserNotificationErrorCode{1}) << "the number of another kind of error says nothing";
    desktop.notifications->error = PlatformError{.domain = std::string(userNotificationErrorDomain), .code = 1401};
    EXPECT_EQ(ask(), UserNotificationErrorCode{1401});
    EXPECT_FALSE(settings.has_value());
    EXPECT_TRUE(contains(desktop.notifications->requests.front(), NotificationAuthorizationOptions::sound));
}

TEST_F(DesktopServices, openURLsAndMapsWhenSomebodySubscribes) {
    const URL url = URL::parse("HTTPS://example.com").value();
    desktop.workspace->handlers["https"] = {"Browser"};
    EXPECT_TRUE(runtime[services::systemURL].canOpenURL(url));
    EXPECT_FALSE(runtime[services::systemURL].canOpenURL(URL::parse("geo:1,2").value()));

    std::vector<Completion<PlatformError>> ends;
    const auto opening = runtime[services::systemURL].openURL(url);
    EXPECT_TRUE(desktop.workspace->opened.empty());
    const auto open = [&] { return opening.sink([](const Never&) {}, [&](const auto& end) { ends.push_back(end); }); };
    const auto opened = open();
    EXPECT_TRUE(ends.empty()) << "later, as from a desktop";
    desktop.workspace->error = PlatformError{.domain = "test", .code = 15};
    const auto failed = open();
    desktop.mainQueue->run();
    EXPECT_EQ(desktop.workspace->opened, (std::vector{url, url})) << "once a subscriber";
    ASSERT_EQ(ends.size(), 2U);
    EXPECT_TRUE(ends[0].isFinished());
    EXPECT_EQ(ends[1].failure(), desktop.workspace->error);

    EXPECT_TRUE(runtime[services::systemMaps].openMapItem({.placemark = placeAt(3)}));
    desktop.maps->canOpen = false;
    EXPECT_FALSE(runtime[services::systemMaps].openMapItem({.placemark = placeAt(4)}));
    EXPECT_EQ(desktop.maps->opened.size(), 2U);
}

TEST(PlaceholderServices, neverFireAndCanDoNothing) {
    const EmptySceneLifecycleService scenes;
    int ends = 0;
    for (const auto& publisher :
         {scenes.didActivate(), scenes.willDeactivate(), scenes.didEnterBackground(), scenes.willEnterForeground()})
        (void)publisher.sink([](Void) { ADD_FAILURE(); }, [&](const auto&) { ++ends; });
    EXPECT_EQ(ends, 4);
    SystemOnlyEmailCapabilitiesService mail;
    std::vector<EmailCapabilities> values;
    const auto listening = mail.subscribeEmailCapabilities().sink([&](const auto& value) { values.push_back(value); },
                                                                  [&](const auto&) { ++ends; });
    EXPECT_EQ(values, std::vector{EmailCapabilities{}});
    EXPECT_EQ(ends, 5);
    EXPECT_EQ(UnimplementedEmailParsingService().extractPlainText(""), std::nullopt);
}

TEST(EmailCapabilities, preferTheApplicationsMailOnlyWhenItCanSend) {
    for (int bits = 0; bits < 8; ++bits) {
        const EmailCapabilities mail{(bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0};
        const auto expected = (bits & 3) == 3   ? std::optional(MailClient::kestrelMail)
                              : (bits & 4) != 0 ? std::optional(MailClient::systemMail)
                                                : std::nullopt;
        EXPECT_EQ(mail.mailClientForComposing(), expected) << bits;
        EXPECT_EQ(mail.canSendMail(), (bits & 6) != 0) << bits;
    }
    EXPECT_EQ(encodeJSON(MailClient::systemMail), "{\"systemMail\":{}}");
    EXPECT_EQ(decodeJSON<MailClient>("{\"kestrelMail\":{}}"), MailClient::kestrelMail);
    EXPECT_FALSE(decodeJSON<MailClient>("{\"kestrelMail\":{},\"systemMail\":{}}"));
    EXPECT_FALSE(decodeJSON<MailClient>("{}"));
}

}  // namespace
