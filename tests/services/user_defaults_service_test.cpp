#include <gtest/gtest.h>
#include <kestrel/services/onboarding_preferences.h>
#include <kestrel/services/user_defaults_service.h>
#include <kestrel/testing/in_memory_user_defaults.h>

#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace kestrel;

struct ThemeKey {
    using Value = std::string;
    std::string key = "Theme";
    static inline const Value defaultValue = "light";
};
struct SoundKey {
    using Value = bool;
    static constexpr std::string_view key = "Sound";
    static constexpr bool defaultValue = true;
};
struct VolumeKey {
    using Value = std::optional<std::int64_t>;
    static constexpr std::string_view key = "Volume";
    static constexpr Value defaultValue = 7;
};
struct NicknameKey {
    using Value = std::optional<std::string>;
    static constexpr std::string_view key = "Nickname";
    static inline const Value defaultValue = "Kes";
};
struct BannerKey {
    using Value = UserDefaultGetStartedBanner;
    static constexpr std::string_view key = "Banner";
    static constexpr Value defaultValue = Value::show;
};
struct UnrepresentedKey {
    using Value = std::vector<int>;
    [[maybe_unused]] static constexpr std::string_view key = "List";
    [[maybe_unused]] static inline const Value defaultValue{};
};
static_assert(UserDefaultsKey<ThemeKey> && UserDefaultsKey<SoundKey> && !UserDefaultsKey<UnrepresentedKey>);
static_assert(UserDefaultsRepresentable<float> && UserDefaultsRepresentable<std::optional<URL>> &&
              !UserDefaultsRepresentable<const char*>);

class UserDefaults : public testing::Test {
  protected:
    std::shared_ptr<InMemoryUserDefaults> store = std::make_shared<InMemoryUserDefaults>();
    UserDefaultsService service{store};

    template <class V>
    void expectKept(const V& value) {
        ASSERT_TRUE(service.write(value, "Key"));
        EXPECT_EQ(service.read<V>("Key"), value);
        EXPECT_EQ(service.read<std::optional<V>>("Key"), std::optional(std::optional(value)));
    }
};

TEST_F(UserDefaults, keepValuesOfEveryType) {
    expectKept(std::string("a\0b", 3));
    expectKept(Data::fromText("\xff"));
    expectKept(1.5F);
    expectKept(-0.1);
    expectKept(std::numeric_limits<std::int64_t>::min());
    expectKept(-7);
    expectKept(true);
    expectKept(URL::parse("https://example.com/ä").value());
    expectKept(Date(0.25));
    expectKept(UserDefaultHasMac::no);
}

TEST_F(UserDefaults, readAbsentNumbersAsZeroAndOtherAbsentValuesAsTheDefault) {
    EXPECT_FALSE(service.get(SoundKey{})) << "an absent Boolean is false, whatever its default";
    EXPECT_EQ(service.get(VolumeKey{}), std::optional<std::int64_t>(0)) << "also inside an optional";
    EXPECT_EQ(service.read<double>("none"), 0.0);
    EXPECT_EQ(service.read<float>("none"), 0.0F);
    EXPECT_EQ(service.get(ThemeKey{}), "light");
    EXPECT_EQ(service.get(BannerKey{}), UserDefaultGetStartedBanner::show);
    EXPECT_EQ(service.get(NicknameKey{}), std::nullopt) << "absent is a value of an optional";
    EXPECT_EQ(service.read<URL>("none"), std::nullopt);
}

TEST_F(UserDefaults, takeAValueOfAnotherTypeForNothing) {
    ASSERT_TRUE(service.write(std::int64_t{42}, "Theme"));
    EXPECT_EQ(service.get(ThemeKey{}), "light");
    ASSERT_TRUE(service.write(std::int64_t{9}, "Banner"));
    EXPECT_EQ(service.get(BannerKey{}), UserDefaultGetStartedBanner::show);
    ASSERT_TRUE(service.write(std::string("17.9"), "Volume"));
    EXPECT_EQ(service.get(VolumeKey{}), 17) << "numbers are read out of what is there";
    ASSERT_TRUE(service.write(std::int64_t{1} << 40, "Narrow"));
    EXPECT_EQ(service.read<std::int32_t>("Narrow"), std::nullopt);
    ASSERT_TRUE(service.write(std::string("/tmp/a b"), "Place"));
    EXPECT_EQ(service.read<URL>("Place")->text(), "file:///tmp/a%20b");

    ASSERT_TRUE(service.set(std::nullopt, VolumeKey{}));
    EXPECT_EQ(store->object("Volume"), std::nullopt) << "writing an absent value removes the entry";
}

TEST_F(UserDefaults, tellWhatHasChangedSinceSomebodyListens) {
    ASSERT_TRUE(service.set("dark", ThemeKey{}));
    std::vector<std::string> themes;
    auto listening = service.observe(ThemeKey{}).sink([&](const std::string& theme) { themes.push_back(theme); });
    EXPECT_TRUE(themes.empty());
    ASSERT_TRUE(service.set("dark", ThemeKey{}));
    ASSERT_TRUE(service.set(true, SoundKey{}));
    EXPECT_TRUE(themes.empty()) << "nothing has changed for this key";
    ASSERT_TRUE(service.set("blue", ThemeKey{}));
    ASSERT_TRUE(service.set("blue", ThemeKey{}));
    ASSERT_TRUE(service.remove("Theme"));
    ASSERT_TRUE(service.write(std::int64_t{1}, "Theme"));
    ASSERT_TRUE(service.write(std::int64_t{2}, "Theme"));
    EXPECT_EQ(themes, (std::vector<std::string>{"blue", "light"})) << "nothing, of whatever kind, is the default once";

    NotificationCenter::standard().post(userDefaultsDidChangeNotification);
    InMemoryUserDefaults other;
    ASSERT_TRUE(other.set("Theme", std::string("red")));
    EXPECT_EQ(themes.size(), 2U) << "other stores do not count";
    listening.cancel();
    ASSERT_TRUE(service.set("green", ThemeKey{}));
    EXPECT_EQ(themes.size(), 2U);
}

TEST_F(UserDefaults, compareWithTheValueAtTheMomentOfListening) {
    const auto sounds = service.observe(SoundKey{});
    ASSERT_TRUE(service.set(true, SoundKey{}));
    std::vector<bool> heard;
    const auto listening = sounds.sink([&](bool sound) { heard.push_back(sound); });
    ASSERT_TRUE(service.set(true, SoundKey{}));
    ASSERT_TRUE(service.set(false, SoundKey{}));
    ASSERT_TRUE(service.remove("Sound"));
    EXPECT_EQ(heard, std::vector<bool>{false}) << "false and absent are the same here";
}

TEST_F(UserDefaults, reportWhatCannotBeWritten) {
    ASSERT_TRUE(service.set("dark", ThemeKey{}));
    store->failWrites(PlatformError{.domain = "test", .code = 28, .localizedDescription = "No space left."});
    const DefaultsWritten written = service.set("blue", ThemeKey{});
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().code, 28);
    EXPECT_FALSE(service.remove("Theme"));
    EXPECT_EQ(service.get(ThemeKey{}), "dark");
}

}  // namespace
