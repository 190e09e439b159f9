// A kernel with nl80211, played: it defines libmnl's socket functions and if_nametoindex, records
// what the library sends, and answers from a script. libmnl's message code stays real.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <vector>

// Pieces of messages, as bytes in host byte order.
namespace nl80211 {

template <typename Record>
std::string bytes(const Record& record) {
    return {reinterpret_cast<const char*>(&record), sizeof record};
}
inline std::string u8(uint8_t value) {
    return bytes(value);
}
inline std::string u16(uint16_t value) {
    return bytes(value);
}
inline std::string u32(uint32_t value) {
    return bytes(value);
}

// An attribute with its padding; lengthOff makes its length lie.
std::string attribute(uint16_t type, const std::string& payload, int lengthOff = 0);

// A generic netlink message. A reply gets the request's sequence and the socket's port when it is
// sent; a notification has 0 for both.
constexpr uint16_t kFamily = 28;
std::string reply(uint8_t command, const std::string& attributes, uint16_t type = kFamily);
std::string notification(uint8_t command, uint32_t sequence = 0, uint32_t port = 0);
std::string acknowledgement(int error = 0);
std::string done();

// The reply about nl80211 and its multicast groups, one such group, and one network of a scan with
// the attributes of its BSS.
std::string family(const std::string& groups);
std::string group(const std::string& name, uint32_t id);
std::string network(const std::string& bssAttributes);

// In place of a datagram: a receive that fails.
inline std::string failure(int error) {
    return {static_cast<char>(error)};
}

}  // namespace nl80211

using Datagrams = std::deque<std::string>;

struct Nl80211Kernel {
    // The script.
    std::map<int, Datagrams> on;  // the answer to each command
    Datagrams notifications;      // wait on the first socket of a handle
    Datagrams later;              // the same, but come when a scan has been triggered
    std::string failing;          // a function that doesn't work
    int failingCall = 1;          // and from which call on (1 for the first)

    // What was seen.
    std::vector<std::string> sent;  // requests, in hexadecimal digits
    std::string commands;           // their commands and numbers: "33/1 32/2 "
    int openSockets = 0;
    uint32_t joinedGroup = 0;
    bool working = false;  // the kernel's own work is under way, not the library's

    // A kernel that knows nl80211 and its scan group, and answers with no more than its
    // acknowledgement.
    void reset();

    // Whether a receive of notifications waits for them.
    static bool waits();
};

extern Nl80211Kernel kernel;
