#include "wifi/scan_results.h"

#include <linux/nl80211.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>

#include "wifi/attribute_validation.h"
#include "wifi/report.h"

static_assert(sizeof(wifi_bss_record) == 60 && offsetof(wifi_bss_record, bssid) == 0 &&
              offsetof(wifi_bss_record, frequency) == 8 && offsetof(wifi_bss_record, ssid) == 12 &&
              offsetof(wifi_bss_record, status) == 48 &&
              offsetof(wifi_bss_record, signal_mbm) == 52 &&
              offsetof(wifi_bss_record, seen_ms_ago) == 56);
static_assert(int{CML_BSS_STATUS_AUTHENTICATED} == NL80211_BSS_STATUS_AUTHENTICATED &&
              int{CML_BSS_STATUS_ASSOCIATED} == NL80211_BSS_STATUS_ASSOCIATED &&
              int{CML_BSS_STATUS_IBSS_JOINED} == NL80211_BSS_STATUS_IBSS_JOINED);

namespace {

constexpr uint32_t kMaxBssAttribute = 19;

// Returns the element for a network with this status, or null if it isn't stored. The network that
// the interface belongs to gets element 0, whose content moves to the end or, in a full array, is
// lost.
wifi_bss_record* chooseElement(const wifi_scan_results& results, int32_t status) {
    const bool hasRoom = results.count < results.capacity;
    if (results.capacity <= 0) {
        return nullptr;
    }
    if (status != CML_BSS_STATUS_ASSOCIATED && status != CML_BSS_STATUS_IBSS_JOINED) {
        return hasRoom ? &results.records[results.count] : nullptr;
    }
    if (results.count > 0 && hasRoom) {
        results.records[results.count] = results.records[0];
    }
    return results.records;
}

// Reads the first information element, which in every frame of an access point is the SSID: an id,
// a length, and the name, which may hold any byte and isn't terminated.
void readSsid(const nlattr* elements, char (&ssid)[33]) {
    constexpr uint8_t kSsidElement = 0;
    constexpr size_t kHead = 2;
    const auto* const bytes = static_cast<const uint8_t*>(mnl_attr_get_payload(elements));
    const size_t length = mnl_attr_get_payload_len(elements);
    if (length < kHead || bytes[0] != kSsidElement || bytes[1] >= sizeof ssid ||
        length < bytes[1] + kHead) {
        std::fputs(
            "SSID len 0 or payload not starting from 0 or payload length > 32 or payload length > "
            "length-2!\n",
            stderr);
        ssid[0] = '\0';
        return;
    }
    std::strncpy(ssid, reinterpret_cast<const char*>(bytes + kHead), bytes[1]);
    ssid[bytes[1]] = '\0';
}

void fillElement(const Slots<kMaxBssAttribute>& bss, int32_t status, wifi_bss_record& record) {
    if (const nlattr* const bssid = std::get<NL80211_BSS_BSSID>(bss)) {
        std::memcpy(record.bssid, mnl_attr_get_payload(bssid), sizeof record.bssid);
    }
    if (const nlattr* const frequency = std::get<NL80211_BSS_FREQUENCY>(bss)) {
        record.frequency = mnl_attr_get_u32(frequency);
    }
    if (const nlattr* const elements = std::get<NL80211_BSS_INFORMATION_ELEMENTS>(bss)) {
        readSsid(elements, record.ssid);
    }
    if (const nlattr* const signal = std::get<NL80211_BSS_SIGNAL_MBM>(bss)) {
        record.signal_mbm = static_cast<int32_t>(mnl_attr_get_u32(signal));
    }
    if (const nlattr* const seen = std::get<NL80211_BSS_SEEN_MS_AGO>(bss)) {
        record.seen_ms_ago = mnl_attr_get_u32(seen);
    }
    record.status = status;
}

// Takes back what an interrupted dump stored. Otherwise a figure that the next dump lacks would be
// that of another network. There is no copy of the array, so every element becomes what the first
// was, which is right for an array that the caller filled evenly.
void startAgain(wifi_scan_results& results, const wifi_bss_record& first) {
    std::fill_n(results.records, std::min(results.count, results.capacity), first);
    results.count = 0;
}

int requestList(wifi_channel& commands) {
    nlmsghdr* const request = wifi_prepare_interface_request(
        commands, NLM_F_REQUEST | NLM_F_ACK | NLM_F_DUMP, NL80211_CMD_GET_SCAN);
    wifi_channel_send(request, commands.socket);
    return wifi_channel_exchange(commands, wifi_on_scan_result);
}

}  // namespace

int wifi_on_scan_result(const nlmsghdr* message, void* data) {
    if (wifi_command_of(message) != NL80211_CMD_NEW_SCAN_RESULTS) {
        wifi_report_ignored("command", message);
        return MNL_CB_OK;
    }
    const auto slots =
        parseMessage<kMaxMessageAttribute>(message, NL80211_NEW_SCAN_RESULTS_VALIDATION);
    if (std::get<NL80211_ATTR_BSS>(slots) == nullptr) {
        return MNL_CB_OK;
    }
    const auto bss =
        parseNest<kMaxBssAttribute>(std::get<NL80211_ATTR_BSS>(slots), NL80211_BSS_VALIDATION);
    const nlattr* const statusSlot = std::get<NL80211_BSS_STATUS>(bss);
    const int32_t status = statusSlot == nullptr
                               ? CML_BSS_STATUS_NONE
                               : static_cast<int32_t>(mnl_attr_get_u32(statusSlot));

    auto& results = *static_cast<wifi_scan_results*>(static_cast<wifi_channel*>(data)->context);
    if (wifi_bss_record* const element = chooseElement(results, status)) {
        fillElement(bss, status, *element);
    }
    ++results.count;
    return MNL_CB_OK;
}

int wifi_dump_scan(wifi_channel& commands) {
    constexpr int kMostRepetitions = 10;
    auto& results = *static_cast<wifi_scan_results*>(commands.context);
    const wifi_bss_record first = results.capacity > 0 ? results.records[0] : wifi_bss_record{};
    int result = requestList(commands);
    for (int i = 0; commands.interrupted && i < kMostRepetitions; ++i) {
        startAgain(results, first);
        result = requestList(commands);
    }
    return result;
}
