// What a kernel can't be made to answer to the question for the routes: the test plays it.
#include <arpa/inet.h>
#include <linux/rtnetlink.h>
#include <net/if.h>

#include <tuple>

#include "console-manager/network.h"
#include "support/netlink_message.h"
#include "support/route_kernel.h"
#include "support/sandbox.h"

namespace {

// lengthOff is that of attribute().
std::string message(const std::string& attributes, int lengthOff = 0,
                    unsigned char table = RT_TABLE_MAIN, unsigned char family = AF_INET,
                    uint16_t type = RTM_NEWROUTE) {
    rtmsg route{};
    route.rtm_family = family;
    route.rtm_table = table;
    const auto length = static_cast<uint32_t>(28 + static_cast<int>(attributes.size()) + lengthOff);
    return bytes(nlmsghdr{length, type, 0, 0, 0}) + bytes(route) + attributes;
}

using Gateway = Sandbox;

TEST_F(Gateway, RoutesAreAskedForAndRepliesReadWithinTheirLengths) {
    const std::string via = attribute(RTA_GATEWAY, "\xc0\x01\x02\x01");
    const std::string out = attribute(RTA_OIF, bytes(if_nametoindex("lo")));
    const std::string good = message(out + via);
    const std::string found = "192.1.2.1";
    const std::string done = message("", -8, 0, 0, NLMSG_DONE).substr(0, 20);
    // clang-format off
    const std::tuple<const char*, std::string, std::string> cases[] = {
        {"attributes in the other order", message(via + out), found},
        {"a type that isn't looked at", message(out + via, 0, RT_TABLE_MAIN, AF_INET, RTM_NEWLINK), found},
        {"no answer", "time-out", ""},
        {"a cut message", good.substr(0, good.size() - 1), ""},
        {"an error", message(out + via, 0, RT_TABLE_MAIN, AF_INET, NLMSG_ERROR), ""},
        {"done at once", done, ""},
        {"a length below the header's", message(out + via, -33), ""},
        {"a length that would wrap", message(out + via, -45), ""},
        {"half a route header", message(out + via, -20), ""},
        {"another table", message(out + via, 0, RT_TABLE_LOCAL) + good, found},
        {"IPv6 in the main table", message(out + via, 0, RT_TABLE_MAIN, AF_INET6), ""},
        {"IPv6 gateway of an IPv4 route", message(out + attribute(RTA_GATEWAY, std::string(16, 'x'))) + good, found},
        {"a gateway of 3 bytes", message(out + attribute(RTA_GATEWAY, "xyz")), ""},
        {"an index of 2 bytes", message(out + via + attribute(RTA_OIF, "xy")), found},
        {"no gateway, then one", message(out) + good, found},
        {"no length behind the first", done + std::string(16, '\0') + good, ""},
        {"a length beyond the end behind the first", done + message(out + via, 4), ""},
        {"an attribute of no length", message(attribute(99, "", -4) + out + via), ""},
        {"an attribute beyond the message", message(out + via, -4), ""},
        {"the first of two", good + message(out + attribute(RTA_GATEWAY, "abcd")), found},
        {"a last message without its padding", message(out + via, -1, RT_TABLE_LOCAL).substr(0, 43), ""},
        {"more than the buffer takes", message(std::string(4056, '\0'), 0, RT_TABLE_LOCAL) + good, ""},
    };
    // clang-format on
    for (const auto& [situation, datagram, expected] : cases) {
        reply = datagram;
        EXPECT_EQ(CML_getNetworkPortIPv4Gateway("lo"), expected) << situation;
    }
    EXPECT_EQ(sent, bytes(nlmsghdr{28, 26, 0x0301, 0, static_cast<uint32_t>(getpid())}) +
                        std::string(12, '\0'));
    EXPECT_EQ(timeout.tv_sec, 1);
}

}  // namespace
