// The Wi-Fi functions with 200 networks in the air, beside libmnl alone receiving, walking and
// validating the same answers. The kernel is played: what is measured is the library's own work.
#include <fcntl.h>
#include <libmnl/libmnl.h>
#include <linux/genetlink.h>
#include <linux/nl80211.h>
#include <net/if.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "bench/measure.h"
#include "console-manager/wifi.h"

// The answers to the requests, in datagrams.
using Answer = std::vector<std::string>;

struct mnl_socket {
    const Answer* answer;
    size_t next;  // of its datagrams
};

namespace {

constexpr int kNetworks = 200;
constexpr uint16_t kFamily = 28;
constexpr unsigned kGroup = 6;

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

std::string station() {
    char buffer[256]{};
    nlmsghdr* const message = begin(buffer, kFamily, NL80211_CMD_NEW_STATION);
    nlattr* const info = mnl_attr_nest_start(message, NL80211_ATTR_STA_INFO);
    mnl_attr_put_u8(message, NL80211_STA_INFO_SIGNAL, static_cast<uint8_t>(-60));
    mnl_attr_put_u8(message, NL80211_STA_INFO_SIGNAL_AVG, static_cast<uint8_t>(-60));
    mnl_attr_put_u32(message, NL80211_STA_INFO_RX_PACKETS, 1);
    mnl_attr_put_u32(message, NL80211_STA_INFO_TX_PACKETS, 1);
    mnl_attr_nest_end(message, info);
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
const Answer kStationAnswer = {station(), control(NLMSG_ERROR)};
char results[64];  // the notification that a scan has ended, so that none is waited for
const Answer kNotification = {bytesOf(begin(results, kFamily, NL80211_CMD_NEW_SCAN_RESULTS))};

mnl_socket sockets[2];  // of a handle: notifications, commands
int opened = 0;

// What a program with libmnl alone would do: keep the attributes of a message and of its nest,
// those that it reads with a look at their types.
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

template <size_t kSlots>
int onAttribute(const nlattr* attribute, void* data) {
    return mnl_attr_type_valid(attribute, kSlots - 1) < 0 ? MNL_CB_OK
                                                          : keep<kSlots>(attribute, data, true);
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
        *static_cast<int*>(data) += inner.slots[NL80211_BSS_BSSID] != nullptr ? 1 : 0;
    }
    return MNL_CB_OK;
}

int onStation(const nlmsghdr* message, void* data) {
    Attributes<282> outer{};
    mnl_attr_parse(message, sizeof(genlmsghdr), onAttribute<282>, &outer);
    Attributes<43> inner{};
    if (outer.slots[NL80211_ATTR_STA_INFO] != nullptr) {
        mnl_attr_parse_nested(outer.slots[NL80211_ATTR_STA_INFO], onAttribute<43>, &inner);
        *static_cast<int*>(data) += inner.slots[NL80211_STA_INFO_SIGNAL] != nullptr ? 1 : 0;
    }
    return MNL_CB_OK;
}

int onGroup(const nlattr* group, void* data) {
    Attributes<3> inner{};
    mnl_attr_parse_nested(group, onAttribute<3>, &inner);
    *static_cast<int*>(data) += inner.slots[CTRL_ATTR_MCAST_GRP_ID] != nullptr ? 1 : 0;
    return MNL_CB_OK;
}

int onFamily(const nlmsghdr* message, void* data) {
    Attributes<8> outer{};
    mnl_attr_parse(message, sizeof(genlmsghdr), onAttribute<8>, &outer);
    return mnl_attr_parse_nested(outer.slots[CTRL_ATTR_MCAST_GROUPS], onGroup, data);
}

// Receives all of an answer; each message for which the callback has a use adds one to the count.
void bareAnswer(const Answer& answer, mnl_cb_t callback, int expected) {
    char buffer[4096];
    mnl_socket socket{&answer, 0};
    int count = 0;
    ssize_t received;
    do {
        received = mnl_socket_recvfrom(&socket, buffer, sizeof buffer);
    } while (received > 0 &&
             mnl_cb_run(buffer, static_cast<size_t>(received), 0, 0, callback, &count) > 0);
    require(count == expected, "libmnl alone");
}

// With the blocks that a handle is made of: itself, and a buffer for each of its two sockets.
// Through a volatile pointer, since the compiler would do without them.
void bareInit() {
    static void* (*volatile allocate)(size_t, size_t) = std::calloc;
    void* const blocks[] = {allocate(1, 128), allocate(1, 4096), allocate(1, 4096)};
    bareAnswer(kFamilyAnswer, onFamily, 1);
    for (void* const block : blocks) {
        std::free(block);
    }
}

void bareScan() {
    bareAnswer(kDump, onNetwork, kNetworks);
}

void bareStation() {
    bareScan();
    bareAnswer(kStationAnswer, onStation, 1);
}

void scanAll(wifi_data* wifi) {
    static wifi_bss_record records[kNetworks];
    sockets[0] = {&kNotification, 0};
    require(wifi_scan_all(wifi, records, kNetworks) == kNetworks, "a scan");
}

}  // namespace

void measureWifi() {
    beginSubsystem("wifi");
    measure({.function = "wifi_scan_init + wifi_scan_close",
             .call = [] { wifi_scan_close(wifi_scan_init("wlan7")); },
             .floor = bareInit});
    wifi_data* const wifi = wifi_scan_init("wlan7");
    measure({.function = "wifi_scan_all", .call = [=] { scanAll(wifi); }, .floor = bareScan});
    wifi_station_record station{};
    measure({.function = "wifi_scan_station",
             .call = [&] { require(wifi_scan_station(wifi, &station) == 1, "a station"); },
             .floor = bareStation});
    wifi_scan_close(wifi);
    measure({.function = "CML_getWifiStatus",
             .call =
                 [] {
                     CML_WifiStatus status;
                     require(CML_getWifiStatus("wlan7", &status) == 1, "a Wi-Fi status");
                 },
             .floor =
                 [] {
                     bareInit();
                     bareStation();
                 }});
}

extern "C" {

unsigned if_nametoindex(const char*) noexcept {
    return 7;
}

mnl_socket* mnl_socket_open(int) {
    return &sockets[opened++ % 2];
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

ssize_t mnl_socket_sendto(const mnl_socket* socket, const void* request, size_t size) {
    const auto command = static_cast<const uint8_t*>(request)[sizeof(nlmsghdr)];
    *const_cast<mnl_socket*>(socket) = {command == NL80211_CMD_GET_SCAN      ? &kDump
                                        : command == NL80211_CMD_GET_STATION ? &kStationAnswer
                                                                             : &kFamilyAnswer,
                                        0};
    return static_cast<ssize_t>(size);
}

ssize_t mnl_socket_recvfrom(const mnl_socket* socket, void* buffer, size_t) {
    if (socket->next == socket->answer->size()) {
        errno = EAGAIN;
        return -1;
    }
    const std::string& datagram = (*socket->answer)[const_cast<mnl_socket*>(socket)->next++];
    std::memcpy(buffer, datagram.data(), datagram.size());
    return static_cast<ssize_t>(datagram.size());
}

}  // extern "C"
