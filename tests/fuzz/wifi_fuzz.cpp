// Feeds bytes to the Wi-Fi functions as what a kernel answers and notifies.
#include <memory>
#include <string_view>

#include "console-manager/wifi.h"
#include "support/nl80211_kernel.h"
#include "support/played_exit.h"

namespace {

// Calls the library, which may end there.
void tryCall(auto call) {
    try {
        within(call);
    } catch (const Ended&) {
    }
}

// Where bytes of the input can go, and the message or nest that they are put into.
struct Place {
    Datagrams& queue;
    std::string (*wrap)(const std::string&);
};

constexpr auto asItIs = [](const std::string& bytes) { return bytes; };
constexpr auto familyReply = [](const std::string& bytes) {
    return nl80211::reply(CTRL_CMD_NEWFAMILY, bytes, GENL_ID_CTRL);
};

// The input is a row of pieces: a byte that says where one goes, one for a quarter of its length,
// and the bytes.
void readScript(std::string_view input) {
    const Place places[] = {
        {kernel.on[NL80211_CMD_GET_SCAN], nl80211::network},
        {kernel.on[NL80211_CMD_GET_SCAN], asItIs},
        {kernel.on[NL80211_CMD_GET_STATION], nl80211::station},
        {kernel.on[NL80211_CMD_GET_STATION], asItIs},
        {kernel.on[CTRL_CMD_GETFAMILY], familyReply},
        {kernel.on[CTRL_CMD_GETFAMILY], nl80211::family},
        {kernel.on[NL80211_CMD_TRIGGER_SCAN], asItIs},
        {kernel.notifications, asItIs},
    };
    kernel.later = {nl80211::notification(NL80211_CMD_NEW_SCAN_RESULTS)};
    while (input.size() > 2) {
        const Place& place = places[static_cast<uint8_t>(input[0]) % std::size(places)];
        const std::string bytes(input.substr(2, size_t{4} * static_cast<uint8_t>(input[1])));
        input.remove_prefix(2 + bytes.size());
        place.queue.push_front(place.wrap(bytes));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    kernel.reset();
    readScript({reinterpret_cast<const char*>(data), size});
    // On the heap, so that a write beyond the end is seen.
    const auto records = std::make_unique<wifi_bss_record[]>(2);
    const auto station = std::make_unique<wifi_station_record>();
    wifi_data* wifi = nullptr;
    tryCall([&] { wifi = wifi_scan_init("wlan7"); });
    if (wifi != nullptr) {
        tryCall([&] { wifi_scan_all(wifi, records.get(), 2); });
        tryCall([&] { wifi_scan_station(wifi, station.get()); });
        wifi_scan_close(wifi);
    }
    // Names end within their 33 bytes.
    if (kernel.openSockets != 0 || strnlen(records[0].ssid, 33) == 33 ||
        strnlen(records[1].ssid, 33) == 33 || strnlen(station->ssid, 33) == 33) {
        std::abort();
    }
    return 0;
}
