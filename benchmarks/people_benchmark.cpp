// How long the commands that show people take on a large database: the shipped export of deals, 20,000 contacts with
// roles and relationships, and 100,000 items of activity, the same in every run. Each command is timed as people run
// it, as a process of its own, from its start to its end.

#include <fcntl.h>
#include <fmt/format.h>
#include <host/store/record_links.h>
#include <host/store/record_table.h>
#include <host/store/store.h>
#include <spawn.h>
#include <sys/wait.h>
#include <tests/temporary_folder.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace kestrel;
using namespace kestrel::host;

constexpr std::int64_t contactCount = 20'000;
constexpr std::int64_t relationshipCount = 10'000;
constexpr std::int64_t itemCount = 100'000;
constexpr std::int64_t companyCount = 85;
constexpr int runCount = 20;

/// Numbers that are the same on every system: the distributions of the standard library are not.
class Numbers {
  public:
    std::int64_t below(std::int64_t limit) {
        return static_cast<std::int64_t>(random_() % static_cast<std::uint64_t>(limit));
    }
    const std::string& oneOf(const std::vector<std::string>& texts) {
        return texts[static_cast<std::size_t>(below(static_cast<std::int64_t>(texts.size())))];
    }

  private:
    std::mt19937_64 random_{20'170'314};
};

class Generator {
  public:
    explicit Generator(SQLite::Database& database) : database_(&database), links_(database) {}

    void generate() {
        generateContacts();
        generateRelationships();
        for (std::int64_t key = 1; key <= itemCount; ++key)
            generateItem(key);
    }

  private:
    void generateContacts() {
        RecordTable<Contact> contacts(*database_);
        RecordTable<AnyRole> roles(*database_);
        for (std::int64_t key = 1; key <= contactCount; ++key) {
            Contact contact{.contactID = key, .priority = ContactPriority::p5};
            const std::string& first = numbers_.oneOf(firstNames);
            const std::string last = numbers_.oneOf(lastNames) + numbers_.oneOf(lastEnds);
            // One can be asked for by name.
            contact.setName({.first = first, .last = last});
            if (key == contactCount / 2) contact.setName({.first = "Adeline", .last = "Featherstonehaugh"});
            contact.phones = {{.phoneID = key, .number = fmt::format("+49 30 {:07}", numbers_.below(10'000'000))}};
            contact.electronicAddresses = {
                {.electronicAddressID = key, .address = fmt::format("{}.{}@mail{}.example", first, last, key)}};
            contact.geoAddresses = {{.geoAddressID = key, .city = "Berlin", .country = "Germany", .street = "Allee 1"}};
            contact.details = "Met at the fair; prefers letters.";
            contacts.insert(contact);
            links_.add(contact.objectID(), LinkKind::owner, user());
            roles.insert({.roleID = key, .department = "Sales", .isDefaultForContact = true, .name = "Agent"});
            links_.add(ObjectID<AnyRole>(key), LinkKind::source, contact.objectID());
            links_.add(ObjectID<AnyRole>(key), LinkKind::destination, company());
        }
        // Every tenth has a role on a deal, too.
        for (std::int64_t key = 1; key <= contactCount / 10; ++key) {
            const ObjectID<AnyRole> role = contactCount + key;
            roles.insert({.roleID = role, .name = "Decides"});
            links_.add(role, LinkKind::source, contact());
            links_.add(role, LinkKind::destination, ObjectID<Opportunity>(1 + numbers_.below(8'800)));
        }
    }

    void generateRelationships() {
        RecordTable<AnyRelationship> relationships(*database_);
        const RelationshipType type{.relationshipTypeID = 1, .forwardName = "Reports to", .reverseName = "Leads"};
        for (std::int64_t key = 1; key <= relationshipCount; ++key) {
            relationships.insert({.relationID = key, .relationshipType = type});
            links_.add(ObjectID<AnyRelationship>(key), LinkKind::source, contact());
            links_.add(ObjectID<AnyRelationship>(key), LinkKind::destination, contact());
        }
    }

    void generateItem(std::int64_t key) {
        const std::int64_t kind = numbers_.below(10);
        const Date date = Date(474'000'000) + static_cast<double>(numbers_.below(100'000'000));
        if (kind < 4) {
            item(emails_, Email{.emailID = key,
                                .fromString = "Moses Frase <moses@sales.example>",
                                .messageDate = date,
                                .subject = fmt::format("Re: Offer {}", key),
                                .toString = "office@customer.example"});
        } else if (kind < 7) {
            Task task{.taskID = key, .completeDate = date, .createDate = date, .title = fmt::format("Call {}", key)};
            if (numbers_.below(3) != 0) task.dueDate = date;
            task.status = numbers_.below(2) == 0 ? TaskStatus::done : TaskStatus::open;
            links_.add(task.objectID(), LinkKind::owner, user());
            item(tasks_, task);
        } else if (kind < 9) {
            item(timeblocks_, Timeblock{.timeblockID = key,
                                        .endDate = date + 3'600,
                                        .location = "Berlin",
                                        .startDate = date,
                                        .subject = fmt::format("Meeting {}", key)});
        } else {
            item(notes_, Note{.noteID = key, .body = TextBody::plainText("What was said."), .title = "Call"});
        }
    }

    /// Stores an item with a contact as its subject, and every fifth with a deal or a company as well.
    template <class Record>
    void item(RecordTable<Record>& table, const Record& record) {
        table.insert(record);
        links_.add(record.objectID(), LinkKind::subject, contact());
        if (numbers_.below(10) == 0) links_.add(record.objectID(), LinkKind::subject, company());
        if (numbers_.below(10) == 0)
            links_.add(record.objectID(), LinkKind::subject, ObjectID<Opportunity>(1 + numbers_.below(8'800)));
    }

    ObjectID<Contact> contact() { return 1 + numbers_.below(contactCount); }
    ObjectID<Company> company() { return 1 + numbers_.below(companyCount); }
    ObjectID<User> user() { return 1 + numbers_.below(40); }

    const std::vector<std::string> firstNames{"Ada",    "Charles",   "Émilie", "Grace",
                                              "Jürgen", "Katherine", "Søren",  "駿"};
    const std::vector<std::string> lastNames{"Love", "Babb", "Hopp", "John", "Lind",
                                             "Berg", "Wein", "Müll", "Gar",  "Nor"};
    const std::vector<std::string> lastEnds{"lace", "age", "er", "son", "gren", "mann", "berg", "stein", "cía", "dahl"};

    SQLite::Database* database_;
    RecordLinks links_;
    RecordTable<Email> emails_{*database_};
    RecordTable<Task> tasks_{*database_};
    RecordTable<Timeblock> timeblocks_{*database_};
    RecordTable<Note> notes_{*database_};
    Numbers numbers_;
};

/// Runs `kestrel` with the arguments, its output going nowhere. How long it took, in milliseconds; throws when it
/// fails.
double run(const std::vector<std::string>& arguments) {
    std::vector<std::string> words{KESTREL_COMMAND};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> raw;
    for (std::string& word : words)
        raw.push_back(word.data());
    raw.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    const auto start = std::chrono::steady_clock::now();
    pid_t child = 0;
    const int problem = ::posix_spawn(&child, KESTREL_COMMAND, &actions, nullptr, raw.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (problem != 0) throw std::runtime_error("the command cannot be started");
    int status = 0;
    ::waitpid(child, &status, 0);
    const std::chrono::duration<double, std::milli> passed = std::chrono::steady_clock::now() - start;
    if (status != 0) throw std::runtime_error("`kestrel " + arguments.front() + "` fails");
    return passed.count();
}

/// Times a command over many runs; `argumentsOf` makes those of each.
template <class ArgumentsOf>
void measure(std::string_view name, const std::string& database, ArgumentsOf&& argumentsOf) {
    std::vector<double> times;
    for (int i = 0; i < runCount; ++i) {
        std::vector<std::string> arguments = argumentsOf(i);
        arguments.insert(arguments.end(), {"--database", database, "--user", "Administrator"});
        times.push_back(run(arguments));
    }
    std::ranges::sort(times);
    const std::size_t middle = times.size() / 2;
    const double median = (times[middle - 1] + times[middle]) / 2;
    std::printf("%-34s %8.1f ms %8.1f ms\n", std::string(name).c_str(), median, times.back());
}

void measureAll() {
    const kestrel::test::TemporaryFolder folder;
    const std::string database = (folder / "crm.db").native();
    run({"import", KESTREL_SOURCE_DIR "/data/crm-sales-opportunities", "--database", database});
    std::printf("%-34s %11s %11s\n", "command", "median", "longest");
    const auto board = [](int) { return std::vector<std::string>{"board", "--at", "2017-03-14"}; };
    measure("board, without people", database, board);
    {
        WritingStore store(database);
        Generator(store.database()).generate();
        store.commit();
    }
    using Arguments = std::vector<std::string>;
    const auto contactKey = [](int i) { return fmt::format("Contact/{}", 1 + i * 997); };
    const auto companyKey = [](int i) { return fmt::format("Organization/{}", 1 + i * 4); };
    measure("contact Contact/N", database, [&](int i) { return Arguments{"contact", contactKey(i)}; });
    measure("contact, a name", database, [](int) { return Arguments{"contact", "adeline featherstonehaugh"}; });
    measure("activity Contact/N", database, [&](int i) { return Arguments{"activity", contactKey(i)}; });
    measure("activity Organization/N", database, [&](int i) { return Arguments{"activity", companyKey(i)}; });
    measure("links Organization/N", database, [&](int i) { return Arguments{"links", companyKey(i)}; });
    measure("contacts", database, [](int) { return Arguments{"contacts"}; });
    measure("contacts --search, a name", database, [](int) { return Arguments{"contacts", "--search", "lovelace"}; });
    measure("contacts --search, a phone number", database,
            [](int) { return Arguments{"contacts", "--search", "30 123"}; });
    measure("contacts --search, a company", database, [](int) { return Arguments{"contacts", "--search", "cancity"}; });
    measure("board, with people and activity", database, board);
}

}  // namespace

int main() {
    try {
        measureAll();
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "people_benchmark: %s\n", problem.what());
        return 1;
    }
}
