// The ports of a network namespace of the test's own, with a real kernel.
#include <arpa/inet.h>
#include <dirent.h>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "console-manager/network.h"
#include "sandbox.h"

namespace {

int readableEntries = -1;  // of a directory, until reading it fails; -1 for no failure
int copies = -1;           // of names, until memory runs out

void* nextEntry(const char* function, DIR* directory) {
    if (readableEntries == 0) {
        errno = EIO;
        return nullptr;
    }
    readableEntries -= readableEntries > 0 ? 1 : 0;
    return reinterpret_cast<void* (*)(DIR*)>(dlsym(RTLD_NEXT, function))(directory);
}

}  // namespace

// The standard library uses the one or the other, depending on the machine. The names are given to
// the linker, because the C library's header turns one into the other.
extern "C" void* playReaddir(DIR* directory) __asm__("readdir");
extern "C" void* playReaddir64(DIR* directory) __asm__("readdir64");

void* playReaddir(DIR* directory) {
    return nextEntry("readdir", directory);
}

void* playReaddir64(DIR* directory) {
    return nextEntry("readdir64", directory);
}

extern "C" char* strdup(const char* text) noexcept {
    copies -= copies > 0 ? 1 : 0;
    return copies == 0 ? nullptr : strndup(text, std::strlen(text));
}

namespace {

// wire2 has its link: wire1 is up at the other end. lone has none, its other end being down.
class Network : public Sandbox {
  protected:
    void SetUp() override {
        Sandbox::SetUp();
        if (IsSkipped()) {
            return;
        }
        run("ip link add wire1 type veth peer name wire2 && ip link set wire1 up && "
            "ip link set wire2 address 02:00:5e:10:00:01 up && "
            "ip link add lone type veth peer name end10 && ip link set lone up && "
            "sysctl -qw net.ipv6.conf.wire2.accept_dad=0 && "
            "ip addr add 192.0.2.5/25 dev wire2 && ip addr add 192.0.2.200/32 dev wire2 && "
            "ip addr add 2001:db8::5/64 dev wire2 nodad");
    }

    // A link shows in the flags only when the kernel has come round to it.
    static void waitFor(const std::string& port, const std::string& state) {
        while (readFile("/sys/class/net/" + port + "/operstate") != state + "\n") {
            std::this_thread::yield();
        }
    }

    static std::vector<std::string> ports(int32_t onlyActive) {
        std::vector<std::string> names;
        char** const list = CML_getNetworkPortsList(onlyActive);
        for (char** name = list; name != nullptr && *name != nullptr; ++name) {
            names.emplace_back(*name);
            free(*name);
        }
        free(list);
        return names;
    }

    static std::string status(const char* port) {
        CML_NetworkPortStatus state{7, 7};
        const int32_t result = CML_getNetworkPortStatus(port, &state);
        return std::to_string(result) + ": " + std::to_string(state.up) + " " +
               std::to_string(state.running) + " " +
               std::to_string(CML_checkNetworkPortActive(port));
    }
};

using Names = std::vector<std::string>;

TEST_F(Network, PortsAreListedInOrderWithTheirState) {
    waitFor("wire1", "up");
    waitFor("wire2", "up");
    waitFor("lone", "lowerlayerdown");
    EXPECT_EQ(ports(0), (Names{"end10", "lo", "lone", "wire1", "wire2"}));
    EXPECT_EQ(ports(-1), (Names{"lo", "wire1", "wire2"}));
    EXPECT_EQ(status("wire2"), "1: 1 1 1");
    EXPECT_EQ(status("lone"), "1: 1 0 0");
    EXPECT_EQ(status("end10"), "1: 0 0 0");
    EXPECT_EQ(status("nothing"), "0: 0 0 0");
    run("ip link add abcdefghijklmno type veth peer name x && "
        "ip link set x up && ip link set abcdefghijklmno up");
    waitFor("abcdefghijklmno", "up");
    EXPECT_EQ(status("abcdefghijklmnopq"), "1: 1 1 1") << "its first 15 bytes are a port";
    run("ip link del x; for p in lo wire1 wire2; do ip link set $p down; done");
    EXPECT_EQ(CML_getNetworkPortsList(1), nullptr);
}

TEST_F(Network, AnythingInTheFolderIsListed) {
    ASSERT_EQ(mount("tmpfs", "/sys/class/net", "tmpfs", 0, nullptr), 0);
    EXPECT_EQ(CML_getNetworkPortsList(0), nullptr);
    for (const char* name : {"eth2", "B", "eth10", "lo"}) {
        writeFile(std::string("/sys/class/net/") + name, "");
    }
    EXPECT_EQ(ports(0), (Names{"B", "eth10", "eth2", "lo"}));
    EXPECT_EQ(ports(1), Names{"lo"});
    const int before = openDescriptors();
    copies = 3;
    EXPECT_EQ(CML_getNetworkPortsList(0), nullptr) << "and nothing leaks";
    copies = -1;
    readableEntries = 4;
    EXPECT_THROW(CML_getNetworkPortsList(0), std::filesystem::filesystem_error);
    readableEntries = -1;
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(Network, AddressesAreThoseOfTheKernel) {
    struct Case {
        const char* port;
        const char* address;
        const char* mask;
        const char* address6;
    };
    for (const Case& c : {Case{"wire2", "192.0.2.5", "255.255.255.128", "2001:db8::5"},
                          {"lo", "127.0.0.1", "255.0.0.0", "::1"},
                          {"end10", "", "", ""},
                          {"wire", "", "", ""}}) {
        EXPECT_STREQ(CML_getNetworkPortIPv4Address(c.port), c.address);
        EXPECT_STREQ(CML_getNetworkPortIPv4NetMask(c.port), c.mask);
        EXPECT_STREQ(CML_getNetworkPortIPv6Address(c.port), c.address6);
    }
    const std::string shown = run("ip -j addr show dev wire2");
    EXPECT_LT(shown.find("\"192.0.2.5\",\"prefixlen\":25"), shown.find("192.0.2.200"));
    EXPECT_NE(shown.find("\"2001:db8::5\",\"prefixlen\":64"), shown.npos);

    const char* const text = CML_getNetworkPortIPv4Address("wire2");
    EXPECT_EQ(CML_getNetworkPortIPv4Address("nothing"), text);
    EXPECT_STREQ(text, "");
    EXPECT_STREQ(CML_getNetworkPortMACAddress("wire2"), "02:00:5e:10:00:01");
    EXPECT_STREQ(CML_getNetworkPortMACAddress("nothing"), "");
}

TEST_F(Network, TheGatewayIsThatOfTheFirstFittingRoute) {
    const auto gateway = [] { return std::string(CML_getNetworkPortIPv4Gateway("wire2")); };
    run("ip addr add 198.51.100.1/24 dev wire1");
    EXPECT_EQ(gateway(), "") << "the connected network's route has none";
    run("ip route add default via 192.0.2.1 table 100 dev wire2 && "
        "ip -6 route add default via 2001:db8::1 dev wire2");
    EXPECT_EQ(gateway(), "") << "another table, another family";
    run("ip route add 203.0.113.0/24 via 192.0.2.2 dev wire2 && "
        "ip route add default via 198.51.100.9 dev wire1 metric 5");
    EXPECT_EQ(gateway(), "192.0.2.2") << "a route to one network";
    EXPECT_STREQ(CML_getNetworkPortIPv4Gateway("wire1"), "198.51.100.9");
    run("ip route add default via 192.0.2.1 dev wire2");
    const std::string shown = run("ip -j route show dev wire2");
    const std::string first = shown.substr(shown.find("\"gateway\":\"") + 11);
    EXPECT_EQ(gateway(), first.substr(0, first.find('"')));

    run("ip addr flush dev wire2 && ip route flush dev wire2 && ip addr add 192.0.2.5/25 dev "
        "wire2; "
        "for i in $(seq 200); do echo route add 10.0.$i.0/24 dev lo; done | ip -batch - && "
        "ip route add 203.0.113.0/24 via 192.0.2.2 dev wire2");
    EXPECT_EQ(gateway(), "") << "behind the first datagram";
    const int before = openDescriptors();
    gateway();
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(Network, CountersThatFitAreRead) {
    int32_t received = -1;
    int32_t sent = -1;
    run("ping -c1 -w5 127.0.0.1 >/dev/null");
    CML_getNetworkPortInfo("lo", &received, &sent);
    EXPECT_GT(received, 0);
    EXPECT_EQ(received, std::stoi(run("cat /sys/class/net/lo/statistics/rx_bytes")));
    EXPECT_EQ(received, sent);

    const std::string folder = "/sys/class/net/lo/statistics/";
    struct Case {
        const char* file;
        int32_t expected;
    };
    for (const Case& c : {Case{"2147483647\n", 2147483647},
                          {"2147483648\n", 0},
                          {"18446744073709551615\n", 0},
                          {"", 0},
                          {"many", 0},
                          {" 12 34\n", 12}}) {
        bindFile(folder + "rx_bytes", c.file);
        bindFile(folder + "tx_bytes", "5\n");
        CML_getNetworkPortInfo("lo", &received, &sent);
        EXPECT_EQ(received, c.expected) << c.file;
        EXPECT_EQ(sent, 5);
    }
    bindFile(folder + "tx_bytes", "2147483648\n");
    CML_getNetworkPortInfo("lo", &received, &sent);
    EXPECT_EQ(received, 12);
    EXPECT_EQ(sent, 0);
    CML_getNetworkPortInfo("nothing", &received, &sent);
    EXPECT_EQ(received, 0);
}

TEST_F(Network, PingDecides) {
    EXPECT_EQ(CML_getHostAvailable("127.0.0.1", 5, nullptr), 0);
    EXPECT_NE(CML_getHostAvailable("127.0.0.1", 1, "nothing"), 0);
    putProgram("ping",
               "echo \"$0 $*\" | sed 's:.*/::' >/mnt/test/line; echo out; echo err >&2; "
               "exit 3");
    const auto line = [](int32_t timeout, const char* port) {
        EXPECT_EQ(CML_getHostAvailable("192.0.2.1", timeout, port), W_EXITCODE(3, 0));
        return readFile("/mnt/test/line");
    };
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_EQ(line(3, "eth0"), "ping -c1 -w3 -I eth0 192.0.2.1\n");
    EXPECT_EQ(line(0, ""), "ping -c1 -w0 192.0.2.1\n");
    EXPECT_EQ(line(-2147483647 - 1, nullptr), "ping -c1 -w-2147483648 192.0.2.1\n");
    EXPECT_EQ(testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr(), "");
}

}  // namespace
