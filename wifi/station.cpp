#include <linux/nl80211.h>

#include <cstddef>
#include <cstring>

#include "console-manager/wifi.h"
#include "wifi/attribute_validation.h"
#include "wifi/channel.h"
#include "wifi/report.h"
#include "wifi/scan_results.h"

static_assert(sizeof(wifi_station_record) == 56 && offsetof(wifi_station_record, bssid) == 0 &&
              offsetof(wifi_station_record, ssid) == 6 &&
              offsetof(wifi_station_record, status) == 40 &&
              offsetof(wifi_station_record, signal_dbm) == 44 &&
              offsetof(wifi_station_record, signal_avg_dbm) == 45 &&
              offsetof(wifi_station_record, rx_packets) == 48 &&
              offsetof(wifi_station_record, tx_packets) == 52);

namespace {

constexpr uint32_t kMaxStationAttribute = 42;

// Handles one message of an exchange whose context is the caller's record.
int wifi_on_station(const nlmsghdr* message, void* data) {
    if (wifi_command_of(message) != NL80211_CMD_NEW_STATION) {
        wifi_report_ignored("command", message);
        return MNL_CB_OK;
    }
    const auto slots =
        parseMessage<kMaxMessageAttribute>(message, NL80211_CMD_NEW_STATION_VALIDATION);
    if (std::get<NL80211_ATTR_STA_INFO>(slots) == nullptr) {
        return MNL_CB_OK;
    }
    const auto info = parseNest<kMaxStationAttribute>(std::get<NL80211_ATTR_STA_INFO>(slots),
                                                      NL80211_STA_INFO_VALIDATION);
    auto& station = *static_cast<wifi_station_record*>(static_cast<wifi_channel*>(data)->context);
    // The kernel sends signed values in unsigned attributes.
    if (const nlattr* const signal = std::get<NL80211_STA_INFO_SIGNAL>(info)) {
        station.signal_dbm = static_cast<int8_t>(mnl_attr_get_u8(signal));
    }
    if (const nlattr* const average = std::get<NL80211_STA_INFO_SIGNAL_AVG>(info)) {
        station.signal_avg_dbm = static_cast<int8_t>(mnl_attr_get_u8(average));
    }
    if (const nlattr* const received = std::get<NL80211_STA_INFO_RX_PACKETS>(info)) {
        station.rx_packets = mnl_attr_get_u32(received);
    }
    if (const nlattr* const sent = std::get<NL80211_STA_INFO_TX_PACKETS>(info)) {
        station.tx_packets = mnl_attr_get_u32(sent);
    }
    return MNL_CB_OK;
}

}  // namespace

int32_t wifi_scan_station(wifi_data* wifi, wifi_station_record* station) {
    wifi_channel& commands = wifi->commands;
    // With room for one network this is the joined one or, without one, the first.
    wifi_bss_record bss{};
    wifi_scan_results results{&bss, 1, 0};
    commands.context = &results;
    wifi_dump_scan(commands);
    if (results.count == 0) {
        return 0;
    }
    commands.context = station;
    nlmsghdr* const request = wifi_prepare_interface_request(commands, NLM_F_REQUEST | NLM_F_ACK,
                                                             NL80211_CMD_GET_STATION);
    mnl_attr_put(request, NL80211_ATTR_MAC, sizeof bss.bssid, bss.bssid);
    wifi_channel_send(request, commands.socket);
    // If the interface hasn't joined this network, the kernel refuses and sends no figures.
    wifi_channel_exchange(commands, wifi_on_station);
    std::memcpy(station->bssid, bss.bssid, sizeof station->bssid);
    std::memcpy(station->ssid, bss.ssid, sizeof station->ssid);
    station->status = bss.status;
    return 1;
}
