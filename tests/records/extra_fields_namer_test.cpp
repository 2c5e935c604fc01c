#include <gtest/gtest.h>
#include <kestrel/records/company.h>
#include <kestrel/records/extra_fields_namer.h>

namespace {

using namespace kestrel;

TEST(ExtraFields, areNamedInTheOrderOfTheirNumbers) {
    Company company{.organizationID = 1,
                    .extra12 = "twelve",
                    .extra2 = "two",
                    .extra5 = "",
                    .extraDate1 = Date(1),
                    .extraDate3 = Date(3)};
    using Fields = std::vector<NamedExtraField>;
    using Dates = std::vector<NamedExtraDate>;
    EXPECT_EQ(ExtraFieldsNamer::empty().namedFields(company),
              (Fields{{"Extra Field 2", "two"}, {"Extra Field 5", ""}, {"Extra Field 12", "twelve"}}));
    EXPECT_EQ(ExtraFieldsNamer::empty().namedDates(company),
              (Dates{{"Extra Date 1", Date(1)}, {"Extra Date 3", Date(3)}}));

    const ExtraFieldsNames names{
        .extraFieldsNamesID = 1, .extra1 = "Unused", .extra12 = "Dozen", .extra5 = "", .extraDate3 = "Renewal"};
    EXPECT_EQ(names.namer().namedFields(company), (Fields{{"Extra Field 2", "two"}, {"", ""}, {"Dozen", "twelve"}}));
    EXPECT_EQ(names.namer().namedDates(company), (Dates{{"Extra Date 1", Date(1)}, {"Renewal", Date(3)}}));
    EXPECT_TRUE(names.namer().namedFields(Company{.organizationID = 2}).empty());
    EXPECT_NE(names.namer(), ExtraFieldsNamer::empty());

    // Every field is paired with its own name, not a neighbour's.
    Company full{.organizationID = 3,
                 .extra1 = "1",
                 .extra10 = "10",
                 .extra11 = "11",
                 .extra12 = "12",
                 .extra2 = "2",
                 .extra3 = "3",
                 .extra4 = "4",
                 .extra5 = "5",
                 .extra6 = "6",
                 .extra7 = "7",
                 .extra8 = "8",
                 .extra9 = "9"};
    const ExtraFieldsNames numbers{.extraFieldsNamesID = 2,
                                   .extra1 = "1",
                                   .extra10 = "10",
                                   .extra11 = "11",
                                   .extra12 = "12",
                                   .extra2 = "2",
                                   .extra3 = "3",
                                   .extra4 = "4",
                                   .extra5 = "5",
                                   .extra6 = "6",
                                   .extra7 = "7",
                                   .extra8 = "8",
                                   .extra9 = "9"};
    int number = 0;
    for (const auto& [name, value] : numbers.namer().namedFields(full)) {
        EXPECT_EQ(name, std::to_string(++number));
        EXPECT_EQ(value, name);
    }
    EXPECT_EQ(number, 12);
}

}  // namespace
