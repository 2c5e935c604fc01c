#include <gmock/gmock.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "record_contract.h"

namespace {

using contract::RecordContract;

std::vector<RecordContract> allContracts() {
    std::vector<RecordContract> all = contract::contractsOfRecords();
    std::ranges::copy(contract::contractsOfPipelinesAndLists(), std::back_inserter(all));
    std::ranges::copy(contract::contractsOfPeopleAndActivity(), std::back_inserter(all));
    std::ranges::copy(contract::contractsOfSessionAndAlerts(), std::back_inserter(all));
    return all;
}

class EveryRecord : public testing::TestWithParam<RecordContract> {};

TEST_P(EveryRecord, keepsTheContract) {
    GetParam().check();
}

INSTANTIATE_TEST_SUITE_P(, EveryRecord, testing::ValuesIn(allContracts()),
                         [](const auto& each) { return each.param.recordName; });

TEST(TheRecordContract, leavesNoRecordOfTheRegisterOut) {
    std::set<std::string> checked;
    for (const RecordContract& each : allContracts())
        EXPECT_TRUE(checked.insert(each.recordName).second) << each.recordName << " stands there twice";
    std::set<std::string> registered;
    kestrel::recordTypes.forEach([&](const auto& names) { registered.emplace(names.recordName); });
    EXPECT_THAT(checked, testing::ContainerEq(registered));
}

}  // namespace
