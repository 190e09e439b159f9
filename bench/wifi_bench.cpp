// A dump of 200 networks through wifi_scan_all, beside libmnl alone receiving, walking and
// validating the same bytes. The sockets are played: what is measured is the library's own work.
#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <libmnl/libmnl.h>
#include <linux/genetlink.h>
#include <linux/nl80211.h>
#include <net/if.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "console-manager/wifi.h"

struct mnl_socket {
    bool notifies;
    size_t next;  // of the datagrams of its answer
};

namespace {

int allocations = 0;

constexpr int kNetworks = 200;
constexpr uint16_t kFamily = 28;
constexpr unsigned kGroup = 6;

using Answer = std::vector<std::string>;

nlmsghdr* begin(char* buffer, uint16_t type, uint8_t command) {
    nlmsghdr* const message = mnl_nlmsg_put_header(buffer);
    message->nlmsg_type = type;
    static_cast<genlmsghdr*>(mnl_nlmsg_put_extra_header(message, sizeof(genlmsghdr)))->cmd =
        command;
    return message;
}

std::string bytesOf(const nlmsghdr* message) {
    return {reinterpret_cast<const char*>(message), message->nlmsg_len};
}

std::string control(uint16_t type) {
    char buffer[256]{};
    nlmsghdr* const message = mnl_nlmsg_put_header(buffer);
    message->nlmsg_type = type;
    static_cast<nlmsgerr*>(mnl_nlmsg_put_extra_header(message, sizeof(nlmsgerr)))->error = 0;
    return bytesOf(message);
}

std::string family() {
    char buffer[256]{};
    nlmsghdr* const message = begin(buffer, GENL_ID_CTRL, CTRL_CMD_NEWFAMILY);
    mnl_attr_put_u16(message, CTRL_ATTR_FAMILY_ID, kFamily);
    nlattr* const groups = mnl_attr_nest_start(message, CTRL_ATTR_MCAST_GROUPS);
    nlattr* const group = mnl_attr_nest_start(message, 1);
    mnl_attr_put_u32(message, CTRL_ATTR_MCAST_GRP_ID, kGroup);
    mnl_attr_put_strz(message, CTRL_ATTR_MCAST_GRP_NAME, "scan");
    mnl_attr_nest_end(message, group);
    mnl_attr_nest_end(message, groups);
    return bytesOf(message);
}

// As the kernel sends one, with the elements of a common access point.
std::string network(int number) {
    char buffer[1024]{};
    nlmsghdr* const message = begin(buffer, kFamily, NL80211_CMD_NEW_SCAN_RESULTS);
    mnl_attr_put_u32(message, NL80211_ATTR_GENERATION, 1);
    mnl_attr_put_u32(message, NL80211_ATTR_IFINDEX, 7);
    mnl_attr_put_u64(message, NL80211_ATTR_WDEV, 1);
    nlattr* const bss = mnl_attr_nest_start(message, NL80211_ATTR_BSS);
    const uint8_t bssid[6] = {2, 0, 0, 0, 0, static_cast<uint8_t>(number)};
    mnl_attr_put(message, NL80211_BSS_BSSID, sizeof bssid, bssid);
    mnl_attr_put_u64(message, NL80211_BSS_TSF, 1);
    const std::string name = "network " + std::to_string(number);
    std::string elements = std::string(1, '\0') + static_cast<char>(name.size()) + name;
    elements.resize(elements.size() + 220, '\x2a');
    mnl_attr_put(message, NL80211_BSS_INFORMATION_ELEMENTS, elements.size(), elements.data());
    mnl_attr_put(message, NL80211_BSS_BEACON_IES, elements.size(), elements.data());
    mnl_attr_put_u16(message, NL80211_BSS_BEACON_INTERVAL, 100);
    mnl_attr_put_u16(message, NL80211_BSS_CAPABILITY, 0x411);
    mnl_attr_put_u32(message, NL80211_BSS_FREQUENCY, 2412);
    mnl_attr_put_u32(message, NL80211_BSS_CHAN_WIDTH, 0);
    mnl_attr_put_u32(message, NL80211_BSS_SEEN_MS_AGO, 100);
    mnl_attr_put_u32(message, NL80211_BSS_SIGNAL_MBM, static_cast<uint32_t>(-6000));
    mnl_attr_nest_end(message, bss);
    return bytesOf(message);
}

// The kernel fills a datagram with as many messages as fit into the receiver's buffer.
Answer dump() {
    Answer datagrams(1);
    for (int i = 0; i < kNetworks; ++i) {
        const std::string message = network(i);
        if (datagrams.back().size() + message.size() > 4096) {
            datagrams.emplace_back();
        }
        datagrams.back() += message;
    }
    datagrams.push_back(control(NLMSG_DONE));
    return datagrams;
}

const Answer kFamilyAnswer = {family(), control(NLMSG_ERROR)};
const Answer kDump = dump();
char results[64];  // the notification that a scan has ended, so that none is waited for
const Answer kNotification = {bytesOf(begin(results, kFamily, NL80211_CMD_NEW_SCAN_RESULTS))};

mnl_socket sockets[2] = {{true, 0}, {false, 0}};
int opened = 0;
const Answer* answers[2] = {&kFamilyAnswer, &kDump};

// The rules that a program with libmnl alone would have, and the room for what it finds.
template <size_t kSlots>
struct Attributes {
    const nlattr* slots[kSlots];
};

template <size_t kSlots>
int keep(const nlattr* attribute, void* data, bool valid) {
    if (!valid) {
        return MNL_CB_ERROR;
    }
    static_cast<Attributes<kSlots>*>(data)->slots[mnl_attr_get_type(attribute)] = attribute;
    return MNL_CB_OK;
}

int onMessageAttribute(const nlattr* attribute, void* data) {
    if (mnl_attr_type_valid(attribute, 281) < 0) {
        return MNL_CB_OK;
    }
    bool valid = true;
    switch (mnl_attr_get_type(attribute)) {
        case NL80211_ATTR_IFINDEX:
            valid = mnl_attr_validate(attribute, MNL_TYPE_U32) >= 0;
            break;
        case NL80211_ATTR_BSS:
            valid = mnl_attr_validate(attribute, MNL_TYPE_NESTED) >= 0;
            break;
        default:
            break;
    }
    return keep<282>(attribute, data, valid);
}

int onBssAttribute(const nlattr* attribute, void* data) {
    if (mnl_attr_type_valid(attribute, 19) < 0) {
        return MNL_CB_OK;
    }
    bool valid = true;
    switch (mnl_attr_get_type(attribute)) {
        case NL80211_BSS_BSSID:
            valid = mnl_attr_validate2(attribute, MNL_TYPE_BINARY, 6) >= 0;
            break;
        case NL80211_BSS_INFORMATION_ELEMENTS:
            valid = mnl_attr_validate(attribute, MNL_TYPE_BINARY) >= 0;
            break;
        case NL80211_BSS_FREQUENCY:
        case NL80211_BSS_STATUS:
        case NL80211_BSS_SIGNAL_MBM:
        case NL80211_BSS_SEEN_MS_AGO:
            valid = mnl_attr_validate(attribute, MNL_TYPE_U32) >= 0;
            break;
        default:
            break;
    }
    return keep<20>(attribute, data, valid);
}

int onNetwork(const nlmsghdr* message, void* data) {
    Attributes<282> outer{};
    mnl_attr_parse(message, sizeof(genlmsghdr), onMessageAttribute, &outer);
    Attributes<20> inner{};
    if (outer.slots[NL80211_ATTR_BSS] != nullptr) {
        mnl_attr_parse_nested(outer.slots[NL80211_ATTR_BSS], onBssAttribute, &inner);
        benchmark::DoNotOptimize(inner);
        ++*static_cast<int*>(data);
    }
    return MNL_CB_OK;
}

void bareDump(benchmark::State& state) {
    char buffer[4096];
    for (auto _ : state) {
        int count = 0;
        mnl_socket& socket = sockets[1];
        socket.next = 0;
        ssize_t received;
        do {
            received = mnl_socket_recvfrom(&socket, buffer, sizeof buffer);
        } while (received > 0 &&
                 mnl_cb_run(buffer, static_cast<size_t>(received), 0, 0, onNetwork, &count) > 0);
        if (count != kNetworks) {
            state.SkipWithError("not all were read");
        }
    }
}
BENCHMARK(bareDump);

void scanAll(benchmark::State& state) {
    static wifi_bss_record records[kNetworks];
    opened = 0;
    answers[0] = &kFamilyAnswer;
    wifi_data* const wifi = wifi_scan_init("wlan7");
    const int before = allocations;
    for (auto _ : state) {
        answers[0] = &kNotification;
        sockets[0].next = 0;
        if (wifi_scan_all(wifi, records, kNetworks) != kNetworks) {
            state.SkipWithError("not all were read");
        }
    }
    if (allocations != before) {
        state.SkipWithError("memory was allocated");
    }
    wifi_scan_close(wifi);
}
BENCHMARK(scanAll);

}  // namespace

extern "C" {

void* malloc(size_t size) noexcept {
    static auto* const real = reinterpret_cast<void* (*)(size_t)>(dlsym(RTLD_NEXT, "malloc"));
    ++allocations;
    return real(size);
}

unsigned if_nametoindex(const char*) noexcept {
    return 7;
}

mnl_socket* mnl_socket_open(int) {
    return &sockets[opened++];
}

int mnl_socket_bind(mnl_socket*, unsigned, pid_t) {
    return 0;
}

int mnl_socket_close(mnl_socket*) {
    return 0;
}

int mnl_socket_get_fd(const mnl_socket*) {
    static const int descriptor = open("/dev/null", O_RDONLY | O_CLOEXEC);
    return descriptor;
}

// 0 turns libmnl's check of it off, as in the answers.
unsigned mnl_socket_get_portid(const mnl_socket*) {
    return 0;
}

int mnl_socket_setsockopt(const mnl_socket*, int, void*, socklen_t) {
    return 0;
}

ssize_t mnl_socket_sendto(const mnl_socket* socket, const void*, size_t size) {
    const_cast<mnl_socket*>(socket)->next = 0;
    return static_cast<ssize_t>(size);
}

ssize_t mnl_socket_recvfrom(const mnl_socket* socket, void* buffer, size_t) {
    const Answer& answer = *answers[socket->notifies ? 0 : 1];
    if (socket->next == answer.size()) {
        errno = EAGAIN;
        return -1;
    }
    const std::string& datagram = answer[const_cast<mnl_socket*>(socket)->next++];
    std::memcpy(buffer, datagram.data(), datagram.size());
    return static_cast<ssize_t>(datagram.size());
}

}  // extern "C"
