#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "support.h"

namespace kestrel::host::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

std::string message(const std::string& from, const std::string& subject) {
    return "Message-ID: <1@example.org>\nDate: Tue, 14 Mar 2017 09:00:00 +0000\nFrom: " + from +
           "\nTo: a@example.org\n" + "Subject: " + subject + "\n\nText\n";
}

TEST(ImportedMessages, areNotReplacedByOthersWithTheirIdentifier) {
    const TemporaryFolder folder;
    const std::string database = folder / "crm.db";
    const auto import = [&](const std::string& text) {
        writeText(folder / "m.eml", text);
        return kestrel({"import", folder / "m.eml", "--database", database, "--json"});
    };
    const auto show = [&](const std::string& record) {
        return kestrel({"show", record, "--database", database, "--json"}).output;
    };
    EXPECT_THAT(import(message("Ada <ada@example.org>", "Hello")).output, HasSubstr(R"("new":1,)"));
    // Somebody else's message with the same identifier stands beside it.
    EXPECT_THAT(import(message("Eve <eve@example.org>", "Hello")).output, HasSubstr(R"("new":1,)"));
    // The same one with another subject is left out, and told.
    const Outcome forged = import(message("Ada <ada@example.org>", "Pay at once"));
    EXPECT_THAT(forged.output, HasSubstr(R"("imported":0,"new":0,"changed":0,"unchanged":0,"repeated":1,)"));
    EXPECT_THAT(forged.errors, StartsWith((folder / "m.eml").native() + ":1: another message with this Message-ID"));
    EXPECT_THAT(show("Email/1"), HasSubstr(R"("subject":"Hello")"));
    EXPECT_THAT(show("Email/2"), HasSubstr("eve@example.org"));
    EXPECT_EQ(show("Email/3"), "");
    EXPECT_THAT(import(message("Ada <ada@example.org>", "Hello")).output,
                testing::AllOf(HasSubstr(R"("unchanged":1,)"), HasSubstr(R"("isUnchanged":true)")));
}

TEST(ImportedPeople, canBeLookedAtInANewDatabase) {
    const TemporaryFolder folder;
    const std::string database = folder / "crm.db";
    writeText(folder / "a.vcf", "BEGIN:VCARD\nVERSION:3.0\nN:Lovelace;Ada;;;\nEND:VCARD\n");
    ASSERT_EQ(kestrel({"import", folder / "a.vcf", "--database", database}).exitCode, 0);
    EXPECT_THAT(kestrel({"contacts", "--database", database, "--user", "administrator"}).output,
                HasSubstr("Lovelace, Ada"));
    EXPECT_THAT(kestrel({"contact", "ada lovelace", "--database", database, "--user", "administrator"}).output,
                StartsWith("Ada Lovelace\nContact/1\n"));
    // The export of deals finds the same administrator.
    ASSERT_EQ(kestrel({"import", shippedExport, "--database", database}).exitCode, 0);
    EXPECT_EQ(kestrel({"show", "User/2", "--database", database, "--json"}).output.find("Administrator"),
              std::string::npos);
}

}  // namespace
}  // namespace kestrel::host::test
