#include <kestrel/foundation/fatal.h>
#include <kestrel/localization/catalogue.h>

#include <boost/locale/gnu_gettext.hpp>

#include <exception>
#include <fstream>
#include <iterator>
#include <locale>
#include <new>
#include <utility>
#include <vector>

namespace kestrel::localization {

namespace {

namespace gettext = boost::locale::gnu_gettext;
using Facet = boost::locale::message_format<char>;

[[noreturn]] void damaged(const std::filesystem::path& file, std::string_view why) {
    fatal(std::string{"catalogue "}.append(file.native()).append(" cannot be used: ").append(why));
}

std::vector<char> contents(const std::filesystem::path& file) {
    std::ifstream stream{file, std::ios::binary};
    std::vector<char> bytes{std::istreambuf_iterator<char>{stream}, std::istreambuf_iterator<char>{}};
    if (bytes.empty()) damaged(file, "it is empty or not readable");
    return bytes;
}

// The facet alone reads catalogues without a backend and without a locale of the system, which Boost.Locale's
// generator would ask for. The bytes come from here, because the facet takes a missing file for an empty catalogue.
const Facet* load(const std::filesystem::path& file) {
    gettext::messages_info info;
    info.language = "any";
    info.encoding = "UTF-8";
    info.domains.emplace_back("texts");
    info.paths.emplace_back(".");
    info.callback = [&file](const std::string&, const std::string&) { return contents(file); };
    return gettext::create_messages_facet<char>(info);
}

}  // namespace

struct Catalogue::Messages {
    explicit Messages(const std::filesystem::path& file) : facet{load(file)}, owner{std::locale::classic(), facet} {}

    const Facet* facet;
    // Counts the references to the facet and deletes it.
    std::locale owner;
};

Catalogue::Catalogue(std::filesystem::path file) : file_{std::move(file)} {
    try {
        messages_ = std::make_unique<const Messages>(file_);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        damaged(file_, error.what());
    }
}

Catalogue::~Catalogue() = default;

std::optional<std::string> Catalogue::find(std::string_view text) const {
    // Under the empty key stands the header of the catalogue, and a text with a NUL would match the key in front of
    // it.
    if (text.empty() || text.contains('\0')) return std::nullopt;
    try {
        const std::string key{text};
        const char* found = messages_->facet->get(0, nullptr, key.c_str());
        if (found == nullptr) return std::nullopt;
        return std::string{found};
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        damaged(file_, error.what());
    }
}

}  // namespace kestrel::localization
