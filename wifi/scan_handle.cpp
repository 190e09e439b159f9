#include <linux/genetlink.h>
#include <linux/netlink.h>

#include <cstdlib>
#include <cstring>
#include <new>

#include "console-manager/wifi.h"
#include "wifi/attribute_validation.h"
#include "wifi/channel.h"
#include "wifi/handle.h"
#include "wifi/report.h"

namespace {

// A name without its terminating NUL doesn't count.
bool isScanGroup(const nlattr* name) {
    constexpr char kName[] = "scan";
    return name != nullptr && mnl_attr_get_payload_len(name) >= sizeof kName &&
           std::memcmp(mnl_attr_get_payload(name), kName, sizeof kName) == 0;
}

// Reads all groups: if two have the name, the last one counts.
void readGroups(const nlattr* groups, uint32_t& scanGroup) {
    const auto* group = static_cast<const nlattr*>(mnl_attr_get_payload(groups));
    const char* const end = reinterpret_cast<const char*>(group) + mnl_attr_get_payload_len(groups);
    for (; mnl_attr_ok(group, static_cast<int>(end - reinterpret_cast<const char*>(group)));
         group = mnl_attr_next(group)) {
        const auto slots =
            parseNest<CTRL_ATTR_MCAST_GRP_ID>(group, NL80211_MCAST_GROUPS_VALIDATION);
        if (!isScanGroup(std::get<CTRL_ATTR_MCAST_GRP_NAME>(slots))) {
            continue;
        }
        if (std::get<CTRL_ATTR_MCAST_GRP_ID>(slots) == nullptr) {
            wifi_fatal_text("Missing id attribute for scan multicast group");
        }
        scanGroup = mnl_attr_get_u32(std::get<CTRL_ATTR_MCAST_GRP_ID>(slots));
    }
}

int wifi_on_family_reply(const nlmsghdr* message, void* data) {
    auto& channel = *static_cast<wifi_channel*>(data);
    const auto slots = parseMessage<CTRL_ATTR_MCAST_GROUPS>(message, NL80211_VALIDATION);
    if (std::get<CTRL_ATTR_FAMILY_ID>(slots) == nullptr) {
        wifi_fatal_text("No family id attribute");
    }
    channel.family_id = mnl_attr_get_u16(std::get<CTRL_ATTR_FAMILY_ID>(slots));
    if (std::get<CTRL_ATTR_MCAST_GROUPS>(slots) != nullptr) {
        readGroups(std::get<CTRL_ATTR_MCAST_GROUPS>(slots),
                   *static_cast<uint32_t*>(channel.context));
    }
    return MNL_CB_OK;
}

// Asks the controller for nl80211. Sets the channel's family_id, and returns the id of the group to
// which the kernel sends notifications of scans.
uint32_t GetFamilyAndScanId(wifi_channel& channel) {
    uint32_t scanGroup = 0;
    channel.context = &scanGroup;
    nlmsghdr* const request =
        wifi_prepare_request(GENL_ID_CTRL, NLM_F_REQUEST | NLM_F_ACK, CTRL_CMD_GETFAMILY,
                             channel.buffer, &channel.sequence);
    mnl_attr_put_u16(request, CTRL_ATTR_FAMILY_ID, GENL_ID_CTRL);
    mnl_attr_put_strz(request, CTRL_ATTR_FAMILY_NAME, "nl80211");
    wifi_channel_send(request, channel.socket);
    if (wifi_channel_exchange(channel, wifi_on_family_reply) == -1) {
        wifi_fatal_errno("GetFamilyAndScanId failed");
    }
    if (scanGroup == 0) {
        wifi_fatal_text("No scan multicast group in generic netlink nl80211\n");
    }
    return scanGroup;
}

}  // namespace

wifi_data* wifi_scan_init(const char* interface) {
    void* const block = std::malloc(sizeof(wifi_data));
    if (block == nullptr) {
        wifi_fatal_text("Insufficient memory - malloc(sizeof(struct wifi_data)");
    }
    Handle wifi(new (block) wifi_data{});
    if (wifi_channel_open(wifi->notifications, interface) == -1) {
        return nullptr;
    }
    uint32_t scanGroup = GetFamilyAndScanId(wifi->notifications);
    if (wifi_channel_open(wifi->commands, interface) == -1) {
        return nullptr;
    }
    wifi->commands.family_id = wifi->notifications.family_id;
    // Last, so that no notification is queued before the handle is complete.
    if (mnl_socket_setsockopt(wifi->notifications.socket, NETLINK_ADD_MEMBERSHIP, &scanGroup,
                              sizeof scanGroup) < 0) {
        wifi_fatal_errno("mnl_socket_set_sockopt");
    }
    return wifi.release();
}

void wifi_scan_close(wifi_data* wifi) {
    wifi_channel_close(wifi->notifications);
    wifi_channel_close(wifi->commands);
    std::free(wifi);
}
