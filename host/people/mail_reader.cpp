#include <fmt/format.h>
#include <gmime/gmime.h>
#include <host/people/file_text.h>
#include <host/people/library_objects.h>
#include <host/people/mail_reader.h>
#include <host/terminal/text.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace kestrel::host {
namespace {

template <class T>
using Object = Owned<T, g_object_unref>;

/// Parts within parts are parsed by recursion: deeper ones than anybody sends are not parsed at all.
constexpr std::size_t mostBoundaries = 2000;

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
        for (const TextLine& line : linesOf(plain)) {
            if (line.text.empty()) break;
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
    void addAddresses(InternetAddressList* list) {
        if (list == nullptr) return;
        for (int i = 0; i < internet_address_list_length(list); ++i) {
            InternetAddress* const address = internet_address_list_get_address(list, i);
            const GType type = G_TYPE_FROM_INSTANCE(address);
            if (g_type_is_a(type, internet_address_group_get_type()) != 0) {
                addAddresses(internet_address_group_get_members(reinterpret_cast<InternetAddressGroup*>(address)));
                continue;
            }
            const std::string text = inLowerCase(
                textOf(internet_address_mailbox_get_addr(reinterpret_cast<InternetAddressMailbox*>(address))));
            if (!text.empty()) message_.addresses.push_back(text);
        }
    }

    void takeAttachments(GMimeMessage* message) {
        g_mime_message_foreach(
            message,
            [](GMimeObject*, GMimeObject* part, gpointer builder) {
                static_cast<MessageBuilder*>(builder)->takePart(part);
            },
            this);
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
