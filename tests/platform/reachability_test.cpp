#include "support.h"

#include <kestrel/platform/linux/network_interfaces.h>
#include <kestrel/platform/linux/network_reachability.h>

#include <gtest/gtest.h>

#include <iostream>

namespace kestrel {
namespace {

using test::TemporaryFolder;

constexpr std::string_view head = "Iface\tDestination\tGateway\tFlags\tRefCnt\tUse\tMetric\tMask\tMTU\tWindow\tIRTT\n";

TEST(TheDefaultRoute, isTheOneWithTheSmallestMetric) {
    const TemporaryFolder scratch;
    const auto interface = [&](const std::string& ipv4, const std::string& ipv6) {
        scratch.write("route", std::string(head) + ipv4);
        scratch.write("ipv6_route", ipv6);
        return platform::defaultRouteInterface(scratch.path()).value_or("none");
    };
    EXPECT_EQ(platform::defaultRouteInterface(scratch.path() / "nowhere"), std::nullopt);
    EXPECT_EQ(interface("", ""), "none");
    const std::string local = "eth0\t0000A8C0\t00000000\t0001\t0\t0\t100\t00FFFFFF\t0\t0\t0\n";
    const std::string half = "tun0\t00000000\t00000000\t0001\t0\t0\t0\t00000080\t0\t0\t0\n";
    const std::string cable = "eth0\t00000000\t0101A8C0\t0003\t0\t0\t100\t00000000\t0\t0\t0\n";
    const std::string modem = "wwan0\t00000000\t0101A8C0\t0003\t0\t0\t50\t00000000\t0\t0\t0\n";
    const std::string rejected = "lo\t00000000\t00000000\t0201\t0\t0\t1\t00000000\t0\t0\t0\n";
    const std::string down = "eth9\t00000000\t0101A8C0\t0002\t0\t0\t1\t00000000\t0\t0\t0\n";
    EXPECT_EQ(interface(local + half, ""), "none") << "ways to some networks only";
    EXPECT_EQ(interface(local + cable, ""), "eth0");
    EXPECT_EQ(interface(cable + modem + rejected + down + "broken line\n", ""), "wwan0");
    const std::string zero(32, '0');
    const auto route6 = [&](const std::string& metric, const std::string& flags, const std::string& name) {
        return zero + " 00 " + zero + " 00 " + zero + ' ' + metric + " 00000001 00000000 " + flags + "     " + name +
               '\n';
    };
    EXPECT_EQ(interface("", route6("ffffffff", "00200200", "lo") + route6("00000400", "00000003", "wlan0") +
                                route6("00000100", "00000003", "wlan1")),
              "wlan1");
    EXPECT_EQ(interface(cable, route6("00000001", "00000003", "wlan0")), "eth0");
}

TEST(AnInterface, isCellularByItsDriverOrItsName) {
    const TemporaryFolder scratch;
    scratch.write("usb0/uevent", "DEVTYPE=wwan\nINTERFACE=usb0\n");
    scratch.write("wwx0/uevent", "INTERFACE=wwx0\nDEVTYPE=wlan\n");
    scratch.write("eth0/uevent", "INTERFACE=eth0\n");
    for (const std::string name : {"usb0", "wwan0", "wwp0s20u4", "rmnet_data0"})
        EXPECT_TRUE(platform::isCellular(name, scratch.path())) << name;
    for (const std::string name : {"eth0", "wwx0", "wlan0", "tun0"})
        EXPECT_FALSE(platform::isCellular(name, scratch.path())) << name;
}

// Changes the network of the namespace that it is started in, and says what it hears.
const test::AddPart changing("change-network", [](const std::vector<std::string>&) {
    const auto reachability = platform::makeReachability();
    const auto silent = platform::makeReachability();
    std::vector<std::int64_t> heard;
    const auto listening = NotificationCenter::standard()
                               .notifications(kReachabilityChangedNotification)
                               .sink([&](const Notification& notification) {
                                   if (notification.object != reachability.get()) std::cout << "not from here\n";
                                   heard.push_back(reachability->currentReachabilityStatus());
                               });
    const auto after = [&](const std::string& commands, std::int64_t expected) {
        const auto changed = test::run(commands);
        if (changed.status != 0) std::cout << commands << ": " << changed.output << '\n';
        const bool isReached =
            test::runUntil([&] { return reachability->currentReachabilityStatus() == expected; }, 10);
        // For signals that repeat themselves.
        test::runFor(0.2);
        if (!isReached) std::cout << "not " << expected << " after: " << commands << '\n';
    };
    const auto tell = [&](const std::string& what) {
        std::cout << what << ':';
        for (const auto status : std::exchange(heard, {}))
            std::cout << ' ' << status;
        std::cout << '\n';
    };
    after("true", 0);
    if (!reachability->startNotifier() || !reachability->startNotifier()) std::cout << "does not start\n";
    tell("start");
    after(
        "ip link add eth7 type veth peer name end7 && ip link set end7 up && ip link set eth7 up && ip address add "
        "192.0.2.1/24 dev eth7",
        0);
    tell("no route");
    after("ip route add default via 192.0.2.254 dev eth7", 1);
    tell("cable");
    after("ip route add 198.51.100.0/24 via 192.0.2.253 dev eth7 && ip address add 192.0.2.2/24 dev eth7", 1);
    tell("more routes");
    after(
        "ip link add wwan7 type veth peer name end8 && ip link set end8 up && ip link set wwan7 up && ip address add "
        "203.0.113.1/24 dev wwan7 && "
        "ip route add default via 203.0.113.254 dev wwan7 metric 5 && ip route del default dev eth7 && "
        "ip route add default via 192.0.2.254 dev eth7 metric 50",
        2);
    tell("modem");
    after("ip link set wwan7 down", 1);
    tell("cable");
    reachability->stopNotifier();
    reachability->stopNotifier();
    after("ip link set eth7 down", 0);
    tell("stopped");
    (void)reachability->startNotifier();
    after("ip link set eth7 up && ip route add default via 192.0.2.254 dev eth7", 1);
    tell("again");
    return 0;
});

TEST(Reachability, tellsOfEachChangeOnce) {
    // Root in a network of its own, where the system lets anybody be that.
    const std::string enter = geteuid() == 0 ? "unshare --net --mount" : "unshare --user --map-root-user --net --mount";
    const auto allowed =
        test::run(enter + " sh -c 'mount -t sysfs none /sys && ip link add eth7 type veth peer name end7'");
    if (allowed.status != 0)
        GTEST_SKIP() << "no network namespaces, no virtual interfaces or no iproute2: " << allowed.output;
    std::string command = enter + " sh -c 'mount -t sysfs none /sys && exec \"$@\"' sh";
    for (const auto& word : test::asPart("change-network", {}))
        command += " '" + word + "'";
    const auto [status, output] = test::run("DBUS_SYSTEM_BUS_ADDRESS=unix:path=/nowhere " + command);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(output, "start:\nno route:\ncable: 1\nmore routes:\nmodem: 2\ncable: 1\nstopped:\nagain: 1\n");
}

TEST(Reachability, isKnownWithoutWatching) {
    const auto status = platform::makeReachability()->currentReachabilityStatus();
    EXPECT_EQ(status == 0, !platform::defaultRouteInterface()) << "reachable where there is a way out";
}

}  // namespace
}  // namespace kestrel
