// What a kernel can't be made to answer to the question for the routes: the test plays it.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>

#include "console-manager/network.h"
#include "sandbox.h"

namespace {

std::string sent;
std::string reply;
ssize_t sendResult = 28;
timeval timeout{};

}  // namespace

extern "C" ssize_t send(int, const void* bytes, size_t size, int flags) {
    sent.assign(static_cast<const char*>(bytes), size);
    EXPECT_EQ(flags, 0);
    return sendResult;
}

extern "C" ssize_t recv(int socket, void* buffer, size_t size, int flags) {
    socklen_t length = sizeof timeout;
    getsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &timeout, &length);
    EXPECT_EQ(size, 4096u);
    EXPECT_EQ(flags, 0);
    if (reply == "time-out") {
        errno = EAGAIN;
        return -1;
    }
    const size_t taken = std::min(size, reply.size());
    std::memcpy(buffer, reply.data(), taken);
    return static_cast<ssize_t>(taken);
}

namespace {

template <typename Record>
std::string bytes(const Record& record) {
    return {reinterpret_cast<const char*>(&record), sizeof record};
}

std::string padded(std::string piece) {
    piece.resize((piece.size() + 3) / 4 * 4);
    return piece;
}

std::string attribute(int type, const std::string& value, int lengthOff = 0) {
    return padded(
        bytes(rtattr{static_cast<unsigned short>(4 + static_cast<int>(value.size()) + lengthOff),
                     static_cast<unsigned short>(type)}) +
        value);
}

std::string message(const std::string& attributes, unsigned char table = RT_TABLE_MAIN,
                    unsigned char family = AF_INET, int lengthOff = 0,
                    uint16_t type = RTM_NEWROUTE) {
    rtmsg route{};
    route.rtm_family = family;
    route.rtm_table = table;
    const auto length = static_cast<uint32_t>(28 + static_cast<int>(attributes.size()) + lengthOff);
    return bytes(nlmsghdr{length, type, 0, 0, 0}) + bytes(route) + attributes;
}

const std::string kGateway("\xc0\x00\x02\x01", 4);

std::string via() {
    return attribute(RTA_GATEWAY, kGateway);
}
std::string out() {
    return attribute(RTA_OIF, bytes(if_nametoindex("lo")));
}

using Gateway = Sandbox;

TEST_F(Gateway, TheRequestAsksForAllRoutes) {
    CML_getNetworkPortIPv4Gateway("lo");
    EXPECT_EQ(sent, bytes(nlmsghdr{28, 26, 0x0301, 0, static_cast<uint32_t>(getpid())}) +
                        std::string(12, '\0'));
    EXPECT_EQ(timeout.tv_sec, 1);
    EXPECT_EQ(timeout.tv_usec, 0);
    reply = message(out() + via());
    sendResult = -1;
    EXPECT_STREQ(CML_getNetworkPortIPv4Gateway("lo"), "");
}

TEST_F(Gateway, RepliesAreReadWithinTheirLengths) {
    const std::string good = message(out() + via());
    const std::string found = "192.0.2.1";
    const std::string done = bytes(nlmsghdr{20, NLMSG_DONE, 0, 0, 0}) + std::string(4, '\0');
    const struct {
        const char* situation;
        std::string datagram;
        std::string expected;
    } cases[] = {
        {"a route", good, found},
        {"attributes in the other order", message(via() + out()), found},
        {"attributes of no use", message(attribute(99, "x") + out() + via()), found},
        {"no answer", "time-out", ""},
        {"nothing", "", ""},
        {"a cut header", good.substr(0, 15), ""},
        {"a cut message", good.substr(0, good.size() - 1), ""},
        {"an error", message(out() + via(), RT_TABLE_MAIN, AF_INET, 0, NLMSG_ERROR), ""},
        {"done at once", done, ""},
        {"a type of no meaning", message(out() + via(), RT_TABLE_MAIN, AF_INET, 0, 77), found},
        {"a length below the header's", message(out() + via(), RT_TABLE_MAIN, AF_INET, -33), ""},
        {"a length that would wrap", message(out() + via(), RT_TABLE_MAIN, AF_INET, -45), ""},
        {"an error behind the first", done + message("", 0, 0, 0, NLMSG_ERROR) + good, found},
        {"a message without a route", bytes(nlmsghdr{16, 24, 0, 0, 0}) + good, found},
        {"half a route header",
         bytes(nlmsghdr{24, 24, 0, 0, 0}) + std::string("\x02\0\0\0\xfe\0\0\0", 8) +
             message(out() + via(), RT_TABLE_LOCAL),
         ""},
        {"another table", message(out() + via(), RT_TABLE_LOCAL) + good, found},
        {"IPv6 in the main table", message(out() + via(), RT_TABLE_MAIN, AF_INET6), ""},
        {"IPv6 gateway of an IPv4 route",
         message(out() + attribute(RTA_GATEWAY, std::string(16, 'x'))) + good, found},
        {"a gateway of 3 bytes", message(out() + attribute(RTA_GATEWAY, "xyz")), ""},
        {"an index of 2 bytes", message(out() + via() + attribute(RTA_OIF, "xy")), found},
        {"an index that is no port's", message(attribute(RTA_OIF, "\x7f\x7f\x7f\x7f") + via()), ""},
        {"no gateway, then one", message(out()) + good, found},
        {"no length behind the first", done + std::string(16, '\0') + good, ""},
        {"a length beyond the end behind the first",
         done + message(out() + via(), RT_TABLE_MAIN, AF_INET, 4), ""},
        {"an attribute of no length", message(attribute(99, "", -4) + out() + via()), ""},
        {"an attribute beyond the message", message(out() + via(), RT_TABLE_MAIN, AF_INET, -4), ""},
        {"the first of two", good + message(out() + attribute(RTA_GATEWAY, "abcd")), found},
        {"a last message padded past the end",
         message(out() + attribute(99, "x") + via(), RT_TABLE_LOCAL, AF_INET, -1).substr(0, 51),
         ""},
        {"more than the buffer takes", message(std::string(4056, '\0'), RT_TABLE_LOCAL) + good, ""},
    };
    for (const auto& c : cases) {
        reply = c.datagram;
        const int before = openDescriptors();
        EXPECT_EQ(CML_getNetworkPortIPv4Gateway("lo"), c.expected) << c.situation;
        EXPECT_EQ(openDescriptors(), before) << c.situation;
    }
}

}  // namespace
