// The ports of a network namespace of the test's own, with a real kernel.
#include <sys/mount.h>
#include <sys/wait.h>

#include <filesystem>
#include <thread>

#include "console-manager/network.h"
#include "support/sandbox.h"

namespace {

// wire2 has its link: wire1 is up at the other end. lone has none, its other end being down.
class Network : public Sandbox {
  protected:
    void prepare() override {
        run("ip link add wire1 type veth peer name wire2 && ip link set wire1 up && "
            "ip link set wire2 address 02:00:5e:10:00:01 up && "
            "ip link add lone type veth peer name end10 && ip link set lone up && "
            "sysctl -qw net.ipv6.conf.wire2.accept_dad=0 && "
            "ip addr add 192.0.2.5/25 dev wire2 && ip addr add 192.0.2.200/32 dev wire2 && "
            "ip addr add 2001:db8::5/64 dev wire2 nodad");
    }

    // A link shows in the flags only when the kernel has come round to it.
    static std::string status(const std::string& port, const std::string& state) {
        while (readFile("/sys/class/net/" + port.substr(0, 15) + "/operstate") != state) {
            std::this_thread::yield();
        }
        CML_NetworkPortStatus ofPort{7, 7};
        const int32_t result = CML_getNetworkPortStatus(port.c_str(), &ofPort);
        return joined(result, ofPort.up, ofPort.running, CML_checkNetworkPortActive(port.c_str()));
    }
};

TEST_F(Network, PortsAreListedInOrderWithTheirState) {
    run("ip link add abcdefghijklmno type veth peer name x && "
        "ip link set x up && ip link set abcdefghijklmno up");
    EXPECT_EQ(status("wire1", "up\n"), "1 1 1 1");
    EXPECT_EQ(status("wire2", "up\n"), "1 1 1 1");
    EXPECT_EQ(status("lone", "lowerlayerdown\n"), "1 1 0 0");
    EXPECT_EQ(status("end10", "down\n"), "1 0 0 0");
    EXPECT_EQ(status("nothing", ""), "0 0 0 0");
    EXPECT_EQ(status("abcdefghijklmnopq", "up\n"), "1 1 1 1") << "its first 15 bytes are a port";
    run("ip link del x");
    EXPECT_EQ(take(CML_getNetworkPortsList(0)), (Texts{"end10", "lo", "lone", "wire1", "wire2"}));
    EXPECT_EQ(take(CML_getNetworkPortsList(-1)), (Texts{"lo", "wire1", "wire2"}));
    run("for p in lo wire1 wire2; do ip link set $p down; done");
    EXPECT_EQ(CML_getNetworkPortsList(1), nullptr);
}

TEST_F(Network, AnythingInTheFolderIsListed) {
    ASSERT_EQ(mount("tmpfs", "/sys/class/net", "tmpfs", 0, nullptr), 0);
    EXPECT_EQ(CML_getNetworkPortsList(0), nullptr);
    for (const char* name : {"eth2", "B", "eth10", "lo"}) {
        writeFile(std::string("/sys/class/net/") + name, "");
    }
    EXPECT_EQ(take(CML_getNetworkPortsList(0)), (Texts{"B", "eth10", "eth2", "lo"}));
    ASSERT_EQ(mount("tmpfs", "/sys/class", "tmpfs", 0, nullptr), 0);
    EXPECT_THROW(CML_getNetworkPortsList(0), std::filesystem::filesystem_error);
}

TEST_F(Network, AddressesAreThoseOfTheKernel) {
    const char* const cases[][5] = {
        {"wire2", "192.0.2.5", "255.255.255.128", "2001:db8::5", "02:00:5e:10:00:01"},
        {"lo", "127.0.0.1", "255.0.0.0", "::1", "00:00:00:00:00:00"},
        {"wire", "", "", "", ""}};
    for (const auto& [port, address, mask, address6, mac] : cases) {
        EXPECT_STREQ(CML_getNetworkPortIPv4Address(port), address);
        EXPECT_STREQ(CML_getNetworkPortIPv4NetMask(port), mask);
        EXPECT_STREQ(CML_getNetworkPortIPv6Address(port), address6);
        EXPECT_STREQ(CML_getNetworkPortMACAddress(port), mac);
    }
}

TEST_F(Network, TheGatewayIsThatOfTheFirstFittingRoute) {
    const std::pair<const char*, const char*> cases[] = {
        {"ip addr add 198.51.100.1/24 dev wire1", ""},
        {"ip route add default via 192.0.2.1 table 100 dev wire2", ""},
        {"ip -6 route add default via 2001:db8::1 dev wire2", ""},
        {"ip route add default via 198.51.100.9 dev wire1 metric 5", ""},
        {"ip route add 203.0.113.0/24 via 192.0.2.2 dev wire2", "192.0.2.2"},
        {"ip route add default via 192.0.2.1 dev wire2", "192.0.2.1"},
    };
    for (const auto& [change, expected] : cases) {
        run(change);
        EXPECT_STREQ(CML_getNetworkPortIPv4Gateway("wire2"), expected) << change;
    }
    EXPECT_STREQ(CML_getNetworkPortIPv4Gateway("wire1"), "198.51.100.9");
    run("ip route del default dev wire2; for i in $(seq 200); do echo route add 10.0.$i.0/24 dev "
        "lo; done | ip -batch -");
    EXPECT_STREQ(CML_getNetworkPortIPv4Gateway("wire2"), "") << "behind the first datagram";
}

TEST_F(Network, CountersThatFitAreRead) {
    int32_t received = -1;
    int32_t sent = -1;
    run("ping -c1 -w5 127.0.0.1 >/dev/null");
    CML_getNetworkPortInfo("lo", &received, &sent);
    EXPECT_GT(received, 0);
    EXPECT_EQ(std::to_string(received) + "\n", run("cat /sys/class/net/lo/statistics/rx_bytes"));
    EXPECT_EQ(received, sent);
    const std::string folder = "/sys/class/net/lo/statistics/";
    const std::tuple<const char*, const char*, int32_t, int32_t> cases[] = {
        {"2147483647\n", "5\n", 2147483647, 5},
        {"", "18446744073709551615\n", 0, 0},
        {" 12 34\n", "many", 12, 0}};
    for (const auto& [rxBytes, txBytes, expectedRx, expectedTx] : cases) {
        bindFile(folder + "rx_bytes", rxBytes);
        bindFile(folder + "tx_bytes", txBytes);
        CML_getNetworkPortInfo("lo", &received, &sent);
        EXPECT_EQ(std::pair(received, sent), std::pair(expectedRx, expectedTx));
    }
}

TEST_F(Network, PingDecides) {
    EXPECT_EQ(CML_getHostAvailable("127.0.0.1", 5, nullptr), 0);
    EXPECT_NE(CML_getHostAvailable("127.0.0.1", 1, "nothing"), 0);
    putProgram("ping", "echo \"${0##*/} $*\" >/mnt/test/line; echo out; echo err >&2; exit 3");
    const std::tuple<int32_t, const char*, const char*> cases[] = {
        {3, "eth0", "ping -c1 -w3 -I eth0 192.0.2.1\n"},
        {0, "", "ping -c1 -w0 192.0.2.1\n"},
        {-1, nullptr, "ping -c1 -w-1 192.0.2.1\n"}};
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    for (const auto& [timeout, port, line] : cases) {
        EXPECT_EQ(CML_getHostAvailable("192.0.2.1", timeout, port), W_EXITCODE(3, 0));
        EXPECT_EQ(readFile("/mnt/test/line"), line);
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr(), "");
}

}  // namespace
