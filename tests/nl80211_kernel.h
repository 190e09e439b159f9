// A kernel with nl80211, played: it defines libmnl's socket functions and if_nametoindex, records
// what the library sends, and answers from a script. libmnl's message code stays real.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

// Pieces of messages, as bytes. Integers are in host byte order.
namespace nl80211 {

std::string u8(uint8_t value);
std::string u16(uint16_t value);
std::string u32(uint32_t value);

// An attribute with its padding; lengthOff makes its length lie.
std::string attribute(uint16_t type, const std::string& payload, int lengthOff = 0);

// A generic netlink message. A reply gets the request's sequence and the socket's port when it is
// sent; a notification has 0 for both.
constexpr uint16_t kFamily = 28;
std::string reply(uint8_t command, const std::string& attributes, uint16_t type = kFamily);
std::string notification(uint8_t command, uint32_t sequence = 0, uint32_t port = 0);
std::string acknowledgement(int error = 0);
std::string done();

// The reply about nl80211 with one multicast group for each of groups, and one group in it.
std::string family(const std::string& groups);
std::string group(const std::string& name, uint32_t id);

// One network of a scan, from the attributes of its BSS.
std::string network(const std::string& bssAttributes);

}  // namespace nl80211

// What comes over a socket: bytes of a datagram, or the errno of a failed receive.
struct Datagram {
    std::string bytes;
    int error = 0;
};
using Datagrams = std::deque<Datagram>;

struct Nl80211Kernel {
    // The script. Answers to each kind of request, taken whole at each request of the kind.
    Datagrams onFamily;
    Datagrams onTrigger;
    Datagrams onDump;
    Datagrams onStation;
    Datagrams notificationsOnTrigger;  // come when a scan has been triggered
    Datagrams notifications;           // wait on the first socket

    // What doesn't work: the name of a function, and from which call on (1 for the first).
    std::string failing;
    int failingCall = 1;

    // What was seen.
    std::vector<std::string> sent;  // requests, in hexadecimal digits
    int openSockets = 0;
    uint32_t joinedGroup = 0;
    bool working = false;  // the kernel's own work is under way, not the library's

    // A kernel that knows nl80211 and its scan group, and answers every request with no more than
    // its acknowledgement.
    void reset();
};

extern Nl80211Kernel kernel;
