#include <kestrel/platform/linux/network_interfaces.h>
#include <charconv>
#include <cstdint>
#include <fstream>
#include <limits>
#include <string_view>
#include <system_error>
#include <vector>

namespace kestrel::platform {

namespace {

namespace fs = std::filesystem;

// Of <linux/route.h>.
constexpr std::uint64_t isUp = 0x1;
constexpr std::uint64_t isReject = 0x200;

std::vector<std::string_view> words(std::string_view line) {
    std::vector<std::string_view> list;
    for (;;) {
        const auto start = line.find_first_not_of(" \t");
        if (start == std::string_view::npos) return list;
        line.remove_prefix(start);
        const auto word = line.substr(0, line.find_first_of(" \t"));
        list.push_back(word);
        line.remove_prefix(word.size());
    }
}

std::optional<std::uint64_t> number(std::string_view text, int base) {
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return value;
}

/// The columns of a table of routes.
struct Columns {
    std::size_t count;
    std::size_t destination;
    std::size_t prefix;
    std::size_t metric;
    int metricBase;
    std::size_t flags;
    std::size_t interface;
};

std::optional<std::string> defaultRoute(const fs::path& table, const Columns& columns) {
    std::optional<std::string> best;
    auto smallest = std::numeric_limits<std::uint64_t>::max();
    std::ifstream stream(table);
    for (std::string line; std::getline(stream, line);) {
        const auto fields = words(line);
        if (fields.size() < columns.count) continue;
        const auto isZero = [](std::string_view text) { return text.find_first_not_of('0') == std::string_view::npos; };
        if (!isZero(fields[columns.destination]) || !isZero(fields[columns.prefix])) continue;
        const auto flags = number(fields[columns.flags], 16);
        const auto metric = number(fields[columns.metric], columns.metricBase);
        if (!flags || !metric || (*flags & isUp) == 0 || (*flags & isReject) != 0) continue;
        if (best && *metric >= smallest) continue;
        smallest = *metric;
        best = std::string(fields[columns.interface]);
    }
    return best;
}

}  // namespace

std::optional<std::string> defaultRouteInterface(const fs::path& folder) {
    // Iface Destination Gateway Flags RefCnt Use Metric Mask MTU Window IRTT
    auto found = defaultRoute(
        folder / "route",
        {.count = 8, .destination = 1, .prefix = 7, .metric = 6, .metricBase = 10, .flags = 3, .interface = 0});
    if (found) return found;
    // Destination, its prefix, source, its prefix, next hop, metric, references, use, flags, interface; in hexadecimal.
    return defaultRoute(
        folder / "ipv6_route",
        {.count = 10, .destination = 0, .prefix = 1, .metric = 5, .metricBase = 16, .flags = 8, .interface = 9});
}

bool isCellular(const std::string& interface, const fs::path& folder) {
    std::ifstream stream(folder / interface / "uevent");
    for (std::string line; std::getline(stream, line);) {
        if (line.starts_with("DEVTYPE=")) return line == "DEVTYPE=wwan";
    }
    return interface.starts_with("ww") || interface.starts_with("rmnet");
}

}  // namespace kestrel::platform
