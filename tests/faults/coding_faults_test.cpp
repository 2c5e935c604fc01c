#include <gtest/gtest.h>
#include <kestrel/activity/activity_item.h>
#include <kestrel/boards/board_config.h>
#include <kestrel/boards/pipeline.h>
#include <kestrel/calendar/task.h>
#include <kestrel/coding/json.h>
#include <kestrel/foundation/attributed_string.h>
#include <kestrel/records/company.h>
#include <kestrel/records/contact.h>
#include <kestrel/records/opportunity.h>

#include <limits>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "sweep.h"

// Reading and writing when memory runs out: at each allocation there is, once.
namespace {

using namespace kestrel;
using faults::FailingAllocation;

template <class T>
std::size_t checkDecoding(std::string_view document) {
    const auto expected = decodeJSON<T>(document);
    return faults::failEach([&](std::size_t which) {
        std::optional<std::expected<T, DecodingError>> decoded;
        bool hasFailed = false;
        {
            const FailingAllocation failing(which);
            try {
                decoded.emplace(decodeJSON<T>(document));
            } catch (const std::bad_alloc&) {
            }
            hasFailed = failing.hasFailed();
        }
        EXPECT_TRUE(decoded || hasFailed);
        if (decoded) {
            EXPECT_EQ(*decoded, expected);
        }
        return hasFailed;
    });
}

template <class T>
std::size_t checkEncoding(const T& value, const CodingOptions& options = {}) {
    const auto expected = encodeJSON(value, options);
    return faults::failEach([&](std::size_t which) {
        std::string out = "what was there before";
        bool hasThrown = false;
        bool hasFailed = false;
        std::optional<std::expected<void, EncodingError>> written;
        {
            const FailingAllocation failing(which);
            try {
                written.emplace(encodeJSON(value, out, options));
            } catch (const std::bad_alloc&) {
                hasThrown = true;
            }
            hasFailed = failing.hasFailed();
        }
        EXPECT_TRUE(!hasThrown || hasFailed);
        const bool isWritten = !hasThrown && expected.has_value();
        EXPECT_EQ(out, "what was there before" + (isWritten ? *expected : std::string()));
        if (written && !*written) {
            EXPECT_EQ(written->error(), expected.error());
        }
        return hasFailed;
    });
}

Company company() {
    Company company{.organizationID = 7,
                    .createDate = Date(0.5),
                    .name = "Genco Pura “Olive Oil” of New York and Brooklyn",
                    .permissions = {.readPermissions = {1, 2, 3}, .writePermissions = {4}}};
    company.category =
        Category{.categoryID = 3, .color = RGBAColor{}, .name = "A name too long to lie in the text itself"};
    return company;
}

std::string document() {
    return encodeJSON(company()).value();
}

TEST(Decoding, survivesEachFailureOfMemory) {
    EXPECT_GT(checkDecoding<Company>(document()), 3U);
    EXPECT_GT(checkDecoding<std::vector<Company>>("[" + document() + "," + document() + "]"), 6U);
    EXPECT_GT(checkDecoding<std::vector<std::string>>(R"(["a text that is too long to lie in itself","é\n"])"), 1U);
    EXPECT_GT(checkDecoding<std::vector<std::int64_t>>("[1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17]"), 2U);
    const Opportunity deal{
        .opportunityID = 42, .cachedTotalAmount = 4514, .name = "GTX Pro for Isdom and all of its parts"};
    EXPECT_GT(checkDecoding<Opportunity>(encodeJSON(deal).value()), 0U);
    EXPECT_EQ(checkDecoding<double>("1.5"), 0U);
}

TEST(Decoding, survivesEachFailureOfMemoryWhileItTellsAnError) {
    std::string cut = document();
    cut.pop_back();
    EXPECT_GT(checkDecoding<Company>(cut), 0U);
    EXPECT_GT(checkDecoding<Company>("{}"), 0U);
    EXPECT_GT(checkDecoding<std::vector<Company>>("[" + document() + R"(,{"objectID":7}])"), 0U);
    EXPECT_GT(checkDecoding<std::vector<std::vector<std::int64_t>>>("[[1,2],[3,4.5]]"), 0U);
    EXPECT_GT(checkDecoding<BoardConfig>(R"({"opportunity":{},"project":{}})"), 0U);
    EXPECT_GT(checkDecoding<std::string>(std::string(600, '[')), 0U);
    EXPECT_GT(checkDecoding<Date>("\"soon, and certainly within the next few weeks\""), 0U);
    // A key that is given twice: the careful pass, and a value.
    std::string twice = document();
    twice.insert(1, R"("name":"an earlier name, which does not count","name":7,)");
    EXPECT_GT(checkDecoding<Company>(twice), 0U);
}

TEST(Encoding, leavesTheTextAsItWasAtEachFailureOfMemory) {
    EXPECT_GT(checkEncoding(company()), 0U);
    EXPECT_GT(checkEncoding(std::vector<Company>(40, company())), 1U);
    EXPECT_GT(checkEncoding(std::string(5000, '\n')), 0U);
    EXPECT_GT(checkEncoding(std::vector<double>(1000, 0.1)), 0U);
    // What has no keyed form.
    Company later = company();
    later.createDate = Date(1e300);
    EXPECT_GT(checkEncoding(later, {.dateStrategy = DateStrategy::iso8601}), 0U);
    EXPECT_GT(checkEncoding(std::vector<std::string>{"well", "not \xff UTF-8, and long enough to need memory"}), 0U);
    EXPECT_GT(checkEncoding(std::numeric_limits<double>::infinity()), 0U);
    EXPECT_GT(checkEncoding(ObjectID<Contact>()), 0U);
}

}  // namespace
