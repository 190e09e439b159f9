// The Wi-Fi functions with 200 networks, compared with libmnl alone that sends the same requests
// and reads the replies. The kernel is played, so only the library's own work is measured.
#include "bench/bench.h"
#include "console-manager/wifi.h"
#include "support/nl80211_kernel.h"

using namespace nl80211;

namespace {

constexpr int kNetworks = 200;

// Walks through the nest of a network, a station or a family, and validates its numbers.
int readInner(const nlattr* attribute, void*) {
    const bool isNumber = mnl_attr_get_payload_len(attribute) == sizeof(uint32_t);
    return isNumber ? mnl_attr_validate(attribute, MNL_TYPE_U32) + 1 : MNL_CB_OK;
}
int readOuter(const nlattr* attribute, void* nest) {
    const bool isWanted = mnl_attr_get_type(attribute) == *static_cast<uint16_t*>(nest);
    return isWanted ? mnl_attr_parse_nested(attribute, readInner, nullptr) : MNL_CB_OK;
}
int read(const nlmsghdr* message, void* nest) {
    return mnl_attr_parse(message, sizeof(genlmsghdr), readOuter, nest);
}

void ask(mnl_socket* socket, uint8_t command, uint16_t nest) {
    char buffer[4096];
    nlmsghdr* const request = mnl_nlmsg_put_header(buffer);
    *static_cast<uint8_t*>(mnl_nlmsg_put_extra_header(request, sizeof(genlmsghdr))) = command;
    mnl_socket_sendto(socket, request, request->nlmsg_len);
    ssize_t size;
    do {
        size = mnl_socket_recvfrom(socket, buffer, sizeof buffer);
    } while (size > 0 && mnl_cb_run(buffer, static_cast<size_t>(size), 0, 0, read, &nest) > 0);
    require(size > 0, "libmnl alone");
}

void bareScan(mnl_socket* socket) {
    ask(socket, NL80211_CMD_GET_SCAN, NL80211_ATTR_BSS);
}
void bareStation(mnl_socket* socket) {
    bareScan(socket);
    ask(socket, NL80211_CMD_GET_STATION, NL80211_ATTR_STA_INFO);
}

mnl_socket* openSocket() {
    mnl_socket* const socket = mnl_socket_open(NETLINK_GENERIC);
    fcntl(mnl_socket_get_fd(socket), F_SETFD, FD_CLOEXEC);
    mnl_socket_bind(socket, 0, MNL_SOCKET_AUTOPID);
    return socket;
}

// With sockets for notifications and for commands, like the library.
void bareHandle(void (*use)(mnl_socket*)) {
    mnl_socket* const notifications = openSocket();
    mnl_socket* const commands = openSocket();
    ask(notifications, CTRL_CMD_GETFAMILY, CTRL_ATTR_MCAST_GROUPS);
    use(commands);
    mnl_socket_close(commands);
    mnl_socket_close(notifications);
}

}  // namespace

void measureWifi() {
    static wifi_bss_record records[kNetworks];
    static wifi_station_record record;
    static CML_WifiStatus status;
    std::string list;
    kernel.reset();
    while (list.size() < 2 * kNetworks) {
        list += "1 ";
    }
    kernel.on[NL80211_CMD_GET_SCAN] = networks(list);
    kernel.on[NL80211_CMD_GET_STATION] = {station(attribute(NL80211_STA_INFO_SIGNAL, u8(196)) +
                                                  attribute(NL80211_STA_INFO_RX_PACKETS, u32(1))),
                                          acknowledgement()};
    wifi_data* const wifi = wifi_scan_init("wlan7");
    const mnl_socket* const notifying = kernel.notifying;
    mnl_socket* const bare = mnl_socket_open(NETLINK_GENERIC);
    // The kernel's record of the requests would grow.
    const Work before = [=] {
        kernel.sent.clear();
        kernel.commands.clear();
        kernel.notifying = notifying;
    };
    measure({"wifi_scan_init + wifi_scan_close", [] { wifi_scan_close(wifi_scan_init("wlan7")); },
             [] { bareHandle([](mnl_socket*) {}); }, before, before});
    const auto scan = [=] {
        // The scan has ended, so the call doesn't wait.
        kernel.notifications = {notification(NL80211_CMD_NEW_SCAN_RESULTS)};
        require(wifi_scan_all(wifi, records, kNetworks) == kNetworks, "a scan");
    };
    measure({"wifi_scan_all", scan, [=] { bareScan(bare); }, before, before});
    measure({"wifi_scan_station", [=] { require(wifi_scan_station(wifi, &record) == 1, "a link"); },
             [=] { bareStation(bare); }, before, before});
    measure({CALLED(CML_getWifiStatus, "wlan7", &status), [] { bareHandle(bareStation); }, before,
             before});
}
