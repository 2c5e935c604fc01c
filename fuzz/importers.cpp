#include <fcntl.h>
#include <fuzz/fuzzing.h>
#include <host/crm/csv_reader.h>
#include <host/people/icalendar_reader.h>
#include <host/people/import_problems.h>
#include <host/people/mail_reader.h>
#include <host/people/quiet_libraries.h>
#include <host/people/vcard_reader.h>
#include <kestrel/coding/utf8.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Files of other programs. The first byte chooses the reader; the rest is the file.
namespace {

using namespace kestrel;
using namespace kestrel::host;
using fuzzing::require;

const std::string fileName = "file";

void requireText(const std::string& text) {
    require(isValidUTF8(text), "what was read is UTF-8", text);
}

std::size_t lineCount(std::string_view bytes) {
    return static_cast<std::size_t>(std::ranges::count_if(bytes, [](char c) { return c == '\n' || c == '\r'; })) + 1;
}

/// What holds of the problems, whatever the reader.
void check(ImportProblems& problems, std::string_view bytes) {
    problems.sort();
    require(problems.refused() <= problems.all().size(), "what is refused is told");
    for (const ImportProblem& problem : problems.all()) {
        require(problem.place.file == fileName, "a problem names its file", problem.place.file);
        require(problem.place.line >= 1 && problem.place.line <= lineCount(bytes), "a problem names a line of the file",
                [&] { return problem.message + " in line " + std::to_string(problem.place.line); });
        // It may quote the file as it is.
        require(!problem.message.empty(), "a problem is told");
    }
}

void readCards(std::string_view bytes) {
    ImportProblems problems;
    VCardReader reader(problems);
    reader.read(fileName, std::string(bytes));
    require(reader.found() == reader.cards().size() + problems.refused(EntryKind::card),
            "each card is read or refused");
    require(problems.refused() == problems.refused(EntryKind::card), "cards are refused as cards");
    for (const ContactCard& card : reader.cards()) {
        require(card.place.line <= lineCount(bytes), "a card stands in the file");
        require(!card.agentOf || *card.agentOf < reader.cards().size(), "an agent is one of a card that was read");
        for (const std::string* text : {&card.uid, &card.formattedName, &card.note})
            requireText(*text);
        for (const auto* details : {&card.phones, &card.emails, &card.urls}) {
            for (const ContactCard::Detail& detail : *details) {
                require(!detail.value.empty(), "no address is empty");
                requireText(detail.value);
                requireText(detail.label);
            }
        }
        for (const ContactCard::Profile& profile : card.profiles) {
            require(!profile.address.empty(), "no profile is empty");
            for (const std::string* text : {&profile.address, &profile.service, &profile.label})
                requireText(*text);
        }
        for (const ContactCard::PostalAddress& address : card.addresses) {
            for (const auto* text : {&address.street, &address.city, &address.state, &address.postalCode,
                                     &address.country, &address.countryCode, &address.label})
                requireText(*text);
        }
        for (const ContactCard::Employment& employment : card.employments) {
            require(!employment.company.empty() || !employment.department.empty() || !employment.title.empty() ||
                        !employment.role.empty(),
                    "an employment says something");
        }
        for (const auto* texts : {&card.categories, &card.members}) {
            for (const std::string& text : *texts)
                requireText(text);
        }
    }
    check(problems, bytes);
}

void readCalendar(std::string_view bytes) {
    ImportProblems problems;
    ICalendarReader reader(problems);
    reader.read(fileName, std::string(bytes));
    for (const EntryKind kind : {EntryKind::event, EntryKind::toDo, EntryKind::journal}) {
        const auto read = std::ranges::count(reader.entries(), kind, &CalendarEntry::kind);
        require(reader.found(kind) == static_cast<std::size_t>(read) + problems.refused(kind),
                "each entry is read or refused");
    }
    for (const CalendarEntry& entry : reader.entries()) {
        require(entry.place.line <= lineCount(bytes), "an entry stands in the file");
        require(entry.kind != EntryKind::event || entry.start.has_value(), "an event has a start");
        for (const auto* text : {&entry.uid, &entry.summary, &entry.description, &entry.location, &entry.url,
                                 &entry.timeZoneName, &entry.status, &entry.organizer})
            requireText(*text);
        for (const CalendarEntry::Attendee& attendee : entry.attendees) {
            requireText(attendee.address);
            requireText(attendee.name);
        }
    }
    check(problems, bytes);
}

void readMail(std::string_view bytes) {
    ImportProblems problems;
    MailReader reader(problems);
    reader.read(fileName, std::string(bytes));
    require(reader.found() == 1 && reader.messages().size() + problems.refused(EntryKind::message) == 1,
            "a message is read or refused");
    for (const MailMessage& message : reader.messages()) {
        require(!message.from.empty() || !message.subject.empty() || message.date || !message.rawHeader.empty(),
                "a message says something");
        for (const auto* text : {&message.rawHeader, &message.from, &message.to, &message.cc, &message.bcc,
                                 &message.subject, &message.messageID, &message.inReplyTo})
            requireText(*text);
        for (const std::string& address : message.addresses)
            requireText(address);
        for (const MailMessage::Attachment& attachment : message.attachments) {
            require(attachment.size >= 0 && static_cast<std::size_t>(attachment.size) <= bytes.size() * 4,
                    "an attachment is of the message's size");
            requireText(attachment.name);
        }
    }
    check(problems, bytes);
}

/// A file in memory, with a path.
class MemoryFile {
  public:
    MemoryFile() : descriptor_(memfd_create("csv", MFD_CLOEXEC)) { require(descriptor_ >= 0, "there is a file"); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() { close(descriptor_); }

    void write(std::string_view bytes) const {
        require(ftruncate(descriptor_, 0) == 0 &&
                    pwrite(descriptor_, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()),
                "the file can be written");
    }
    [[nodiscard]] std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

  private:
    int descriptor_;
};

constexpr std::array<std::string_view, 3> header{"a", "b", "c"};

std::optional<std::vector<CSVRow>> rowsOf(std::string_view bytes) {
    static const MemoryFile file;
    file.write(bytes);
    try {
        return readCSV(file.path(), header);
    } catch (const Failure& failure) {
        require(std::string_view(failure.what()).starts_with(file.path() + ": row "), "a failure names file and row",
                failure.what());
        return std::nullopt;
    }
}

void readTable(std::string_view bytes) {
    const auto rows = rowsOf(bytes);
    if (!rows) return;
    std::size_t line = 1;
    bool isKeptByQuotes = true;
    std::string quoted = "a,b,c\n";
    for (const CSVRow& row : *rows) {
        require(row.line > line && row.line <= lineCount(bytes), "rows stand below each other", bytes);
        line = row.line;
        require(row.fields.size() == header.size(), "a row has the header's fields", bytes);
        for (const std::string& field : row.fields) {
            requireText(field);
            // The end of a line within a field is a line feed, whatever it was.
            isKeptByQuotes = isKeptByQuotes && field.find("\r\n") == std::string::npos;
            quoted += &field == &row.fields.front() ? "\"" : ",\"";
            for (const char c : field)
                quoted += c == '"' ? std::string(2, c) : std::string(1, c);
            quoted += '"';
        }
        quoted += '\n';
    }
    if (!isKeptByQuotes) return;
    const auto again = rowsOf(quoted);
    require(again && std::ranges::equal(*again, *rows, {}, &CSVRow::fields, &CSVRow::fields),
            "fields in quotes read as what they are", quoted);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return -1;
    static const QuietLibraries quiet;
    const std::string_view bytes = kestrel::fuzzing::textOf(data + 1, size - 1);
    switch (data[0] % 5) {
        case 0: readCards(bytes); break;
        case 1: readCalendar(bytes); break;
        case 2: readMail(bytes); break;
        case 3: readTable(bytes); break;
        // Below its header, which is seldom hit otherwise.
        default: readTable("a,b,c\n" + std::string(bytes)); break;
    }
    return 0;
}
