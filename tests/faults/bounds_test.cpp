#include <gtest/gtest.h>
#include <kestrel/access/permissions.h>
#include <kestrel/activity/activity_item.h>
#include <kestrel/activity/email_link.h>
#include <kestrel/activity/next_activity.h>
#include <kestrel/boards/board.h>
#include <kestrel/boards/board_card_pasteboard.h>
#include <kestrel/boards/board_config.h>
#include <kestrel/boards/opportunity_state.h>
#include <kestrel/coding/json.h>
#include <kestrel/foundation/attributed_string.h>
#include <kestrel/foundation/data.h>
#include <kestrel/foundation/rgba_color.h>
#include <kestrel/identity/activity_source_id.h>
#include <kestrel/identity/occurrence_ids.h>
#include <kestrel/records/name.h>
#include <kestrel/records/partial_date.h>
#include <kestrel/relationships/contact_link.h>
#include <kestrel/session/all_records.h>
#include <kestrel/session/login_state.h>
#include <kestrel/session/schema_migration_state.h>
#include <kestrel/session/service_errors.h>
#include <kestrel/session/session_state.h>
#include <pthread.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "allocations.h"

// What a document may cost: 256 KiB of stack, and twenty times its own length in memory at any moment, whatever it
// says.
namespace {

using namespace kestrel;

constexpr std::size_t factor = 20;
/// For what does not depend on the document: errors, paths, the first elements of arrays.
constexpr std::size_t fixed = 32 * 1024;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool isSanitized = true;
#elif defined(__has_feature)
constexpr bool isSanitized = __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#else
constexpr bool isSanitized = false;
#endif

/// In a thread with a small stack; beyond its end there is nothing, and the test stops. Sanitizers need more for
/// themselves.
void withSmallStack(std::function<void()> work) {
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    if (!isSanitized) {
        ASSERT_EQ(pthread_attr_setstacksize(&attributes, std::size_t{256} * 1024), 0);
    }
    pthread_t thread{};
    const auto run = [](void* given) -> void* {
        (*static_cast<std::function<void()>*>(given))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, run, &work), 0);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
    pthread_attr_destroy(&attributes);
}

/// Whether the document could be read, and that it stayed within the bounds.
template <class T>
bool read(std::string_view document, const char* what) {
    bool isRead = false;
    withSmallStack([&] {
        const faults::Peak peak;
        isRead = decodeJSON<T>(document).has_value();
        EXPECT_LE(peak.bytes(), factor * document.size() + fixed)
            << what << ": " << static_cast<double>(peak.bytes()) / static_cast<double>(document.size())
            << " bytes for each of " << document.size();
    });
    return isRead;
}

std::string repeated(std::string_view text, std::size_t count) {
    std::string made;
    made.reserve(text.size() * count);
    for (std::size_t i = 0; i < count; ++i)
        made += text;
    return made;
}

std::string arrayOf(std::string_view element, std::size_t count) {
    std::string made = "[";
    for (std::size_t i = 0; i < count; ++i)
        made.append(i == 0 ? "" : ",").append(element);
    return made + "]";
}

/// A record that says no more than it must.
template <class Record>
std::optional<std::string> smallestOf() {
    if constexpr (requires { Record{ObjectID<Record>(1)}; }) {
        if (auto text = encodeJSON(Record{ObjectID<Record>(1)})) return *std::move(text);
    }
    return std::nullopt;
}

template <class Visit>
void forEachRecord(Visit visit) {
    recordTypes.forEach([&]<class Record>(const RecordNames<Record>& names) {
        SCOPED_TRACE(names.recordName);
        visit.template operator()<Record>(std::string(names.recordName).c_str());
    });
}

TEST(ADocument, mayNestAsDeepAsItLikes) {
    std::vector<std::string> documents;
    for (const std::size_t depth : {511U, 512U, 513U, 100'000U}) {
        documents.push_back(repeated("[", depth) + repeated("]", depth));
        documents.push_back(repeated("{\"a\":", depth) + "1" + repeated("}", depth));
        documents.push_back(repeated("[{\"permissions\":", depth / 2));
        documents.push_back("{\"later\":" + repeated("[", depth) + repeated("]", depth) + "}");
        documents.push_back("[{\"later\":" + repeated("[{\"a\":", depth / 2) + "null" + repeated("}]", depth / 2) +
                            "}]");
    }
    forEachRecord([&]<class Record>(const char* name) {
        for (const std::string& document : documents) {
            EXPECT_FALSE(read<Record>(document, name));
            EXPECT_FALSE(read<std::vector<Record>>(document, name));
        }
    });
    EXPECT_TRUE(read<std::vector<std::vector<std::int64_t>>>("[[],[]]", "arrays"));
    EXPECT_FALSE(read<std::vector<std::vector<std::int64_t>>>(repeated("[", 2'000'000), "arrays"));
    EXPECT_FALSE(read<AttributedString>(repeated("{\"runs\":[", 100'000), "an attributed string"));
    EXPECT_FALSE(read<BoardConfig>(repeated("{\"opportunity\":", 100'000), "a choice"));
}

TEST(ADocument, mayHaveLongTextsAndManyKeys) {
    const std::string longText = "\"" + std::string(4'000'001, 'x') + "\"";
    const std::string escaped = "\"" + repeated("\\n", 1'000'000) + "\"";
    EXPECT_TRUE(read<std::string>(longText, "a long text"));
    EXPECT_TRUE(read<std::string>(escaped, "a long text of escapes"));
    EXPECT_FALSE(read<Data>(longText, "long data"));
    EXPECT_FALSE(read<Date>(longText, "a long date"));
    EXPECT_TRUE(read<std::vector<std::string>>("[" + longText + "," + escaped + "]", "long texts"));
    forEachRecord([&]<class Record>(const char* name) {
        const auto smallest = smallestOf<Record>();
        if (!smallest) return;
        const std::string inside = smallest->substr(1);
        EXPECT_TRUE(read<Record>("{\"later\":" + longText + "," + inside, name));
        EXPECT_TRUE(read<Record>("{" + repeated("\"later\":1,", 5'000) + inside, name));
        // Each key again and again, which the careful pass has to judge.
        const std::string members = inside.substr(0, inside.size() - 1);
        EXPECT_TRUE(read<Record>("{" + repeated(members + ",", 500) + inside, name));
        EXPECT_FALSE(read<Record>("{" + repeated("\"modifyDate\":\"\",\"name\":0,", 5'000) + "\"a\":0}", name));
    });
}

TEST(ADocument, mayHaveManySmallElements) {
    constexpr std::size_t count = 100'000;
    EXPECT_TRUE(read<std::vector<std::int64_t>>(arrayOf("0", count), "integers"));
    EXPECT_TRUE(read<std::vector<double>>(arrayOf("0", count), "doubles"));
    EXPECT_TRUE(read<std::vector<Date>>(arrayOf("0", count), "dates"));
    EXPECT_TRUE(read<std::vector<bool>>(arrayOf("true", count), "booleans"));
    EXPECT_TRUE(read<std::vector<std::string>>(arrayOf("\"\"", count), "texts"));
    EXPECT_TRUE(read<std::vector<Data>>(arrayOf("\"\"", count), "data"));
    EXPECT_FALSE(read<std::vector<std::string>>(arrayOf("0", count), "texts"));
    EXPECT_TRUE(read<std::vector<std::vector<std::int64_t>>>(arrayOf("[]", count), "arrays"));
    EXPECT_TRUE(read<std::vector<std::optional<std::int64_t>>>(arrayOf("0", count), "what may be absent"));
    // Arrays in arrays, of lengths at which vectors grow.
    for (const std::size_t length : {1U, 2U, 3U, 5U, 8U, 9U, 17U, 33U, 41U, 65U, 201U}) {
        const std::string texts = arrayOf(arrayOf("\"\"", length), count / length);
        EXPECT_TRUE(read<std::vector<std::vector<std::string>>>(texts, "texts in arrays"));
        const std::string numbers = arrayOf(arrayOf("0", length), count / length);
        EXPECT_TRUE(read<std::vector<std::vector<std::int64_t>>>(numbers, "integers in arrays"));
    }
}

TEST(ADocument, mayChangeTheLengthOfItsElements) {
    for (const std::size_t length : {100U, 10'000U, 300'000U}) {
        const std::string large = "\"" + std::string(length, 'x') + "\"";
        for (const std::size_t tiny : {10U, 1'000U, 30'000U, 100'000U}) {
            const std::string many = repeated(",\"\"", tiny);
            for (const std::size_t first : {1U, 8U, 9U}) {
                const std::string start = arrayOf(large, first);
                EXPECT_TRUE(
                    read<std::vector<std::string>>(start.substr(0, start.size() - 1) + many + "]", "growing shorter"));
                const std::string some = arrayOf("\"\"", tiny);
                EXPECT_TRUE(read<std::vector<std::string>>(
                    some.substr(0, some.size() - 1) + repeated("," + large, first) + "]", "growing longer"));
            }
        }
    }
    // Longer and shorter by turns, each stretch four times the one before.
    std::string turns = "[\"\"";
    for (std::size_t stretch = 1; stretch < 200'000; stretch *= 4)
        turns += repeated(",\"0123456789abcdef\"", stretch) + repeated(",\"\"", stretch * 2);
    EXPECT_TRUE(read<std::vector<std::string>>(turns + "]", "by turns"));
}

TEST(ADocument, mayHaveTheSmallestRecords) {
    std::size_t records = 0;
    forEachRecord([&]<class Record>(const char* name) {
        const auto smallest = smallestOf<Record>();
        if (!smallest) return;
        ++records;
        const double ratio = static_cast<double>(sizeof(Record)) / static_cast<double>(smallest->size() + 1);
        EXPECT_LE(ratio, factor) << name << ": " << sizeof(Record) << " bytes for " << *smallest;
        testing::Test::RecordProperty(name, std::to_string(ratio));
        EXPECT_TRUE(read<std::vector<Record>>(arrayOf(*smallest, 3'000), name));
        EXPECT_TRUE(read<std::vector<Record>>(arrayOf(*smallest, 42), name));
        // Behind large ones, and in front of them.
        const std::string large = "{\"later\":\"" + std::string(50'000, 'x') + "\"," + smallest->substr(1);
        const std::string many = arrayOf(*smallest, 3'000);
        EXPECT_TRUE(read<std::vector<Record>>("[" + large + "," + many.substr(1), name));
        EXPECT_TRUE(read<std::vector<Record>>(many.substr(0, many.size() - 1) + "," + large + "]", name));
        EXPECT_FALSE(read<std::vector<Record>>(many.substr(0, many.size() - 1) + ",0]", name));
    });
    EXPECT_GT(records, 40U);
}

}  // namespace
