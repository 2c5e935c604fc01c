#pragma once

#include <filesystem>
#include <optional>
#include <string>

/// What the kernel says of the network's interfaces, in the files of /proc and /sys.
namespace kestrel::platform {

/// The interface that packets to the world leave by: that of the default route with the smallest metric, of IPv4 before
/// IPv6. The folder is that of `route` and `ipv6_route`.
[[nodiscard]] std::optional<std::string> defaultRouteInterface(const std::filesystem::path& folder = "/proc/net");

/// Whether an interface is a cellular modem: the driver says so ("wwan"), or, where it does not, its name begins as
/// those of modems do ("wwan0", "wwp0s20u4"). The folder has a folder for each interface. A tunnel through a modem is
/// not seen to be one.
[[nodiscard]] bool isCellular(const std::string& interface, const std::filesystem::path& folder = "/sys/class/net");

}  // namespace kestrel::platform
