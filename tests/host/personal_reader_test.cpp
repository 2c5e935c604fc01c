#include "support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <host/people/icalendar_reader.h>
#include <host/people/mail_reader.h>
#include <host/people/people_importer.h>
#include <host/people/quiet_libraries.h>
#include <host/people/vcard_reader.h>
#include <host/store/store.h>
#include <kestrel/coding/utf8.h>

#include <algorithm>
#include <random>

namespace kestrel::host::test {
namespace {

using testing::ElementsAre;

ContactCard cardOf(const std::string& lines, const std::string& version = "3.0") {
    const QuietLibraries quiet;
    ImportProblems problems;
    VCardReader reader(problems);
    reader.read("a.vcf", "BEGIN:VCARD\r\nVERSION:" + version + "\r\n" + lines + "END:VCARD\r\n");
    return reader.cards().at(0);
}

TEST(VCardReader, readsTheEncodingsOfAllVersions) {
    const auto umlauts = cardOf(
        "N;CHARSET=ISO-8859-1;ENCODING=QUOTED-PRINTABLE:M=FCller;J=F6rg\r\n"
        "NOTE;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:=C3=A9in=\r\nzeilig;=0D=0Azweizeilig\r\n"
        "NICKNAME;CHARSET=ISO-8859-1:J\xf6rgi\r\nTITLE:Gesch\xe4"
        "ftsf\xfc"
        "hrer\r\n",
        "2.1");
    EXPECT_EQ(umlauts.name.last, "Müller");
    EXPECT_EQ(umlauts.name.first, "Jörg");
    EXPECT_EQ(umlauts.name.nickname, "Jörgi");
    EXPECT_EQ(umlauts.note, "éinzeilig;\nzweizeilig");
    EXPECT_EQ(umlauts.employments.at(0).title, "Geschäftsführer");
    EXPECT_EQ(cardOf("FN:A B\r\nURL;ENCODING=b:/zpv\r\n").urls.at(0).value, "\xc3\xbf:o");
    // A line may be folded within a character.
    EXPECT_EQ(cardOf("FN:J\xc3\r\n \xb6rg M\r\n").name.first, "Jörg");
    EXPECT_EQ(cardOf("FN:A B\r\nNOTE:a\\, b\\; c;d\\ne\\\\n \\\"q\\\"\r\n").note, "a, b; c;d\ne\\n \"q\"");
    EXPECT_EQ(cardOf("FN:A B\r\nNOTE:" + std::string(300'000, 'x') + "\r\n").note.size(), 300'000U);
    EXPECT_EQ(cardOf(std::string("FN:A\0B C\r\n", 10)).formattedName,
              "A\xef\xbf\xbd"
              "B C");
    const auto wide = [] {
        std::string bytes = "\xff\xfe";
        for (const char c : std::string_view("BEGIN:VCARD\r\nFN:A B\r\nEND:VCARD\r\n"))
            bytes.append({c, '\0'});
        ImportProblems problems;
        VCardReader reader(problems);
        reader.read("a.vcf", bytes);
        return reader.cards().at(0);
    }();
    EXPECT_EQ(wide.name.last, "B");
}

TEST(VCardReader, readsPicturesOfAllVersions) {
    for (const auto* line :
         {"PHOTO;ENCODING=BASE64;GIF:\r\n  R0lGODlhAQ\r\n  ABAAAA\r\n\r\n",
          "PHOTO;ENCODING=b;TYPE=GIF:R0lGODlhAQABAAAA\r\n", "PHOTO:data:image/gif;base64,R0lGODlhAQABAAAA\r\n"}) {
        const auto card = cardOf(std::string("FN:A B\r\n") + line);
        ASSERT_TRUE(card.picture) << line;
        EXPECT_EQ(card.picture->mimeType, "image/gif");
        EXPECT_EQ(card.picture->data.base64(), "R0lGODlhAQABAAAA");
    }
}

TEST(VCardReader, splitsNamesAndDatesThatAreInOnePiece) {
    struct Case {
        std::string whole;
        std::optional<std::string> first, last;
    };
    for (const auto& [whole, first, last] :
         {Case{"Ada King Lovelace", "Ada King", "Lovelace"}, Case{"Lovelace, Ada", "Ada", "Lovelace"},
          Case{"佐藤花子", std::nullopt, "佐藤花子"}}) {
        const auto card = cardOf("FN:" + whole + "\r\n");
        EXPECT_EQ(card.name.first, first);
        EXPECT_EQ(card.name.last, last);
    }
    struct Day {
        std::string text;
        std::optional<PartialDate> date;
    };
    for (const auto& [text, date] :
         {Day{"1980-03-22", PartialDate{.day = 22, .month = 3, .year = 1980}},
          Day{"19800322T1200Z", PartialDate{.day = 22, .month = 3, .year = 1980}},
          Day{"--0229", PartialDate{.day = 29, .month = 2, .year = {}}},
          Day{"--02-29", PartialDate{.day = 29, .month = 2, .year = {}}}, Day{"1981-02-29", {}}, Day{"---12", {}},
          Day{"1980", {}}, Day{"0000-01-01", {}}, Day{"-1-2-3", {}}}) {
        EXPECT_EQ(cardOf("FN:A B\r\nBDAY:" + text + "\r\n").birthday, date) << text;
    }
    EXPECT_EQ(cardOf("FN:A B\r\nBDAY;X-APPLE-OMIT-YEAR=1604:1604-02-29\r\n").birthday,
              (PartialDate{.day = 29, .month = 2, .year = {}}));
}

TEST(VCardReader, ordersByPreferenceAndLabels) {
    const auto card = cardOf(
        "FN:A B\r\nTEL;TYPE=HOME:1\r\nTEL;TYPE=WORK,FAX:2\r\nTEL;TYPE=CELL,PREF:3\r\nitem1.TEL:4\r\n"
        "item1.X-ABLabel:_$!<AssistantPhone>!$_\r\nTEL;VALUE=uri;PREF=50:tel:+1-5;ext=6\r\nX-AIM;TYPE=HOME:a@b.c\r\n"
        "IMPP;X-SERVICE-TYPE=Skype:skype:d\r\n");
    std::vector<std::string> phones;
    for (const auto& phone : card.phones)
        phones.push_back(phone.label + " " + phone.value);
    EXPECT_THAT(phones, ElementsAre("Mobile 3", " +1-5;ext=6", "Home 1", "Work Fax 2", "Assistant Phone 4"));
    ASSERT_EQ(card.profiles.size(), 2U);
    EXPECT_EQ(card.profiles[0].service + card.profiles[0].address + card.profiles[0].label, "AIMa@b.cHome");
    EXPECT_EQ(card.profiles[1].service + card.profiles[1].address, "Skyped");
}

/// The names of the cards of a file, and what is told of it.
struct CardFile {
    std::vector<std::string> names;
    std::vector<std::string> told;
    std::size_t refused;
    std::vector<std::optional<std::size_t>> agentOf;
};
template <class Problems>
std::vector<std::string> toldOf(const Problems& problems) {
    std::vector<std::string> told;
    for (const ImportProblem& problem : problems.all())
        told.push_back(std::to_string(problem.place.line) + ": " + problem.message);
    return told;
}
CardFile cardsOf(const std::string& content) {
    const QuietLibraries quiet;
    ImportProblems problems;
    VCardReader reader(problems);
    reader.read("a.vcf", content);
    CardFile file{.names = {}, .told = toldOf(problems), .refused = problems.refused(), .agentOf = {}};
    EXPECT_EQ(reader.found(), reader.cards().size() + file.refused);
    for (const ContactCard& card : reader.cards()) {
        file.names.push_back(card.formattedName);
        file.agentOf.emplace_back(card.agentOf);
    }
    return file;
}

TEST(VCardReader, endsLinesInEveryWay) {
    const auto mixed = cardsOf(
        "BEGIN:VCARD\rFN:A\rEND:VCARD\rBEGIN:VCARD\r\nFN:B\r\nwhat\r\nEND:VCARD\r\nBEGIN:VCARD\nFN:C\n C\nwhat\n"
        "END:VCARD\n");
    EXPECT_THAT(mixed.names, ElementsAre("A", "B", "CC"));
    EXPECT_THAT(mixed.told, ElementsAre("6: \"what\" cannot be read as a property; left out",
                                        "11: \"what\" cannot be read as a property; left out"));
}

TEST(VCardReader, takesIndentedCards) {
    EXPECT_THAT(cardsOf("BEGIN:VCARD\nFN:A\nEND:VCARD\n  BEGIN:VCARD\nFN:B\n b\nEND:VCARD\n").names,
                ElementsAre("A", "Bb"));
    EXPECT_THAT(
        cardsOf("  BEGIN:VCARD\n  FN:A\n   a\n  END:VCARD\n\n\tBEGIN:VCARD\n\tFN:B\n\tEND:VCARD\nBEGIN:VCARD\nFN:C\n"
                " c\nEND:VCARD\n")
            .names,
        ElementsAre("Aa", "B", "Cc"));
}

TEST(VCardReader, takesAgentsThatBeginInTheirProperty) {
    for (const auto* agent : {"AGENT:BEGIN:VCARD", "AGENT:\nBEGIN:VCARD", "agent;X=y: begin:vcard"}) {
        const auto file = cardsOf(std::string("BEGIN:VCARD\nFN:A\n") + agent + "\nFN:B\nEND:VCARD\nTEL:1\nEND:VCARD\n");
        EXPECT_THAT(file.names, ElementsAre("B", "A")) << agent;
        EXPECT_THAT(file.agentOf, ElementsAre(1U, std::nullopt)) << agent;
        EXPECT_THAT(file.told, ElementsAre());
    }
}

TEST(VCardReader, refusesWhatIsNoCard) {
    EXPECT_THAT(cardsOf("").told, ElementsAre("1: the file is empty"));
    EXPECT_EQ(cardsOf("").refused, 0U);
    EXPECT_EQ(cardsOf("\xef\xbb\xbf\r\n").refused, 0U);
    EXPECT_THAT(cardsOf("END:VCARD\n").told, ElementsAre("1: ends a card that never began", "1: the file has no card"));
    EXPECT_EQ(cardsOf("END:VCARD\n").refused, 1U);
    const auto binary =
        cardsOf(std::string("\x7f"
                            "ELF\0\1\n\n\xff\xfe\n",
                            10));
    EXPECT_EQ(binary.refused, 1U);
    EXPECT_THAT(binary.told,
                ElementsAre("1: stands outside of a card; left out", "3: stands outside of a card; left out"));
    const auto letter = cardsOf("\nDear Sir,\nBEGIN:VCARD\nFN:A\nEND:VCARD\nYours\n");
    EXPECT_THAT(letter.names, ElementsAre("A"));
    EXPECT_EQ(letter.refused, 1U);
}

TEST(VCardReader, tellsRepeatedWarningsAsANumber) {
    std::string lines = "BEGIN:VCARD\nFN:A\n";
    for (int i = 0; i < 20; ++i)
        lines += "NOTE:\xe4\n";
    const auto told = cardsOf(lines + "END:VCARD\n").told;
    ASSERT_EQ(told.size(), 6U);
    EXPECT_EQ(told[4], "7: is not UTF-8; taken as Windows-1252");
    EXPECT_EQ(told[5], "22: 15 more lines are not UTF-8; taken as Windows-1252");
    // Nothing is taken of a key, whatever its bytes are.
    EXPECT_THAT(cardsOf("BEGIN:VCARD\nFN:A\nKEY;ENCODING=b:/zpv\nX-Y;ENCODING=b:/zpv\nEND:VCARD\n").told,
                ElementsAre());
    EXPECT_THAT(cardsOf("BEGIN:VCARD\nFN:A\nNOTE;ENCODING=b:/zpv\nEND:VCARD\n").told,
                ElementsAre("3: NOTE has bytes that are not UTF-8; replaced"));
}

CalendarEntry eventOf(const std::string& lines, const std::string& before = "") {
    ImportProblems problems;
    ICalendarReader reader(problems);
    reader.read("a.ics", "BEGIN:VCALENDAR\n" + before + "BEGIN:VEVENT\n" + lines + "END:VEVENT\nEND:VCALENDAR\n");
    return reader.entries().at(0);
}

TEST(ICalendarReader, keepsAllOfARule) {
    const auto event = eventOf(
        "DTSTART:20170301T090000Z\n"
        "RRULE:FREQ=YEARLY;INTERVAL=2;COUNT=9;BYMONTH=3,9;BYMONTHDAY=1,-1;BYDAY=MO,-1FR;BYSETPOS=2;BYHOUR=9,17;WKST="
        "SU\n"
        "RRULE:FREQ=DAILY;COUNT=2\nRDATE:20170302T090000Z\n");
    const Repetition& rule = event.repetition.value();
    EXPECT_EQ(rule.frequency, Repetition::Frequency::yearly);
    EXPECT_EQ(std::tuple(rule.interval, rule.count, rule.nthDay), std::tuple(2, 9, 2));
    EXPECT_EQ(rule.byMonths, "3,9");
    EXPECT_EQ(rule.byMonthDays, "1,-1");
    EXPECT_EQ(rule.byDays, "MO,-1FR;BYHOUR=9,17;WKST=SU\nRRULE:FREQ=DAILY;COUNT=2\nRDATE:20170302T090000Z");
}

TEST(ICalendarReader, knowsTheZonesOfTheFileAndOfTheDatabase) {
    const std::string own =
        "BEGIN:VTIMEZONE\nTZID:Own\nBEGIN:STANDARD\nDTSTART:19700101T000000\nTZOFFSETFROM:+0545\nTZOFFSETTO:+0545\n"
        "END:STANDARD\nEND:VTIMEZONE\n";
    const auto startOf = [&](const std::string& start, const std::string& before) {
        const auto event = eventOf("DTSTART" + start + "\n", before);
        return event.start->iso8601().value() + " " + event.timeZoneName;
    };
    EXPECT_EQ(startOf(";TZID=Own:20170701T120000", own), "2017-07-01T06:15:00Z ");
    EXPECT_EQ(startOf(";TZID=Europe/Berlin:20170701T120000", ""), "2017-07-01T10:00:00Z Europe/Berlin");
    EXPECT_EQ(startOf(";TZID=Europe/Berlin:20170101T120000", ""), "2017-01-01T11:00:00Z Europe/Berlin");
    EXPECT_EQ(startOf(";TZID=/example.org/2005_1/Asia/Tokyo:20170101T120000", ""), "2017-01-01T03:00:00Z Asia/Tokyo");
    EXPECT_EQ(startOf(":20170101T120000Z", own), "2017-01-01T12:00:00Z UTC");
    EXPECT_EQ(startOf(":20170101T120000", "X-WR-TIMEZONE:America/Denver\n"), "2017-01-01T19:00:00Z America/Denver");
    EXPECT_EQ(startOf(";VALUE=DATE:20170101", "X-WR-TIMEZONE:America/Denver\n"), "2017-01-01T07:00:00Z America/Denver");
}

TEST(ICalendarReader, framesAndRefusesLikeCards) {
    const auto read = [](const std::string& content) {
        ImportProblems problems;
        ICalendarReader reader(problems);
        reader.read("a.ics", content);
        EXPECT_EQ(reader.found(EntryKind::event), reader.entries().size() + problems.refused());
        return std::tuple(reader.entries().size(), problems.refused(), toldOf(problems));
    };
    using Told = std::vector<std::string>;
    EXPECT_EQ(read(""), std::tuple(0U, 0U, Told{"1: the file is empty"}));
    EXPECT_EQ(read("BEGIN:VCALENDAR\nEND:VCALENDAR\n"), std::tuple(0U, 0U, Told{}));
    EXPECT_EQ(read("\x7f"
                   "ELF\n"),
              std::tuple(0U, 1U, Told{"1: stands outside of a calendar; left out"}));
    EXPECT_EQ(read("BEGIN:VCARD\nFN:A\nEND:VCARD\n"), std::tuple(0U, 1U, Told{"1: the file has no calendar"}));
    EXPECT_EQ(read("  BEGIN:VCALENDAR\r  BEGIN:VEVENT\n  DTSTART:20170301T090000Z\r\n  END:VEVENT\n  END:VCALENDAR\n"),
              std::tuple(1U, 0U, Told{}));
    EXPECT_EQ(read("BEGIN:VEVENT\rDTSTART:20170301T090000Z\nDTSTART:20170302T090000Z\rEND:VEVENT\n"),
              std::tuple(1U, 0U, Told{"3: DTSTART \"20170302T090000Z\" is a second start; left out"}));
}

TEST(ICalendarReader, takesEveryAttendeeOnce) {
    std::string lines = "DTSTART:20170301T090000Z\nATTENDEE:mailto:A1@Example.org\n";
    for (int i = 0; i < 3000; ++i)
        lines += "ATTENDEE:mailto:a" + std::to_string(i) + "@example.org\n";
    EXPECT_EQ(eventOf(lines).attendees.size(), 3000U);
}

TEST(MailReader, refusesGroupsWithinGroups) {
    const QuietLibraries quiet;
    const auto times = [](int count, const std::string& text) {
        std::string all;
        for (int i = 0; i < count; ++i)
            all += text;
        return all;
    };
    ImportProblems problems;
    MailReader reader(problems);
    const auto read = [&](const std::string& header) {
        reader.read("a.eml", "From x\nFrom: a@example.org\nSubject: x\n" + header + "\nDate: x\n\ny\n");
    };
    read("To: " + times(50'000, "g:"));
    read("X: y\nresent-cc : b@example.org,\n " + times(500, "g:\n "));
    read("Bcc: (" + times(50'000, "g:"));
    read("Bcc: @@ \"," + times(50'000, "g:") + "\"");
    read("Content-Type: message/rfc822\n\nTo: " + times(50'000, "g:"));
    ASSERT_EQ(problems.refused(EntryKind::message), 5U);
    const std::string reason = ": the header nests more groups of addresses than can be read";
    EXPECT_THAT(toldOf(problems), ElementsAre("4" + reason, "5" + reason, "4" + reason, "4" + reason, "6" + reason));
    // Colons that are ordinary.
    read("To: " + times(300, "\"Re: x\" <a@[IPv6:2001:db8::1]>, ") + "b@example.org");
    read("Cc: " + times(300, "mailto:a@example.org, http://example.org, 10:30 <a@example.org> (at: noon), "));
    read("Cc: " + times(300, "g: a@example.org;, "));
    read("Subject: " + times(50'000, "g:"));
    EXPECT_EQ(problems.refused(EntryKind::message), 5U);
    EXPECT_EQ(reader.messages().size(), 4U);
    read("Cc: " + times(90, "g:") + " deep@example.org" + times(90, ";"));
    EXPECT_THAT(reader.messages().back().addresses, ElementsAre("a@example.org", "deep@example.org"));
}

TEST(MailReader, decodesHeadersAndCountsAttachments) {
    const QuietLibraries quiet;
    ImportProblems problems;
    MailReader reader(problems);
    reader.read("a.eml",
                "From nobody Mon Jan  2 10:00:00 2017\nFrom: =?iso-8859-1?q?J=F6rg?= <JOERG@Example.org>\n"
                "To: friends: =?utf-8?b?5L2Q6Jek?= <sato@example.org>, b@example.org;\nSubject: caf\xe9\n"
                "Reply-To: other@example.org\nDate: Mon, 2 Jan 2017 11:00:00 +0100\n"
                "Content-Type: multipart/mixed; boundary=x\n\n--x\n\ntext\n--x\nContent-Type: application/pdf\n"
                "Content-Transfer-Encoding: base64\n"
                "Content-Disposition: attachment; filename*=utf-8''%C3%BC.pdf\n\nYWJjZA==\n--x--\n");
    const MailMessage& message = reader.messages().at(0);
    EXPECT_EQ(message.from, "Jörg <JOERG@Example.org>");
    EXPECT_EQ(message.to, "friends: 佐藤 <sato@example.org>, b@example.org;");
    EXPECT_EQ(message.subject, "café");
    EXPECT_EQ(message.date, Date::parseISO8601("2017-01-02T10:00:00Z"));
    EXPECT_THAT(message.addresses,
                ElementsAre("b@example.org", "joerg@example.org", "other@example.org", "sato@example.org"));
    EXPECT_TRUE(isValidUTF8(message.rawHeader));
    EXPECT_TRUE(message.rawHeader.starts_with("From: =?iso-8859-1?q?J=F6rg?="));
    ASSERT_EQ(message.attachments.size(), 1U);
    EXPECT_EQ(message.attachments[0].name, "ü.pdf");
    EXPECT_EQ(message.attachments[0].size, 4);
    // Parts in parts in parts.
    std::string deep = "From: a@example.org\n";
    for (int i = 0; i < 100'000; ++i)
        deep += "Content-Type: multipart/mixed; boundary=b" + std::to_string(i) + "\n\n--b" + std::to_string(i) + "\n";
    reader.read("deep.eml", deep);
    EXPECT_EQ(problems.refused(EntryKind::message), 1U);
}

/// The contents of files, and what spoils them.
struct Sample {
    PersonalFileKind kind;
    std::string content;
};
std::vector<Sample> samples() {
    std::vector<Sample> found;
    for (const Path& folder : {Path(KESTREL_SOURCE_DIR) / "data" / "people", Path(KESTREL_SHARED_DIR) / "data"}) {
        if (!std::filesystem::exists(folder)) continue;
        for (const PersonalFile& file : importPathsOf({folder}).files)
            found.push_back({.kind = file.kind, .content = readFile(file.path)});
    }
    return found;
}

TEST(PersonalReaders, survivePartialAndDamagedFiles) {
    // Milliseconds: more rounds find no more in a run that has to be short.
    constexpr std::size_t largest = 20'000;
    constexpr int rounds = 4;
    std::mt19937 random(20170301);
    const auto below = [&](std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
    };
    const QuietLibraries quiet;
    PersonalData data;
    VCardReader cards(data.problems);
    ICalendarReader calendars(data.problems);
    MailReader mail(data.problems);
    std::size_t read = 0;
    for (const Sample& sample : samples()) {
        if (sample.content.empty() || sample.content.size() > largest) continue;
        for (int round = 0; round < rounds; ++round) {
            std::string content = sample.content;
            if (round % 2 == 0) {
                content.resize(below(content.size()));
            } else {
                for (int i = 0; i < 1 + round * 8; ++i)
                    content[below(content.size())] ^= static_cast<char>(1U << below(8));
            }
            ++read;
            switch (sample.kind) {
                case PersonalFileKind::cards: cards.read("a.vcf", content); break;
                case PersonalFileKind::calendar: calendars.read("a.ics", content); break;
                case PersonalFileKind::message: mail.read("a.eml", content); break;
            }
        }
    }
    EXPECT_GT(read, 40U);
    EXPECT_EQ(cards.found(), cards.cards().size() + data.problems.refused(EntryKind::card));
    EXPECT_EQ(mail.found(), mail.messages().size() + data.problems.refused(EntryKind::message));
    for (const EntryKind kind : {EntryKind::event, EntryKind::toDo, EntryKind::journal}) {
        const auto taken = std::ranges::count(calendars.entries(), kind, &CalendarEntry::kind);
        EXPECT_EQ(calendars.found(kind), static_cast<std::size_t>(taken) + data.problems.refused(kind));
    }
    // What came in can be stored.
    data.cards = std::move(cards.cards());
    data.entries = std::move(calendars.entries());
    data.messages = std::move(mail.messages());
    const TemporaryFolder folder;
    WritingStore store(folder / "crm.db");
    const PeopleReport report = importPeople(data, store.database());
    store.commit();
    EXPECT_GT(report.counts[0].added, 0U);
    for (const ImportProblem& problem : data.problems.all())
        EXPECT_GT(problem.place.line, 0U);
}

}  // namespace
}  // namespace kestrel::host::test
