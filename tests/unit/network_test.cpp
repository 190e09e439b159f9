// The ports of a network namespace of the test's own, with a real kernel.
#include "console-manager/network.h"

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "support/sandbox.h"

namespace {

class Network : public Sandbox {
  protected:
    void prepare() override { addPorts(); }

    static std::string status(const char* port) {
        CML_NetworkPortStatus ofPort{7, 7};
        const int32_t result = CML_getNetworkPortStatus(port, &ofPort);
        return joined(result, ofPort.up, ofPort.running, CML_checkNetworkPortActive(port));
    }
};

TEST_F(Network, PortsAreListedInOrderWithTheirState) {
    run("ip link set wire down && ip link set wire name abcdefghijklmno && "
        "ip link set abcdefghijklmno up && cd /sys/class/net && "
        "until grep -q up abcdefghijklmno/operstate && grep -q up peer/operstate; do :; done");
    EXPECT_EQ(status("abcdefghijklmnopq"), "1 1 1 1") << "its first 15 bytes are a port";
    EXPECT_EQ(status("lone"), "1 1 0 0");
    EXPECT_EQ(status("end"), "1 0 0 0");
    EXPECT_EQ(status("nothing"), "0 0 0 0");
    EXPECT_EQ(take(CML_getNetworkPortsList(0)),
              (Texts{"abcdefghijklmno", "end", "lo", "lone", "peer"}));
    EXPECT_EQ(take(CML_getNetworkPortsList(-1)), (Texts{"abcdefghijklmno", "lo", "peer"}));
    run("for p in lo peer abcdefghijklmno; do ip link set $p down; done");
    EXPECT_EQ(CML_getNetworkPortsList(1), nullptr);
    ASSERT_EQ(mount("tmpfs", "/sys/class", "tmpfs", 0, nullptr), 0);
    EXPECT_THROW(CML_getNetworkPortsList(0), std::filesystem::filesystem_error);
}

TEST_F(Network, TheLoopbackPortHasTheKernelsAddresses) {
    close(STDIN_FILENO);  // 0 is a descriptor like any other
    EXPECT_STREQ(CML_getNetworkPortIPv4Address("lo"), "127.0.0.1");
    EXPECT_STREQ(CML_getNetworkPortIPv4NetMask("lo"), "255.0.0.0");
    EXPECT_STREQ(CML_getNetworkPortIPv6Address("lo"), "::1");
    EXPECT_STREQ(CML_getNetworkPortMACAddress("lo"), "00:00:00:00:00:00");
    EXPECT_EQ(fcntl(STDIN_FILENO, F_GETFD), -1) << "left open";
}

TEST_F(Network, TheGatewayIsThatOfTheFirstFittingRoute) {
    const std::pair<const char*, const char*> cases[] = {
        {"ip addr add 198.51.100.1/24 dev peer", ""},
        {"ip route add default via 192.0.2.1 table 100 dev wire", ""},
        {"ip -6 route add default via 2001:db8::1 dev wire", ""},
        {"ip route add default via 198.51.100.9 dev peer metric 5", ""},
        {"ip route add 203.0.113.0/24 via 192.0.2.2 dev wire", "192.0.2.2"},
        {"ip route add default via 192.0.2.1 dev wire", "192.0.2.1"},
    };
    for (const auto& [change, expected] : cases) {
        run(change);
        EXPECT_STREQ(CML_getNetworkPortIPv4Gateway("wire"), expected) << change;
    }
    EXPECT_STREQ(CML_getNetworkPortIPv4Gateway("peer"), "198.51.100.9");
    run("ip route del default dev wire; for i in $(seq 200); do echo route add 10.0.$i.0/24 dev "
        "lo; done | ip -batch -");
    EXPECT_STREQ(CML_getNetworkPortIPv4Gateway("wire"), "") << "behind the first datagram";
}

TEST_F(Network, PingDecides) {
    EXPECT_EQ(CML_getHostAvailable("127.0.0.1", 5, nullptr), 0);
    EXPECT_NE(CML_getHostAvailable("127.0.0.1", 1, "nothing"), 0);
    putProgram("ping", "echo \"$*\" >/mnt/test/line; echo out; echo err >&2; exit 3");
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_EQ(CML_getHostAvailable("192.0.2.1", -1, ""), W_EXITCODE(3, 0));
    EXPECT_EQ(readFile("/mnt/test/line"), "-c1 -w-1 192.0.2.1\n");
    EXPECT_EQ(testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr(), "");
}

}  // namespace
