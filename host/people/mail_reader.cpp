#include <fmt/format.h>
#include <gmime/gmime.h>
#include <host/people/file_text.h>
#include <host/people/library_objects.h>
#include <host/people/mail_reader.h>
#include <host/terminal/text.h>

#include <algorithm>
#include <array>
#include <exception>
#include <string_view>
#include <utility>

namespace kestrel::host {
namespace {

template <class T>
using Object = Owned<T, g_object_unref>;

/// Parts within parts are parsed by recursion: deeper ones than anybody sends are not parsed at all.
constexpr std::size_t mostBoundaries = 2000;

/// Groups within groups of addresses are parsed by recursion as well. A group that is cut short may also be made of
/// what stands between quotes: so the colons of a header have a limit, too.
constexpr std::size_t deepestGroup = 100;
constexpr std::size_t mostColons = 2000;

/// How deep a list of addresses nests groups. What is quoted, a comment, in brackets, or a part of a web address or of
/// a time begins none.
std::size_t groupDepthOf(std::string_view list) {
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    constexpr std::string_view scheme = "mailto";
    constexpr std::string_view opening = "\"(<[";
    constexpr std::string_view closing = "\")>]";
    std::array<bool, opening.size()> isNeverClosed{};
    std::size_t depth = 0;
    std::size_t deepest = 0;
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (const auto kind = opening.find(list[i]); kind != opening.npos) {
            if (isNeverClosed[kind]) continue;
            std::size_t end = i + 1;
            while (end < list.size() && list[end] != closing[kind])
                end += list[end] == '\\' ? 2U : 1U;
            // Without an end it is a sign like others.
            isNeverClosed[kind] = end >= list.size();
            if (!isNeverClosed[kind]) i = end;
        } else if (list[i] == ';') {
            if (depth > 0) --depth;
        } else if (list[i] == ':') {
            const std::string_view before = list.substr(0, i);
            const std::string_view behind = list.substr(i + 1);
            const bool isTime = !before.empty() && isDigit(before.back()) && !behind.empty() && isDigit(behind.front());
            const bool isMail = isSameWord(before.substr(i - std::min(i, scheme.size())), scheme);
            if (!isTime && !isMail && !behind.starts_with("//")) deepest = std::max(deepest, ++depth);
        }
    }
    return deepest;
}

/// Whether a line starts a header whose text is a list of addresses.
bool startsAddresses(std::string_view line) {
    constexpr std::string_view resent = "Resent-";
    constexpr std::array<std::string_view, 6> names{"From", "Sender", "Reply-To", "To", "Cc", "Bcc"};
    if (startsWithWord(line, resent)) line.remove_prefix(resent.size());
    return std::ranges::any_of(names, [&](std::string_view name) {
        return startsWithWord(line, name) && trimmed(line.substr(name.size())).starts_with(':');
    });
}

/// The lines of a message, which end in LF.
class MessageLines {
  public:
    explicit MessageLines(std::string_view text) : rest_(text) {}

    /// Goes on to the next line; whether there is one.
    bool next() {
        if (rest_.empty()) return false;
        const auto end = rest_.find('\n');
        line_ = {.number = line_.number + 1, .text = rest_.substr(0, end)};
        rest_ = end == rest_.npos ? std::string_view() : rest_.substr(end + 1);
        if (line_.text.ends_with('\r')) line_.text.remove_suffix(1);
        return true;
    }
    [[nodiscard]] const TextLine& line() const noexcept { return line_; }

  private:
    std::string_view rest_;
    TextLine line_;
};

/// The line of the first header of a message, or of one in it, that nests groups of addresses too deep; 0 without any.
std::size_t lineOfDeepGroups(std::string_view message) {
    TextLine header;
    std::string list;
    const auto isTooDeep = [&] {
        return header.number != 0 &&
               (groupDepthOf(list) > deepestGroup || std::cmp_greater(std::ranges::count(list, ':'), mostColons));
    };
    for (MessageLines lines(message); lines.next();) {
        const TextLine& line = lines.line();
        if (line.isContinuation()) {
            if (header.number != 0) list += line.text;
            continue;
        }
        if (isTooDeep()) return header.number;
        header = startsAddresses(line.text) ? line : TextLine{};
        // Behind the name and its colon.
        list = header.number == 0 ? std::string_view() : line.text.substr(line.text.find(':') + 1);
    }
    return isTooDeep() ? header.number : 0;
}

/// The library, ready for use, and how it is to read.
GMimeParserOptions* parserOptions() {
    static GMimeParserOptions* const options = [] {
        g_mime_init();
        static std::array<const char*, 3> charsets{"utf-8", "windows-1252", nullptr};
        GMimeParserOptions* made = g_mime_parser_options_new();
        g_mime_parser_options_set_fallback_charsets(made, charsets.data());
        g_mime_parser_options_set_allow_addresses_without_domain(made, 1);
        return made;
    }();
    return options;
}

std::string textOf(const char* text) {
    return text == nullptr ? std::string() : std::string(trimmed(inUTF8(text)));
}

std::size_t countOf(std::string_view text, std::string_view word) {
    std::size_t count = 0;
    for (std::size_t at = 0; at + word.size() <= text.size(); ++at) {
        if (!startsWithWord(text.substr(at), word)) continue;
        ++count;
        at += word.size() - 1;
    }
    return count;
}

class MessageBuilder {
  public:
    MessageBuilder(FilePlace place, const std::string& bytes, ImportProblems& problems)
        : bytes_(bytes), problems_(problems) {
        message_.place = std::move(place);
    }

    std::optional<MailMessage> build() {
        skipEnvelope();
        if (countOf(bytes_, "boundary") + countOf(bytes_, "message/rfc822") > mostBoundaries)
            return refuse("the message has more nested parts than can be read");
        const std::string plain = plainBytes(bytes_.substr(start_));
        if (const std::size_t line = lineOfDeepGroups(plain); line != 0) {
            problems_.refuse(EntryKind::message, message_.place.at(line + firstLine_ - 1),
                             "the header nests more groups of addresses than can be read");
            return std::nullopt;
        }
        const Object<GMimeStream> stream(g_mime_stream_mem_new_with_buffer(plain.data(), plain.size()));
        const Object<GMimeParser> parser(g_mime_parser_new_with_stream(stream.get()));
        const Object<GMimeMessage> parsed(g_mime_parser_construct_message(parser.get(), parserOptions()));
        if (!parsed) return refuse("cannot be read as a message");
        takeRawHeader(plain);
        message_.digest = digestOf(bytes_);
        message_.from = header(parsed.get(), "From");
        message_.to = header(parsed.get(), "To");
        message_.cc = header(parsed.get(), "Cc");
        message_.bcc = header(parsed.get(), "Bcc");
        message_.subject = header(parsed.get(), "Subject");
        message_.messageID = messageIDOf(header(parsed.get(), "Message-ID"));
        message_.inReplyTo = messageIDOf(header(parsed.get(), "In-Reply-To"));
        if (message_.from.empty() && message_.subject.empty() && header(parsed.get(), "Date").empty())
            return refuse("the message has none of the headers From, Date and Subject");
        takeDate(parsed.get());
        takeAddresses(parsed.get());
        takeAttachments(parsed.get());
        return std::move(message_);
    }

  private:
    std::nullopt_t refuse(std::string reason) {
        problems_.refuse(EntryKind::message, message_.place, std::move(reason));
        return std::nullopt;
    }

    /// Empty lines, and the line that a mailbox puts in front of a message, are none of its headers.
    void skipEnvelope() {
        const std::string_view bytes = bytes_;
        const auto skipLine = [&] {
            const auto end = bytes.find('\n', start_);
            start_ = end == bytes.npos ? bytes.size() : end + 1;
            ++firstLine_;
        };
        while (start_ < bytes.size() && (bytes[start_] == '\n' || bytes.substr(start_, 2) == "\r\n"))
            skipLine();
        if (bytes.substr(start_).starts_with("From ") || bytes.substr(start_).starts_with(">From ")) skipLine();
    }

    void takeRawHeader(std::string_view plain) {
        for (MessageLines lines(plain); lines.next() && !lines.line().text.empty();) {
            const TextLine& line = lines.line();
            headerLines_.push_back({.number = line.number + firstLine_ - 1, .text = line.text});
            message_.rawHeader += validUTF8(line.text) + "\n";
        }
    }

    /// The text of all headers of a name.
    static std::string header(GMimeMessage* message, std::string_view name) {
        GMimeHeaderList* const headers = g_mime_object_get_header_list(reinterpret_cast<GMimeObject*>(message));
        std::string text;
        for (int i = 0; i < g_mime_header_list_get_count(headers); ++i) {
            GMimeHeader* const candidate = g_mime_header_list_get_header_at(headers, i);
            if (!isSameWord(g_mime_header_get_name(candidate), name)) continue;
            const std::string value = textOf(g_mime_header_get_value(candidate));
            if (!text.empty() && !value.empty()) text += ", ";
            text += value;
        }
        return text;
    }

    /// What stands in the first angle brackets, or the first word.
    static std::string messageIDOf(std::string_view text) {
        if (const auto open = text.find('<'); open != text.npos) {
            text.remove_prefix(open + 1);
            return std::string(trimmed(text.substr(0, text.find('>'))));
        }
        return std::string(text.substr(0, text.find_first_of(" \t\n")));
    }

    void takeDate(GMimeMessage* message) {
        const std::string text = header(message, "Date");
        if (text.empty()) return;
        const Owned<GDateTime, g_date_time_unref> date(g_mime_utils_header_decode_date(text.c_str()));
        if (date) {
            message_.date = Date::since1970(static_cast<double>(g_date_time_to_unix(date.get())));
            return;
        }
        const auto line = std::ranges::find_if(
            headerLines_, [](const TextLine& candidate) { return startsWithWord(candidate.text, "Date:"); });
        problems_.warn(message_.place.at(line == headerLines_.end() ? 1 : line->number),
                       fmt::format("Date \"{}\" is no date; left out", text));
    }

    void takeAddresses(GMimeMessage* message) {
        for (const GMimeAddressType type : {GMIME_ADDRESS_TYPE_FROM, GMIME_ADDRESS_TYPE_REPLY_TO, GMIME_ADDRESS_TYPE_TO,
                                            GMIME_ADDRESS_TYPE_CC, GMIME_ADDRESS_TYPE_BCC}) {
            addAddresses(g_mime_message_get_addresses(message, type));
        }
        std::ranges::sort(message_.addresses);
        const auto repeated = std::ranges::unique(message_.addresses);
        message_.addresses.erase(repeated.begin(), repeated.end());
    }

    /// The addresses of a list, those of its groups included.
    void addAddresses(InternetAddressList* all) {
        std::vector<InternetAddressList*> lists{all};
        while (!lists.empty()) {
            InternetAddressList* const list = lists.back();
            lists.pop_back();
            const int count = list == nullptr ? 0 : internet_address_list_length(list);
            for (int i = 0; i < count; ++i) {
                InternetAddress* const address = internet_address_list_get_address(list, i);
                if (g_type_is_a(G_TYPE_FROM_INSTANCE(address), internet_address_group_get_type()) != 0) {
                    lists.push_back(
                        internet_address_group_get_members(reinterpret_cast<InternetAddressGroup*>(address)));
                    continue;
                }
                const std::string text = inLowerCase(
                    textOf(internet_address_mailbox_get_addr(reinterpret_cast<InternetAddressMailbox*>(address))));
                if (!text.empty()) message_.addresses.push_back(text);
            }
        }
    }

    void takeAttachments(GMimeMessage* message) {
        // No exception may pass through the library.
        struct Visit {
            MessageBuilder* builder;
            std::exception_ptr failure;
        };
        Visit visit{.builder = this, .failure = nullptr};
        g_mime_message_foreach(
            message,
            [](GMimeObject*, GMimeObject* part, gpointer data) {
                auto* const current = static_cast<Visit*>(data);
                if (current->failure) return;
                try {
                    current->builder->takePart(part);
                } catch (...) {
                    current->failure = std::current_exception();
                }
            },
            &visit);
        if (visit.failure) std::rethrow_exception(visit.failure);
    }

    /// A part is an attachment when it says so or has a file's name, when it is a message, and when it is no text.
    void takePart(GMimeObject* part) {
        const GType type = G_TYPE_FROM_INSTANCE(part);
        if (g_type_is_a(type, g_mime_multipart_get_type()) != 0) return;
        const char* const disposition = g_mime_object_get_disposition(part);
        GMimeContentType* const content = g_mime_object_get_content_type(part);
        MailMessage::Attachment attachment;
        if (content != nullptr) {
            const Owned<char, g_free> mimeType(g_mime_content_type_get_mime_type(content));
            attachment.mimeType = inLowerCase(textOf(mimeType.get()));
        }
        if (g_type_is_a(type, g_mime_part_get_type()) != 0) {
            auto* const leaf = reinterpret_cast<GMimePart*>(part);
            attachment.name = textOf(g_mime_part_get_filename(leaf));
            const bool isText = content == nullptr || g_mime_content_type_is_type(content, "text", "*") != 0;
            const bool isAttached = disposition != nullptr && isSameWord(disposition, "attachment");
            if (isText && !isAttached && attachment.name.empty()) return;
            if (GMimeDataWrapper* data = g_mime_part_get_content(leaf); data != nullptr) {
                const Object<GMimeStream> counter(g_mime_stream_null_new());
                attachment.size = std::max<ssize_t>(0, g_mime_data_wrapper_write_to_stream(data, counter.get()));
            }
        } else {
            const Object<GMimeStream> counter(g_mime_stream_null_new());
            attachment.size = std::max<ssize_t>(0, g_mime_object_write_content_to_stream(part, nullptr, counter.get()));
        }
        message_.attachments.push_back(std::move(attachment));
    }

    const std::string& bytes_;
    ImportProblems& problems_;
    MailMessage message_;
    /// Where the headers start, and on which line.
    std::size_t start_ = 0;
    std::size_t firstLine_ = 1;
    std::vector<TextLine> headerLines_;
};

}  // namespace

void MailReader::read(const std::string& file, const std::string& bytes) {
    ++found_;
    if (auto message = MessageBuilder({.file = file}, bytes, *problems_).build())
        messages_.push_back(*std::move(message));
}

}  // namespace kestrel::host
