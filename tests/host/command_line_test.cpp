#include "support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <host/terminal/text.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <utility>

namespace kestrel::host::test {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

TEST(CommandLine, teachesByItsHelp) {
    const Outcome main = kestrel({"--help"});
    EXPECT_EQ(main.exitCode, 0);
    EXPECT_EQ(main.errors, "");
    for (const auto* command :
         {"import", "board", "contact", "contacts", "activity", "links", "access", "show", "decode"}) {
        EXPECT_THAT(main.output, HasSubstr("\n  " + std::string(command) + " "));
        const Outcome help = kestrel({command, "--help"});
        EXPECT_EQ(help.exitCode, 0);
        EXPECT_THAT(help.output, AllOf(HasSubstr("Usage: kestrel " + std::string(command)), HasSubstr("--json"),
                                       HasSubstr("\n  kestrel " + std::string(command) + " ")));
    }
    EXPECT_THAT(kestrel({"--version"}).output, testing::MatchesRegex("kestrel [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST(CommandLine, endsWithTwoForWrongUsage) {
    const std::vector<std::vector<std::string>> wrong{
        {},
        {"paint"},
        {"--paint"},
        {"import"},
        {"import", "folder"},
        {"board", "--user", "x"},
        {"board", "--database", "x"},
        {"board", "--database", "x", "--user", "y", "--limit"},
        {"board", "--database", "x", "--user", "y", "stray"},
        {"show", "--database", "x"},
        {"access", "Opportunity/1", "--database", "x"},
        {"show", "a\x1b[31m\nb", "--database", "x"},
    };
    for (const auto& arguments : wrong) {
        const Outcome outcome = kestrel(arguments);
        SCOPED_TRACE(outcome.errors);
        EXPECT_EQ(outcome.exitCode, 2);
        EXPECT_EQ(outcome.output, "");
        EXPECT_THAT(outcome.errors, AllOf(StartsWith("kestrel: "), EndsWith("\n"), Not(HasSubstr("\x1b"))));
        EXPECT_EQ(std::ranges::count(outcome.errors, '\n'), 1);
    }
}

TEST(CommandLine, saysWhatItTakesInsteadOfWhatItWasGiven) {
    EXPECT_THAT(kestrel({"paint", "--red"}).errors,
                AllOf(HasSubstr("there is no command \"paint\"; there is: import, board, contact, "),
                      HasSubstr(" login, logout, account; see `kestrel --help`")));
    EXPECT_THAT(kestrel({"board", "--database", "x", "--user", "y", "stray"}).errors, Not(HasSubstr("no command")));
    for (const std::string port : {"65536", "-1", "http"})
        EXPECT_THAT(kestrel({"serve", "--port", port}).errors, HasSubstr("\"" + port + "\" is no port, "));
    EXPECT_THAT(kestrel({"account", "revoke", "--help"}).output,
                AllOf(HasSubstr("kestrel account revoke ada@example.com"), Not(HasSubstr("Signs in"))));

    const TemporaryFolder folder;
    writeText(folder / "empty.db", "");
    EXPECT_EQ(kestrel({"show", "User/1", "--database", folder / "empty.db"}).errors,
              "kestrel: " + (folder / "empty.db").native() + ": is an empty database; `kestrel import` fills it\n");
}

TEST(CommandLine, endsQuietlyWhenNobodyReadsOn) {
    const ImportedDatabase imported;
    const std::vector<std::string> board{"board", "--database", imported.path(), "--user", "administrator", "--json"};
    const Outcome closed = kestrel(board, {.tail = "| head -c 100 > /dev/null"});
    EXPECT_EQ(closed.errors, "");
    EXPECT_EQ(closed.exitCode, 0);
    // A full disk is another matter.
    const Outcome full = kestrel(board, {.tail = "> /dev/full"});
    EXPECT_EQ(full.exitCode, 1);
    EXPECT_EQ(full.errors, "kestrel: standard output: No space left on device\n");
}

/// What a command writes to a terminal of a width.
std::string onTerminal(const std::vector<std::string>& arguments, std::size_t width,
                       const std::map<std::string, std::string>& environment) {
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
    if (terminal < 0 || ::grantpt(terminal) != 0 || ::unlockpt(terminal) != 0) throw std::runtime_error("no terminal");
    const winsize size{.ws_row = 50, .ws_col = static_cast<unsigned short>(width), .ws_xpixel = 0, .ws_ypixel = 0};
    ::ioctl(terminal, TIOCSWINSZ, &size);
    const std::string name = ::ptsname(terminal);
    // Kept open, so that what was written can still be read when the command has ended.
    const int kept = ::open(name.c_str(), O_RDWR | O_NOCTTY);
    const Outcome outcome = kestrel(arguments, {.environment = environment, .tail = "> " + name + " 2> " + name});
    EXPECT_EQ(outcome.exitCode, 0);
    ::fcntl(terminal, F_SETFL, O_NONBLOCK);
    std::string text(std::size_t{64} * 1024, '\0');
    const ssize_t count = ::read(terminal, text.data(), text.size());
    ::close(kept);
    ::close(terminal);
    text.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    std::erase(text, '\r');
    return text;
}

class Terminals : public testing::Test {
  protected:
    Terminals() {
        writeExport(folder / "export", edited("accounts.csv", "Isdom", "東京株式会社東京株式会社東京株式会社"));
        std::string& deals = files["sales_pipeline.csv"];
        deals.replace(deals.find("Isdom"), 5, "東京株式会社東京株式会社東京株式会社");
        writeText(folder / "export" / "sales_pipeline.csv", deals);
    }
    [[nodiscard]] std::string board(std::size_t width, const std::map<std::string, std::string>& environment) const {
        return onTerminal({"board", "--database", folder / "crm.db", "--user", "administrator", "--at", "2017-12-31"},
                          width, environment);
    }

    TemporaryFolder folder;
    Files files = smallExport;
};

TEST_F(Terminals, showColumnsSideBySideWithinTheirWidth) {
    // The bar goes when the import is done.
    EXPECT_THAT(onTerminal({"import", folder / "export", "--database", folder / "crm.db"}, 80, {{"TERM", "xterm"}}),
                AllOf(StartsWith("Importing ["), HasSubstr("%\033[KImported ")));
    for (const std::size_t width : {20U, 40U, 60U, 80U, 110U, 200U}) {
        SCOPED_TRACE(width);
        const std::string text = board(width, {{"NO_COLOR", "1"}, {"TERM", "xterm"}});
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            EXPECT_LE(displayWidth(line), width) << line;
            EXPECT_FALSE(line.ends_with(' '));
        }
        EXPECT_THAT(text, Not(HasSubstr("\x1b")));
        const bool isOneRow =
            text.find("Prospecting  1") < text.find("Lost  0") &&
            text.substr(text.find("Prospecting  1"), text.find("Lost  0") - text.find("Prospecting  1")).find('\n') ==
                text.npos;
        EXPECT_EQ(isOneRow, width >= 110);
    }
    EXPECT_THAT(
        board(110, {{"NO_COLOR", "1"}, {"TERM", "xterm"}}),
        HasSubstr("Prospecting  1              Engaging  1                 Won  1                      Lost  0\n"
                  "total 0                     total 0                     total 1,054                 total 0\n"));
    EXPECT_THAT(board(110, {{"NO_COLOR", "1"}, {"TERM", "xterm"}}),
                HasSubstr("▌東京株式会社東京株式会社…  ▌Cancity\n"));
}

TEST_F(Terminals, showColoursUnlessTheUserDeclines) {
    ASSERT_EQ(kestrel({"import", folder / "export", "--database", folder / "crm.db"}).exitCode, 0);
    const std::string plain = board(110, {{"TERM", "dumb"}});
    EXPECT_THAT(plain, Not(HasSubstr("\x1b")));
    EXPECT_EQ(board(110, {{"TERM", "xterm"}, {"NO_COLOR", "1"}}), plain);
    for (const auto& environment : {std::map<std::string, std::string>{{"TERM", "xterm"}},
                                    std::map<std::string, std::string>{{"TERM", "xterm"}, {"NO_COLOR", ""}}}) {
        std::string colored = board(110, environment);
        EXPECT_THAT(colored, AllOf(HasSubstr("\x1b[1mWon\x1b[0m"), HasSubstr("\x1b[38;5;68m▌\x1b[0m")));
        // The colours change nothing else.
        for (auto at = colored.find('\x1b'); at != colored.npos; at = colored.find('\x1b'))
            colored.erase(at, colored.find('m', at) + 1 - at);
        std::string trimmed;
        std::istringstream lines(colored);
        for (std::string line; std::getline(lines, line);)
            trimmed += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
        EXPECT_EQ(trimmed, plain);
    }
}

}  // namespace
}  // namespace kestrel::host::test
