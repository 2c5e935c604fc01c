#include <gtest/gtest.h>
#include <kestrel/runtime/runtime.h>
#include <kestrel/services/contacts_service.h>
#include <kestrel/services/import_service.h>
#include <kestrel/services/pipeline_board_filter_service.h>
#include <kestrel/services/system_clock_service.h>
#include <kestrel/testing/recording_contacts_service.h>
#include <kestrel/testing/recording_onboarding_service.h>
#include <kestrel/testing/recording_options_service.h>
#include <kestrel/testing/recording_pipeline_board_filter_service.h>
#include <kestrel/testing/test_services_module.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using namespace kestrel;

/// A protocol of a host's own, which forwards nothing.
class PrintService : public ServiceProtocol {
  public:
    virtual std::string print(const std::string& text) = 0;
};
class Printer final : public PrintService {
  public:
    std::string print(const std::string& text) override { return "<" + text + ">"; }
};
constexpr ServiceKey<PrintService> printing;

struct ContactsModule {
    std::string moduleName = "Contacts";
    std::shared_ptr<ContactsService> service;
    void registerIn(Runtime& runtime) const { runtime[services::contacts] = service; }
};

TEST(Runtime, reachesTheImplementationThatIsInstalledAtThatMoment) {
    Runtime runtime;
    EXPECT_EQ(runtime.find(services::contacts), nullptr);
    const auto first = std::make_shared<RecordingContactsService>();
    const auto second = std::make_shared<RecordingContactsService>();

    ContactsService& entry = runtime[services::contacts];
    runtime[services::contacts] = first;
    (void)entry.fetchContact(ObjectID<Contact>(1));
    runtime[services::contacts] = second;
    (void)entry.fetchContact(ObjectID<Contact>(2));
    (void)runtime[services::contacts].fetchContact(ObjectID<Contact>(3));
    Runtime moved = std::move(runtime);
    (void)entry.fetchContact(ObjectID<Contact>(4));
    (void)std::as_const(moved)[services::contacts].fetchContact(ObjectID<Contact>(5));

    using Calls = std::vector<std::tuple<ObjectID<Contact>>>;
    EXPECT_EQ(first->on.fetchContact.calls(), (Calls{ObjectID<Contact>(1)}));
    EXPECT_EQ(second->on.fetchContact.calls(),
              (Calls{ObjectID<Contact>(2), ObjectID<Contact>(3), ObjectID<Contact>(4), ObjectID<Contact>(5)}));
    EXPECT_EQ(moved.find(services::contacts), second);
    EXPECT_EQ(first.use_count(), 1) << "what was replaced is let go";
}

TEST(Runtime, servesProtocolsThatHaveNoAccessorOrBelongToTheHost) {
    Runtime runtime;
    runtime.install(printing, std::make_shared<Printer>());
    runtime[ServiceKey<PipelineBoardFilterService>{}] = std::make_shared<RecordingPipelineBoardFilterService>();

    EXPECT_EQ(std::as_const(runtime)[printing].print("a"), "<a>");
    EXPECT_EQ(runtime.installedProtocols(), (std::vector<std::string>{"PipelineBoardFilterService", "PrintService"}));
    runtime.install(printing, std::shared_ptr<PrintService>());
    EXPECT_EQ(runtime.find(printing), nullptr);
    EXPECT_EQ(runtime.installedProtocols(), std::vector<std::string>{"PipelineBoardFilterService"});
}

TEST(RuntimeDeathTest, stopsAndNamesTheProtocolThatWasNeverInstalled) {
    Runtime runtime;
    EXPECT_DEATH((void)runtime[services::systemClock].now(), "SystemClockService");
    EXPECT_DEATH((void)std::as_const(runtime)[services::import_], "ImportService");
    EXPECT_DEATH(runtime[services::import_].cancelImport(), "ImportService");
    EXPECT_DEATH((void)std::as_const(runtime)[printing], "PrintService");
}

TEST(Runtime, isBuiltFromModulesInTheirOrder) {
    const auto first = std::make_shared<RecordingContactsService>();
    const auto second = std::make_shared<RecordingContactsService>();
    const TestServicesModule desktop;
    const Runtime runtime(desktop, ContactsModule{.service = first}, ContactsModule{"Others", second});

    EXPECT_EQ(runtime.moduleNames(), (std::vector<std::string>{"TestServices", "Contacts", "Others"}));
    EXPECT_EQ(runtime.find(services::contacts), second) << "the later module replaces";
    EXPECT_EQ(&runtime[services::systemClock], runtime.find(services::systemClock).get());
}

/// Forwards all but one requirement.
class ShoutedOptions final : public Forwarding<OptionsService> {
  public:
    explicit ShoutedOptions(std::shared_ptr<OptionsService> options) : options_(std::move(options)) {}
    [[nodiscard]] std::shared_ptr<OptionsService> target() const override { return options_; }
    AnyPublisher<DatabasePreference, UpdateError> storeOption(std::string name,
                                                              std::optional<std::string> value) override {
        return target()->storeOption(name + "!", std::move(value));
    }

  private:
    std::shared_ptr<OptionsService> options_;
};

TEST(Forwarding, letsAHostChangeOneRequirementAndKeepTheOthers) {
    const auto recording = std::make_shared<RecordingOptionsService>();
    recording->on.fetchOption.returns(just<std::optional<std::string>, ReadError>("euro"));
    Runtime runtime;
    runtime[services::options] = std::make_shared<ShoutedOptions>(recording);

    std::optional<std::string> fetched;
    const auto fetching =
        runtime[services::options].fetchOption("currency").sink([&](const auto& value) { fetched = value; });
    (void)runtime[services::options].storeOption("currency", "dollar");
    EXPECT_EQ(fetched, "euro");
    ASSERT_EQ(recording->on.storeOption.callCount(), 1U);
    EXPECT_EQ(std::get<0>(recording->on.storeOption.calls()[0]), "currency!");
    EXPECT_EQ(std::get<1>(recording->on.storeOption.calls()[0]), "dollar");
}

TEST(RecordingServices, answerAsPreparedAndOtherwiseFinishWithoutAValue) {
    RecordingOnboardingService service;
    service.on.shouldShowGetStartedSheet.returns(true);
    service.on.identifyUser.answers(
        [](const std::string& email) { return just<LoginState, LoginError>(LoginState::userEmailIdentified(email)); });

    EXPECT_TRUE(service.shouldShowGetStartedSheet());
    EXPECT_FALSE(service.shouldShowGetStartedBanner());
    EXPECT_EQ(service.getStartedBanner(), UserDefaultGetStartedBanner::unknown);
    std::vector<LoginState> states;
    bool isFinished = false;
    const auto identifying =
        service.identifyUser("a@b.c").sink([&](const LoginState& state) { states.push_back(state); });
    const auto cancelling =
        service.cancelLogin().sink([](const Never&) {}, [&](const auto& end) { isFinished = end.isFinished(); });
    EXPECT_EQ(states, std::vector{LoginState::userEmailIdentified("a@b.c")});
    EXPECT_TRUE(isFinished);
    EXPECT_EQ(service.on.identifyUser.calls(), std::vector{std::make_tuple(std::string("a@b.c"))});
}

}  // namespace
