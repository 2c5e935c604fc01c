#include <gtest/gtest.h>
#include <kestrel/coding/json.h>
#include <kestrel/identity/object_id.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

namespace {

namespace fs = std::filesystem;

/// The documents that may be accepted or refused: those that are accepted here. Numbers of any size are well-formed,
/// and so are 500 levels and a byte-order mark; what is not UTF-8 or has half of a surrogate pair is not.
const std::set<std::string>& acceptedByChoice() {
    static const std::set<std::string> names{
        "i_number_double_huge_neg_exp.json",  "i_number_huge_exp.json",
        "i_number_neg_int_huge_exp.json",     "i_number_pos_double_huge_exp.json",
        "i_number_real_neg_overflow.json",    "i_number_real_pos_overflow.json",
        "i_number_real_underflow.json",       "i_number_too_big_neg_int.json",
        "i_number_too_big_pos_int.json",      "i_number_very_big_negative_int.json",
        "i_structure_500_nested_arrays.json", "i_structure_UTF-8_BOM_empty_object.json",
    };
    return names;
}

std::string contentOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

TEST(JSONSuite, getsItsVerdicts) {
    const fs::path suite = fs::path(KESTREL_SHARED_DIR) / "corpora/json-test-suite";
    if (!fs::exists(suite)) GTEST_SKIP() << "The suite is not beside this tree: " << suite;
    std::size_t documents = 0;
    for (const char* folder : {"test_parsing", "test_transform"}) {
        for (const auto& entry : fs::directory_iterator(suite / folder)) {
            if (entry.path().extension() != ".json") continue;
            const std::string name = entry.path().filename();
            const std::string document = contentOf(entry.path());
            const bool accepted = kestrel::checkJSON(document).has_value();
            ++documents;
            SCOPED_TRACE(name);
            if (name.starts_with("y_")) {
                EXPECT_TRUE(accepted);
            } else if (name.starts_with("n_")) {
                EXPECT_FALSE(accepted);
            } else if (name.starts_with("i_")) {
                EXPECT_EQ(accepted, acceptedByChoice().contains(name));
            }

            // A typed decoder has the same opinion of the text: whatever is malformed is dataCorrupted, at the root.
            const auto typed = kestrel::decodeJSON<kestrel::ObjectID<kestrel::Contact>>(document);
            ASSERT_FALSE(typed.has_value());
            const bool malformed = typed.error().description.starts_with("Malformed JSON");
            EXPECT_EQ(malformed, !accepted) << typed.error().message();
            EXPECT_LE(typed.error().position.offset, document.size());
            EXPECT_EQ(typed.error().message().find('\n'), std::string::npos);
        }
    }
    EXPECT_GE(documents, 318U);
}

}  // namespace
