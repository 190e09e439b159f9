// Feeds bytes to the Wi-Fi functions as replies and notifications of a kernel.
#include <memory>
#include <string_view>

#include "console-manager/wifi.h"
#include "support/nl80211_kernel.h"
#include "support/played_exit.h"
#include "wifi/handle.h"

namespace {

// The input is a sequence of pieces: a byte for the place, one for a quarter of the length, and the
// bytes. They are put into a message or nest, or used as they are.
void readScript(std::string_view input) {
    constexpr auto kAsItIs = [](Text bytes) { return bytes; };
    constexpr auto kGroups = [](Text bytes) { return nl80211::family(bytes); };
    // clang-format off
    const std::pair<Datagrams&, std::string (*)(Text)> places[] = {
        {kernel.on[NL80211_CMD_GET_SCAN], nl80211::network},
        {kernel.on[NL80211_CMD_GET_SCAN], kAsItIs},
        {kernel.on[NL80211_CMD_GET_STATION], nl80211::station},
        {kernel.on[NL80211_CMD_GET_STATION], kAsItIs},
        {kernel.on[CTRL_CMD_GETFAMILY], nl80211::controllerReply},
        {kernel.on[CTRL_CMD_GETFAMILY], kGroups},
        {kernel.on[NL80211_CMD_TRIGGER_SCAN], kAsItIs}, {kernel.notifications, kAsItIs}};
    // clang-format on
    kernel.later = {nl80211::notification(NL80211_CMD_NEW_SCAN_RESULTS)};
    while (input.size() > 2) {
        const auto& [queue, wrap] = places[static_cast<uint8_t>(input[0]) % std::size(places)];
        const std::string bytes(input.substr(2, size_t{4} * static_cast<uint8_t>(input[1])));
        input.remove_prefix(2 + bytes.size());
        queue.push_front(wrap(bytes));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    kernel.reset();
    readScript({reinterpret_cast<const char*>(data), size});
    // On the heap, where the sanitizer sees a write beyond the end.
    const auto records = std::make_unique<wifi_bss_record[]>(2);
    const auto station = std::make_unique<wifi_station_record>();
    try {
        const Within library(true);
        const Handle wifi(wifi_scan_init("wlan7"));
        if (wifi) {
            wifi_scan_station(wifi.get(), station.get());
            wifi_scan_all(wifi.get(), records.get(), 2);
        }
    } catch (const Ended&) {
    }
    // Names end within their 33 bytes.
    if (strnlen(records[0].ssid, 33) == 33 || strnlen(records[1].ssid, 33) == 33 ||
        strnlen(station->ssid, 33) == 33) {
        std::abort();
    }
    return 0;
}
