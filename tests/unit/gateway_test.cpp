// Replies to the route request that no real kernel can be made to send.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/rtnetlink.h>
#include <unistd.h>

#include "console-manager/network.h"
#include "support/netlink_message.h"
#include "support/route_kernel.h"

namespace {

struct Header {
    int lengthOff = 0;  // as of attribute()
    unsigned char table = RT_TABLE_MAIN;
    unsigned char family = AF_INET;
    uint16_t type = RTM_NEWROUTE;
};

std::string message(const std::string& attributes, const Header& header = {}) {
    rtmsg route{};
    route.rtm_family = header.family;
    route.rtm_table = header.table;
    const auto length = static_cast<uint32_t>(28 + std::ssize(attributes) + header.lengthOff);
    return bytes(nlmsghdr{length, header.type, 0, 0, 0}) + bytes(route) + attributes;
}

TEST(Gateway, RoutesAreRequestedAndRepliesReadWithinTheirLengths) {
    const std::string via = attribute(RTA_GATEWAY, "\xc0\x01\x02\x01");
    const std::string out = attribute(RTA_OIF, bytes(1)), both = out + via;
    const std::string good = message(both), found = "192.1.2.1";
    const std::string local = message(both, {.lengthOff = -1, .table = RT_TABLE_LOCAL});
    const struct {
        const char* situation;
        std::string datagram, gateway;
    } cases[] = {
        {"attributes in the other order", message(via + out), found},
        {"a type that isn't read", message(both, {.type = RTM_NEWLINK}), found},
        {"no answer", "time-out", ""},
        {"a truncated message", good.substr(0, good.size() - 1), ""},
        {"an error", message(both, {.type = NLMSG_ERROR}), ""},
        {"a length below the header's", message(both, {.lengthOff = -33}), ""},
        {"another table", message(both, {.table = RT_TABLE_LOCAL}), ""},
        {"IPv6 in the main table", message(both, {.family = AF_INET6}), ""},
        {"a gateway of 5 bytes", message(out + attribute(RTA_GATEWAY, "vwxyz")) + good, found},
        {"a gateway of 3 bytes", message(out + attribute(RTA_GATEWAY, "xyz")), ""},
        {"an index of 2 bytes", message(both + attribute(RTA_OIF, "xy")), found},
        {"no port", message(via), ""},
        {"no gateway, then one", message(out) + good, found},
        {"an attribute of no length", message(attribute(99, "", -4) + both), ""},
        {"an attribute beyond the message", message(both, {.lengthOff = -4}), ""},
        {"the first of two", good + message(out + attribute(RTA_GATEWAY, "abcd")), found},
        {"a last message without its padding", local.substr(0, local.size() - 1), ""},
        {"as much as the buffer takes", message(std::string(4024, '\0')) + good, found},
        {"more than the buffer takes", message(std::string(4024, '\0')) + message(both + "x"), ""},
    };
    close(STDIN_FILENO);  // 0 is a descriptor like any other
    for (const auto& [situation, datagram, gateway] : cases) {
        reply = datagram;
        EXPECT_EQ(CML_getNetworkPortIPv4Gateway("lo"), gateway) << situation;
    }
    EXPECT_EQ(fcntl(STDIN_FILENO, F_GETFD), -1) << "left open";
    EXPECT_EQ(sent, bytes(nlmsghdr{28, 26, 0x0301, 0, static_cast<uint32_t>(getpid())}) +
                        std::string(12, '\0'));
    EXPECT_EQ(timeout.tv_sec, 1);
}

}  // namespace
