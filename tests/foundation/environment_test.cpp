#include <gtest/gtest.h>
#include <kestrel/foundation/feature_environment.h>
#include <kestrel/foundation/progress_snapshot.h>

#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

namespace {

using namespace kestrel;

TEST(ProgressSnapshots, stayBetweenNothingAndAll) {
    EXPECT_EQ(ProgressSnapshot::of(1, 4), (ProgressSnapshot{1, 4, 0.25}));
    EXPECT_EQ(ProgressSnapshot::of(5, 0).fractionCompleted, 0);
    EXPECT_EQ(ProgressSnapshot::of(-5, -10).fractionCompleted, 0);
    EXPECT_EQ(ProgressSnapshot::of(-5, 10).fractionCompleted, 0);
    EXPECT_EQ(ProgressSnapshot::of(11, 10), (ProgressSnapshot{11, 10, 1}));
    EXPECT_EQ(ProgressSnapshot::of(INT64_MAX, INT64_MAX).fractionCompleted, 1);
    EXPECT_NE(ProgressSnapshot::of(0, 1), ProgressSnapshot::of(0, 2));
}

TEST(FeatureEnvironments, decideBeforeTheyFollowTheDefaults) {
    const FeatureEnvironment environment({"boards", "passkeys"}, {{"passkeys", false}, {"maps", true}});
    EXPECT_TRUE(environment.isEnabled("boards"));
    EXPECT_FALSE(environment.isEnabled("passkeys"));
    EXPECT_TRUE(environment.isEnabled("maps"));
    EXPECT_FALSE(environment.isEnabled("Boards"));
}

TEST(FeatureEnvironments, areReplacedWhileOthersRead) {
    using Names = FeatureEnvironment::Names;
    EXPECT_FALSE(FeatureEnvironment::current()->isEnabled("boards"));
    FeatureEnvironment::setCurrent(std::make_shared<const FeatureEnvironment>(Names{"boards"}));
    const auto held = FeatureEnvironment::current();
    std::atomic<int> wrong = 0;
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([&, i] {
                for (int round = 0; round < 500; ++round) {
                    if (i == 0) {
                        FeatureEnvironment::setCurrent(
                            std::make_shared<const FeatureEnvironment>(Names{round % 2 == 0 ? "maps" : "boards"}));
                    }
                    const auto seen = FeatureEnvironment::current();
                    if (seen->isEnabled("maps") == seen->isEnabled("boards")) ++wrong;
                }
            });
        }
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_TRUE(held->isEnabled("boards"));
    EXPECT_FALSE(held->isEnabled("maps")) << "what was taken stays as it was";
    FeatureEnvironment::setCurrent(nullptr);
    EXPECT_FALSE(FeatureEnvironment::current()->isEnabled("boards"));
}

}  // namespace
