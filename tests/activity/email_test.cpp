#include <gtest/gtest.h>
#include <kestrel/activity/email.h>
#include <kestrel/activity/email_link.h>
#include <kestrel/activity/note.h>
#include <kestrel/coding/json.h>

#include <optional>
#include <string>

namespace {

using namespace kestrel;

using Text = std::optional<std::string>;

TEST(AnEmail, tellsItsSenderByAddressAndName) {
    struct Case {
        Text from;
        Text address;
        Text name;
    };
    const Case cases[] = {
        {{}, {}, {}},
        {R"("Ada Lovelace" <ada@example.org>)", "ada@example.org", "Ada Lovelace"},
        {"Ada Lovelace <ada@example.org>", "ada@example.org", "Ada Lovelace"},
        {"<ada@example.org>", "ada@example.org", "ada@example.org"},
        {" \t< ada@example.org\t> ", "ada@example.org", "ada@example.org"},
        {"  ada@example.org\r\n", "ada@example.org", "ada@example.org"},
        {R"( "ada@example.org" )", R"("ada@example.org")", "ada@example.org"},
        {R"("" <ada@example.org>)", "ada@example.org", "ada@example.org"},
        {R"(" " " <ada@example.org>)", "ada@example.org", "ada@example.org"},
        {R"("Ada "The Countess" L." <ada@example.org>)", "ada@example.org", R"(Ada "The Countess" L.)"},
        {"Ada <ada@example.org", "ada@example.org", "Ada"},
        {"Ada <one@example.org> <two@example.org>", "one@example.org", "Ada"},
        {"a > b <ada@example.org>", "ada@example.org", "a > b"},
        {"Ada <>", {}, "Ada"},
        {"<>", {}, {}},
        {"<", {}, {}},
        {"Ada < \u3000>", {}, "Ada"},
        {"", "", ""},
        // All white space of Unicode, and no other character, is trimmed.
        {"\u0085\u00a0\u1680\u2000\u200a\u2028\u2029\u202f\u205f\u3000 "
         "Ada\u3000\u2009\u00a0<\u2003ada@example.org\u1680>",
         "ada@example.org", "Ada"},
        {"\u200b日本\u2060 <ada@example.org>", "ada@example.org", "\u200b日本\u2060"},
        {"\xa0 <\x85>", "\x85", "\xa0"},
    };
    for (const Case& each : cases) {
        const Email email{.emailID = 1, .fromString = each.from};
        EXPECT_EQ(email.fromEmailAddress(), each.address) << each.from.value_or("absent");
        EXPECT_EQ(email.fromDisplayName(), each.name) << each.from.value_or("absent");
    }
}

TEST(AnEmail, isADraftByItsStatusCode) {
    EXPECT_TRUE((Email{.emailID = 1, .dmiStatusCode = 20}.isDraft()));
    EXPECT_FALSE((Email{.emailID = 1, .dmiStatusCode = 10}.isDraft()));
    EXPECT_EQ((Email{.emailID = 1, .dmiStatusCode = 5}.dmiStatus()), std::nullopt);
}

TEST(AnEmail, isLinkedToAContact) {
    const std::string form = R"({"contact":{"_0":{"recordName":"Contact","primaryKey":3}}})";
    EXPECT_EQ(encodeJSON(EmailLink::contact(3)), form);
    EXPECT_EQ(decodeJSON<EmailLink>(form)->contact(), 3);
    EXPECT_EQ(EmailLinkRecord::contact(Contact{.contactID = 3}).contact()->id(), 3);
}

TEST(ANote, readsItsBodyOnlyInTheFormItHas) {
    Note note{.noteID = 1};
    EXPECT_EQ(note.plainTextBody(), std::nullopt);
    EXPECT_EQ(note.htmlBody(), std::nullopt);
    note.body = TextBody::html("<p>Hello</p>");
    EXPECT_EQ(note.plainTextBody(), std::nullopt);
    EXPECT_EQ(note.htmlBody(), "<p>Hello</p>");
    note.body = TextBody::plainText("Hello");
    EXPECT_EQ(note.plainTextBody(), "Hello");
    EXPECT_EQ(note.htmlBody(), std::nullopt);
    note.body = TextBody::attributed(AttributedString("Hello", {.isBold = true}));
    EXPECT_EQ(note.plainTextBody(), std::nullopt);
    EXPECT_EQ(note.htmlBody(), std::nullopt);
    EXPECT_NE(TextBody::plainText("x"), TextBody::html("x"));
}

}  // namespace
