#include <fmt/format.h>
#include <host/board/board_options.h>
#include <host/command/access_command.h>
#include <host/command/activity_command.h>
#include <host/command/board_command.h>
#include <host/command/command_line.h>
#include <host/command/contact_command.h>
#include <host/command/contacts_command.h>
#include <host/command/decode_command.h>
#include <host/command/defaults_command.h>
#include <host/command/doctor_command.h>
#include <host/command/geocode_command.h>
#include <host/command/import_command.h>
#include <host/command/links_command.h>
#include <host/command/login_command.h>
#include <host/command/open_command.h>
#include <host/command/serve_command.h>
#include <host/command/show_command.h>
#include <host/failure.h>
#include <host/terminal/output.h>
#include <host/terminal/text.h>
#include <kestrel/platform/system.h>
#include <unistd.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <csignal>
#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace kestrel::host {
namespace {

constexpr int success = 0;
constexpr int failed = 1;
constexpr int wronglyUsed = 2;

constexpr std::string_view mainExamples =
    R"(Start by importing a CRM export into a new database, then look at the board of everybody, or of one person:

  kestrel import data/crm-sales-opportunities --database crm.db
  kestrel board --database crm.db --user administrator
  kestrel board --database crm.db --user "Moses Frase" --filter closes=this-month --sort total-value

`kestrel COMMAND --help` explains a command.

Exit codes: 0 done, 1 could not be done, 2 wrong usage.)";

constexpr std::string_view importExamples =
    R"(Takes any number of these:
  - the folder of a CRM export: accounts.csv, products.csv, sales_teams.csv and sales_pipeline.csv. People become users,
    offices teams, accounts companies, products opportunity types, their series categories, and deals opportunities in
    the pipeline "Sales".
  - .vcf files: cards become contacts with their roles at companies.
  - .ics files: events become appointments with their invitations, to-dos tasks, journal entries notes.
  - .eml files: messages become emails, their attachments files.
  - folders of such files, with the folders below them. Other files in them are left alone.
Events, tasks and mail are linked with the contacts whose e-mail addresses occur in them, whichever came first.

An import is done as a whole or not at all. A broken row of a CRM export is named, with its file, and nothing is changed.
A broken card, event or message is named with its file and line and left out, which is still a success; with --strict
nothing is changed. Importing again updates what has changed; what is no longer in the files stays.

  kestrel import data/crm-sales-opportunities --database crm.db
  kestrel import data/people --database crm.db
  kestrel import contacts.vcf calendar.ics mail/ --database crm.db --strict --json)";

constexpr std::string_view boardExamples =
    R"(Shows the deals that the user may read, by stage. Filters combine: a deal has to pass all of them.

  kestrel board --database crm.db --user administrator
  kestrel board --database crm.db --user moses.frase --sort total-value --limit 3
  kestrel board --database crm.db --user administrator --filter user="Moses Frase" --filter type="GTX Pro"
  kestrel board --database crm.db --user administrator --at 2017-12-31 --filter closes=this-quarter
  kestrel board --database crm.db --user administrator --config board.json --filter category=GTX
  kestrel board --database crm.db --user administrator --config board.json --filter none
  kestrel board --database crm.db --user administrator --json | jq '.columns[].header'

A board with --config comes back as it was left: what is given here is saved for the next time. Each --filter replaces
that key of the saved filter; `--filter none` drops all of it.)";

constexpr std::string_view accessExamples =
    R"(Says whether the user may read, update and delete the record, which rule decided, and how its visibility is called.

  kestrel access Opportunity/42 --database crm.db --user moses.frase
  kestrel access Organization/7 --database crm.db --user administrator --json)";

constexpr std::string_view doctorExamples =
    R"(Says what the system around the program really answers, from what that is known, and what to install or start where
something is missing: the main loop, the time zone, texts and languages, the notification server and each setting, the
applications for URLs and maps, the network, the preferences and the geocoding server.

  kestrel doctor
  kestrel doctor --json | jq '.findings[] | select(.advice)')";

constexpr std::string_view geocodeExamples =
    R"(Asks a server that speaks the protocol of Nominatim. Without --server it is the one in the preference "GeocodingServer".

  kestrel geocode "Main Street 1, 12345 Springfield, USA" --server https://geocoding.example.com
  kestrel defaults set GeocodingServer https://geocoding.example.com --type url
  kestrel geocode "Springfield" --json)";

constexpr std::string_view defaultsExamples =
    R"(Reads, changes and watches the preferences of this program, or of another one by its file.

  kestrel defaults set Theme dark
  kestrel defaults set FontSize 12.5 --type double
  kestrel defaults get Theme
  kestrel defaults get --json
  kestrel defaults watch Theme)";

constexpr std::string_view accountExamples =
    R"(Accounts are those of this machine, with which `kestrel login` signs in to companies; a company has a database, and an
account is one of its users there. Passwords are asked for and read without being shown, one line of standard input each
where that is no terminal.

  kestrel account add ada@example.com
  kestrel account add-company Acme --database crm.db
  kestrel account join ada@example.com Acme --user "Moses Frase"
  kestrel account second-factor ada@example.com
  kestrel login ada@example.com)";

constexpr std::string_view loginExamples =
    R"(Signs in with an account of this machine (`kestrel account --help`) and writes each state of the login. What is not
given is asked for; passwords are read without being shown, one line of standard input each where that is no terminal. A
session lasts until `kestrel logout`, or until the company deactivates the user or the access of the device is withdrawn.

  kestrel login ada@example.com
  kestrel login ada@example.com --company Acme
  kestrel login --status
  kestrel login --unlock)";

constexpr std::string_view contactExamples =
    R"(Shows a contact's page: names, addresses, roles, relationships and who may see it. A contact is named by identifier, by
its key, or by a name that only one contact has. What the user may not read of it is left out.

  kestrel contact Contact/12 --database crm.db --user administrator
  kestrel contact "Ada Lovelace" --database crm.db --user moses.frase
  kestrel contact 12 --database crm.db --user administrator --locale ja
  kestrel contact 12 --database crm.db --user administrator --json | jq .roles)";

constexpr std::string_view contactsExamples =
    R"(Lists the contacts that the user may read, by family name. A search finds the text in names, nicknames, companies and
e-mail addresses, whatever its case; a number also finds phone numbers that have its digits in a row.

  kestrel contacts --database crm.db --user administrator
  kestrel contacts --database crm.db --user moses.frase --search cancity --limit 0
  kestrel contacts --database crm.db --user administrator --search "+49 30 1234" --json)";

constexpr std::string_view activityExamples =
    R"(Says how many emails, appointments, notes, forms, files, links and tasks there are around the record, and shows the
recent ones by day. The activity of a company is also that of its people.

  kestrel activity Contact/12 --database crm.db --user administrator
  kestrel activity Organization/7 --database crm.db --user moses.frase --limit 50
  kestrel activity Opportunity/42 --database crm.db --user administrator --at 2017-12-31 --json)";

constexpr std::string_view linksExamples =
    R"(Lists the contacts that are linked to the record, and how: by a role at a company, on an opportunity or a project, by a
relationship to the contact, or by an email that is filed with them. What a contact itself points at is on its page, which
`kestrel contact` shows.

  kestrel links Organization/7 --database crm.db --user administrator
  kestrel links Contact/12 --database crm.db --user moses.frase --json)";

constexpr std::string_view serveExamples =
    R"(Serves the pipeline board, and the pages of records and contacts, to a browser on this machine as the user may see
them. Writes the address to open, which has a new token at each start; without it no data is given. The browser keeps it
for this port, so that other tabs and a reload need it no more. Cards are dragged to another column, or moved by the
keyboard: arrow keys go from card to card, Enter opens one, M moves it.

  kestrel serve --database crm.db --user "Moses Frase"
  kestrel serve --database crm.db --user administrator --port 8080

The command serves until it is ended by Ctrl-C or SIGTERM; given once more, they end it without waiting for what is being
answered.)";

constexpr std::string_view showExamples =
    R"(Shows every member of the record that is present, and names the absent ones. For who keeps the database: it asks
nobody's permissions.

  kestrel show Opportunity/42 --database crm.db
  kestrel show User/1 --database crm.db --json)";

constexpr std::string_view decodeExamples =
    R"(Prints the document's value in keyed form again. A document that has none is refused with its kind of error, the place
in the value and the place in the text:

  error: typeMismatch at $.columns[2].id: Expected an integer, found a string. (line 1, column 118)

  kestrel decode Opportunity deal.json
  kestrel show Organization/1 --database crm.db --json | kestrel decode Company
  kestrel decode 'ObjectID<Contact>' --dates iso8601 < id.json
  kestrel decode '[LinkTarget]' targets.json
  kestrel decode Permissions --lines < documents.jsonl
  kestrel decode --list

With --lines every line of input is a document, and every line of output {"value": ...} or {"error": {"kind", "path",
"description", "offset"}}; the exit code then tells only whether the input could be read.)";

/// The lines of a help text that list what a value can be, as wide as the other lines.
std::string listedInLines(const std::vector<std::string>& values) {
    constexpr std::size_t widest = 100;
    constexpr std::string_view indent = "    ";
    std::string text;
    std::string line(indent);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::string word = values[i] + (i + 1 < values.size() ? "," : "");
        if (line.size() + 1 + word.size() > widest) {
            text += line + '\n';
            line = indent;
        }
        line += (line.size() > indent.size() ? " " : "") + word;
    }
    return text + line;
}

std::string boardFooter() {
    return fmt::format("Filter keys:\n{}\nDate ranges, for the keys created and closes:\n{}\nSort keys:\n{}\n\n{}",
                       listedInLines(filterKeyNames()), listedInLines(rangeNames()), listedInLines(sortKeyNames()),
                       boardExamples);
}

/// Says what is wrong with a number of things, in the plural; an empty text when nothing is.
std::function<std::string(const std::string&)> countProblem(std::string_view things) {
    return [things](const std::string& text) -> std::string {
        std::uint32_t count = 0;
        const char* const end = text.data() + text.size();
        const auto [stop, problem] = std::from_chars(text.data(), end, count);
        if (problem == std::errc() && stop == end) return {};
        return fmt::format("\"{}\" is no number of {}", text, things);
    };
}

/// Says what is wrong with a port; an empty text when nothing is.
std::string portProblem(const std::string& text) {
    std::uint16_t port = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, problem] = std::from_chars(text.data(), end, port);
    if (problem == std::errc() && stop == end) return {};
    return fmt::format("\"{}\" is no port, which is a number from 0 to 65535", text);
}

/// The command line: fills the options of the command that is asked for.
class CommandLine {
  public:
    CommandLine()
        : app_("The reference host of KestrelService: keeps the records of a CRM and shows them.", "kestrel") {
        app_.set_version_flag("--version", "kestrel " KESTREL_VERSION, "Show the version");
        app_.set_help_flag("-h,--help", "Show this help");
        app_.footer(std::string(mainExamples));
        app_.require_subcommand(0, 1);
        app_.failure_message(CLI::FailureMessage::simple);
        addImport();
        addBoard();
        addContact();
        addContacts();
        addActivity();
        addLinks();
        addAccess();
        addShow();
        addServe();
        addDecode();
        addDoctor();
        addGeocode();
        addDefaults();
        addOpen();
        addLogin();
        addAccount();
    }

    /// Reads the arguments and runs the command. The exit code.
    int run(int argumentCount, const char* const* arguments, Output& output) {
        try {
            app_.parse(argumentCount, arguments);
        } catch (const CLI::CallForVersion& version) {
            output.write(std::string(version.what()) + "\n");
            return success;
        } catch (const CLI::CallForHelp&) {
            output.write(app_.help());
            return success;
        } catch (const CLI::ExtrasError& problem) {
            const std::vector<std::string> rest = app_.remaining();
            const auto word = std::ranges::find_if(rest, [](const auto& each) { return !each.starts_with('-'); });
            if (!app_.get_subcommands().empty() || word == rest.end()) throw WrongUsage(problem.what() + helpHint());
            throw WrongUsage(fmt::format("there is no command \"{}\"; there is: {}", *word, commandNames()) +
                             helpHint());
        } catch (const CLI::ParseError& problem) {
            throw WrongUsage(problem.what() + helpHint());
        }
        const Terminal terminal = Terminal::ofStandardOutput();
        for (const auto& [command, runCommand] : commands_) {
            if (*command) return runCommand(output, terminal);
        }
        throw WrongUsage("a command is required: " + commandNames() + helpHint());
    }

  private:
    using Run = std::function<int(Output&, const Terminal&)>;

    [[nodiscard]] std::string commandNames() const {
        std::vector<std::string> names;
        for (const CLI::App* command : app_.get_subcommands([](const CLI::App*) { return true; }))
            names.push_back(command->get_name());
        return listed(names);
    }
    [[nodiscard]] std::string helpHint() const {
        const auto given = app_.get_subcommands();
        return fmt::format("; see `kestrel {}--help`", given.empty() ? "" : given.front()->get_name() + " ");
    }

    CLI::App* addCommand(const std::string& name, const std::string& description, std::string footer, Run run) {
        CLI::App* command = app_.add_subcommand(name, description);
        command->footer(std::move(footer));
        commands_.emplace_back(command, std::move(run));
        return command;
    }
    static void addDatabase(CLI::App* command, std::string& database) {
        command->add_option("-d,--database", database, "The database")->required()->type_name("FILE");
    }
    /// For commands that show a database to a user.
    static void addView(CLI::App* command, std::string& database, std::string& user) {
        command->add_option("-d,--database", database, "The database; that of who is signed in when not given")
            ->type_name("FILE");
        command
            ->add_option(
                "-u,--user", user,
                "Who looks: a name, or a name to sign in with, whatever its case; who is signed in when not given")
            ->type_name("NAME");
    }
    static void addJSON(CLI::App* command, bool& isJSON) {
        command->add_flag("--json", isJSON, "Write JSON, for programs");
    }
    static void addRecord(CLI::App* command, std::string& record) {
        command->add_option("RECORD", record, "The record, such as Opportunity/42 or Organization/7")
            ->required()
            ->type_name("");
    }

    void addImport() {
        CLI::App* command =
            addCommand("import", "Import a CRM export, address cards, calendars and mail into a database",
                       std::string(importExamples), [this](Output& output, const Terminal& terminal) {
                           importCommand(import_, output, terminal);
                           return success;
                       });
        command->add_option("PATH", import_.paths, "Files and folders to import")->required()->type_name("...");
        command->add_option("-d,--database", import_.database, "The database; made when there is none")
            ->required()
            ->type_name("FILE");
        command->add_flag("--strict", import_.isStrict, "Import nothing when a card, event or message is broken");
        addJSON(command, import_.isJSON);
    }

    void addBoard() {
        CLI::App* command = addCommand("board", "Show the pipeline board of opportunities as a user may see it",
                                       boardFooter(), [this](Output& output, const Terminal& terminal) {
                                           boardCommand(board_, output, terminal);
                                           return success;
                                       });
        addView(command, board_.database, board_.user);
        command->add_option("-f,--filter", board_.filters, "Show only what passes; may be given several times")
            ->allow_extra_args(false)
            ->type_name("KEY=VALUE");
        command->add_option("-s,--sort", board_.sort, "The order of the cards; without an order that of the key")
            ->type_name("KEY[:forward|reverse]");
        command->add_option("--at", board_.at, "Look at this moment instead of now: a date, or a date and time")
            ->type_name("DATE");
        command->add_option("-n,--limit", board_.limit, "Cards to show of each column, 0 for all (10; with --json all)")
            ->check(countProblem("cards"))
            ->type_name("N");
        command->add_option("-c,--config", board_.config, "Read filter and order from the file, and leave them there")
            ->type_name("FILE");
        addJSON(command, board_.isJSON);
    }

    void addContact() {
        CLI::App* command = addCommand("contact", "Show a contact's page as a user may see it",
                                       std::string(contactExamples), [this](Output& output, const Terminal& terminal) {
                                           contactCommand(contact_, output, terminal);
                                           return success;
                                       });
        command->add_option("RECORD", contact_.record, "The contact: Contact/12, its key 12, or its name")
            ->required()
            ->type_name("");
        addView(command, contact_.database, contact_.user);
        command
            ->add_option("-l,--locale", contact_.locale, "Write names as people of this locale do, such as de or ja_JP")
            ->type_name("LOCALE");
        addJSON(command, contact_.isJSON);
    }

    void addContacts() {
        CLI::App* command = addCommand("contacts", "List contacts, or find some", std::string(contactsExamples),
                                       [this](Output& output, const Terminal& terminal) {
                                           contactsCommand(contacts_, output, terminal);
                                           return success;
                                       });
        addView(command, contacts_.database, contacts_.user);
        command->add_option("-s,--search", contacts_.search, "List only contacts that have this text")
            ->type_name("TEXT");
        command->add_option("-n,--limit", contacts_.limit, "Contacts to list, 0 for all (50; with --json all)")
            ->check(countProblem("contacts"))
            ->type_name("N");
        addJSON(command, contacts_.isJSON);
    }

    void addActivity() {
        CLI::App* command = addCommand("activity", "Show what happened around a record as a user may see it",
                                       std::string(activityExamples), [this](Output& output, const Terminal& terminal) {
                                           activityCommand(activity_, output, terminal);
                                           return success;
                                       });
        addRecord(command, activity_.record);
        addView(command, activity_.database, activity_.user);
        command->add_option("-n,--limit", activity_.limit, "Items to show, 0 for all (20)")
            ->check(countProblem("items"))
            ->type_name("N");
        command->add_option("--at", activity_.at, "Look at this moment instead of now: a date, or a date and time")
            ->type_name("DATE");
        addJSON(command, activity_.isJSON);
    }

    void addLinks() {
        CLI::App* command = addCommand("links", "List the contacts that are linked to a record",
                                       std::string(linksExamples), [this](Output& output, const Terminal& terminal) {
                                           linksCommand(links_, output, terminal);
                                           return success;
                                       });
        addRecord(command, links_.record);
        addView(command, links_.database, links_.user);
        addJSON(command, links_.isJSON);
    }

    void addAccess() {
        CLI::App* command = addCommand("access", "Say what a user may do with a record, and why",
                                       std::string(accessExamples), [this](Output& output, const Terminal& terminal) {
                                           accessCommand(access_, output, terminal);
                                           return success;
                                       });
        addRecord(command, access_.record);
        addView(command, access_.database, access_.user);
        addJSON(command, access_.isJSON);
    }

    void addShow() {
        CLI::App* command = addCommand("show", "Show a record in full", std::string(showExamples),
                                       [this](Output& output, const Terminal& terminal) {
                                           showCommand(show_, output, terminal);
                                           return success;
                                       });
        addRecord(command, show_.record);
        addDatabase(command, show_.database);
        addJSON(command, show_.isJSON);
    }

    void addServe() {
        CLI::App* command = addCommand("serve", "Show the board, records and contacts in a browser of this machine",
                                       std::string(serveExamples), [this](Output& output, const Terminal&) {
                                           serveCommand(serve_, output);
                                           return success;
                                       });
        addView(command, serve_.database, serve_.user);
        command->add_option("-p,--port", serve_.port, "The port to listen on; any free one when 0 or not given")
            ->check(portProblem)
            ->type_name("N");
    }

    void addDecode() {
        static const std::map<std::string, DateStrategy> strategies{
            {"deferred", DateStrategy::deferred},
            {"seconds", DateStrategy::secondsSince1970},
            {"milliseconds", DateStrategy::millisecondsSince1970},
            {"iso8601", DateStrategy::iso8601}};
        CLI::App* command = addCommand("decode", "Read JSON documents of a type, or say what is wrong with them",
                                       std::string(decodeExamples), [this](Output& output, const Terminal& terminal) {
                                           if (decode_.typeName.empty() && !decode_.listsTypes) {
                                               throw WrongUsage("TYPE is required" + helpHint());
                                           }
                                           return decodeCommand(decode_, output, terminal);
                                       });
        command->add_option("TYPE", decode_.typeName, "The type's name, or [TYPE] for an array")->type_name("");
        command->add_option("FILE", decode_.file, "The document; standard input when not given")->type_name("");
        command->add_option("--dates", dates_, "How dates are written; deferred when not given: seconds since 2001")
            ->type_name("STRATEGY")
            ->check(CLI::IsMember(strategies))
            ->each([this](const std::string& name) { decode_.coding.dateStrategy = strategies.at(name); });
        command->add_flag("--lines", decode_.isByLine, "Take every line as a document");
        command->add_flag("--list", decode_.listsTypes, "List the types");
        addJSON(command, isDecodedJSON_);
    }

    void addDoctor() {
        CLI::App* command = addCommand("doctor", "Say what the system around the program answers, and what it lacks",
                                       std::string(doctorExamples), [this](Output& output, const Terminal& terminal) {
                                           doctorCommand(isDoctorJSON_, output, terminal);
                                           return success;
                                       });
        addJSON(command, isDoctorJSON_);
    }

    void addGeocode() {
        CLI::App* command = addCommand("geocode", "Find the place of an address", std::string(geocodeExamples),
                                       [this](Output& output, const Terminal& terminal) {
                                           geocodeCommand(geocode_, output, terminal);
                                           return success;
                                       });
        command->add_option("ADDRESS", geocode_.address, "Street, postal code and city, state, country")
            ->required()
            ->type_name("");
        command->add_option("--server", geocode_.server, "The server to ask")->type_name("URL");
        addJSON(command, geocode_.isJSON);
    }

    void addDefaults() {
        CLI::App* defaults = app_.add_subcommand("defaults", "Read, change and watch preferences");
        defaults->footer(std::string(defaultsExamples));
        defaults->require_subcommand(1);
        const auto add = [&](const char* name, const char* description, Run run) {
            CLI::App* command = defaults->add_subcommand(name, description);
            command->add_option("--file", defaults_.file, "The file of preferences; the program's own when not given")
                ->type_name("FILE");
            commands_.emplace_back(command, std::move(run));
            return command;
        };
        const auto addKey = [this](CLI::App* command, bool isRequired) {
            command
                ->add_option("KEY", defaults_.key, isRequired ? "The preference" : "The preference; all when not given")
                ->required(isRequired)
                ->type_name("");
        };
        CLI::App* get = add("get", "Write a preference, or all", [this](Output& output, const Terminal& terminal) {
            getDefaults(defaults_, output, terminal);
            return success;
        });
        addKey(get, false);
        addJSON(get, defaults_.isJSON);
        CLI::App* set = add("set", "Store a preference", [this](Output&, const Terminal&) {
            setDefaults(defaults_);
            return success;
        });
        addKey(set, true);
        set->add_option("VALUE", defaults_.value, "Its value; dates as 2026-01-31T10:00:00Z, data as base64")
            ->required()
            ->type_name("");
        set->add_option("-t,--type", defaults_.type, "Its type (string)")
            ->type_name("TYPE")
            ->check(CLI::IsMember({"string", "integer", "double", "boolean", "date", "url", "data"}));
        addKey(add("remove", "Remove a preference",
                   [this](Output&, const Terminal&) {
                       removeDefaults(defaults_);
                       return success;
                   }),
               true);
        CLI::App* watch =
            add("watch", "Write changes as they happen", [this](Output& output, const Terminal& terminal) {
                watchDefaults(defaults_, output, terminal);
                return success;
            });
        addKey(watch, false);
        watch->add_option("-n,--count", defaults_.count, "End after so many changes")
            ->check(CLI::PositiveNumber)
            ->type_name("N");
        addJSON(watch, defaults_.isJSON);
    }

    void addOpen() {
        CLI::App* command = addCommand("open", "Open a URL in the application that the desktop has for it",
                                       "  kestrel open https://example.com", [this](Output&, const Terminal&) {
                                           openCommand(url_);
                                           return success;
                                       });
        command->add_option("URL", url_, "The URL")->required()->type_name("");
    }

    static void addAccounts(CLI::App* command, std::string& accounts) {
        command
            ->add_option(
                "--accounts", accounts,
                "The file of accounts; kestrel/accounts.sqlite in $XDG_DATA_HOME or ~/.local/share when not given")
            ->type_name("FILE");
    }

    void addLogin() {
        CLI::App* command = addCommand("login", "Sign in, or say who is signed in", std::string(loginExamples),
                                       [this](Output& output, const Terminal& terminal) {
                                           loginCommand(login_, output, terminal);
                                           return success;
                                       });
        command->add_option("EMAIL", login_.email, "The account; who signed in last when not given")->type_name("");
        addAccounts(command, login_.accounts);
        command->add_option("--company", login_.company, "The company to enter")->type_name("NAME");
        command->add_option("--one-time-code", login_.oneTimeCode, "The code that the device shows")->type_name("CODE");
        command->add_option("--recovery-code", login_.recoveryCode, "A recovery code, without the device")
            ->type_name("CODE");
        command->add_flag("--status", login_.asksForStatus, "Say who is signed in");
        command->add_flag("--unlock", login_.unlocks, "Verify the password of who is signed in");
        addJSON(command, login_.isJSON);

        CLI::App* logout =
            addCommand("logout", "Sign out", "  kestrel logout", [this](Output& output, const Terminal& terminal) {
                logoutCommand(login_, output, terminal);
                return success;
            });
        addAccounts(logout, login_.accounts);
        addJSON(logout, login_.isJSON);
    }

    void addAccount() {
        CLI::App* accounts = app_.add_subcommand("account", "Manage the accounts of this machine");
        accounts->footer(std::string(accountExamples));
        accounts->require_subcommand(1);
        using Change = std::function<void(Output&, const Terminal&)>;
        const auto add = [&](const char* name, const char* description, const std::string& example, Change change) {
            CLI::App* command = accounts->add_subcommand(name, description);
            command->footer(fmt::format("  kestrel account {} {}", name, example));
            addAccounts(command, account_.accounts);
            commands_.emplace_back(command, [change = std::move(change)](Output& output, const Terminal& terminal) {
                change(output, terminal);
                return success;
            });
            return command;
        };
        const auto addEmail = [this](CLI::App* command) {
            command->add_option("EMAIL", account_.email, "The account")->required()->type_name("");
            return command;
        };
        const auto addCompany = [this](CLI::App* command) {
            command->add_option("COMPANY", account_.company, "The company")->required()->type_name("");
            return command;
        };
        addEmail(add("add", "Add an account; asks for its password", "ada@example.com",
                     [this](Output&, const Terminal&) { addAccountCommand(account_); }));
        addEmail(add("set-password", "Change the password of an account", "ada@example.com",
                     [this](Output&, const Terminal&) { setPasswordCommand(account_); }));
        CLI::App* factor = addEmail(
            add("second-factor", "Switch on one-time codes, and write the secret for the device", "ada@example.com",
                [this](Output& output, const Terminal& terminal) { secondFactorCommand(account_, output, terminal); }));
        addJSON(factor, account_.isJSON);
        CLI::App* company = addCompany(add("add-company", "Add a company", "Acme --database crm.db",
                                           [this](Output&, const Terminal&) { addCompanyCommand(account_); }));
        addDatabase(company, account_.database);
        company->add_flag("--require-one-time-code", account_.requiresOneTimeCode,
                          "Only for accounts with a second factor");
        CLI::App* join = addCompany(
            addEmail(add("join", "Add an account to a company", "ada@example.com Acme --user \"Moses Frase\"",
                         [this](Output&, const Terminal&) { joinCompanyCommand(account_); })));
        join->add_option("-u,--user", account_.user, "Who the account's user is in the database")
            ->required()
            ->type_name("NAME");
        addCompany(addEmail(add("deactivate", "Deactivate a user in a company", "ada@example.com Acme",
                                [this](Output&, const Terminal&) { setActiveCommand(account_, false); })));
        addCompany(addEmail(add("activate", "Let a deactivated user in again", "ada@example.com Acme",
                                [this](Output&, const Terminal&) { setActiveCommand(account_, true); })));
        addEmail(add("revoke", "Withdraw the access of all devices of an account", "ada@example.com",
                     [this](Output& output, const Terminal&) { revokeDevicesCommand(account_, output); }));
        CLI::App* list = add("list", "List the accounts", "--json", [this](Output& output, const Terminal& terminal) {
            listAccountsCommand(account_, output, terminal);
        });
        addJSON(list, account_.isJSON);
    }

    CLI::App app_;
    std::vector<std::pair<CLI::App*, Run>> commands_;
    ImportOptions import_;
    BoardOptions board_;
    ContactOptions contact_;
    ContactsOptions contacts_;
    ActivityOptions activity_;
    LinksOptions links_;
    AccessOptions access_;
    ShowOptions show_;
    ServeOptions serve_;
    DecodeOptions decode_;
    GeocodeOptions geocode_;
    DefaultsOptions defaults_;
    LoginOptions login_;
    AccountOptions account_;
    std::string url_;
    bool isDoctorJSON_ = false;
    std::string dates_;
    /// Accepted like everywhere: what the command writes is JSON anyhow.
    bool isDecodedJSON_ = false;
};

int fail(const std::exception& problem, int exitCode) noexcept {
    try {
        writeErrorLine(std::string("kestrel: ") + problem.what());
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch)
        // No memory for the message: the exit code has to say it.
    }
    return exitCode;
}

}  // namespace

int runCommandLine(int argumentCount, const char* const* arguments) noexcept {
    // A pipe that nobody reads any more is met where it is written to.
    std::signal(SIGPIPE, SIG_IGN);
    platform::setApplicationIdentity({.identifier = "com.fenwick.Kestrel", .name = "Kestrel"});
    try {
        Output output(STDOUT_FILENO);
        const int exitCode = CommandLine().run(argumentCount, arguments, output);
        output.flush();
        return exitCode;
    } catch (const OutputClosed&) {
        return success;
    } catch (const WrongUsage& problem) {
        return fail(problem, wronglyUsed);
    } catch (const std::exception& problem) {
        return fail(problem, failed);
    }
}

}  // namespace kestrel::host
