#include <cstddef>
#include <cstring>

#include "console-manager/wifi.h"
#include "wifi/handle.h"

static_assert(sizeof(CML_WifiStatus) == sizeof(void*) + (sizeof(void*) == 4 ? 12 : 16) &&
              offsetof(CML_WifiStatus, ssid) == 0 &&
              offsetof(CML_WifiStatus, signalDbm) == sizeof(void*) &&
              offsetof(CML_WifiStatus, rxPackets) == sizeof(void*) + 4 &&
              offsetof(CML_WifiStatus, txPackets) == sizeof(void*) + 8);

namespace {

// Looks at the traffic, not at the status: a link without packets doesn't count, and neither does
// one with a signal of exactly +1.
bool isConnected(const wifi_station_record& station) {
    return station.signal_dbm != 1 && (station.rx_packets != 0 || station.tx_packets != 0);
}

}  // namespace

int32_t CML_getWifiStatus(const char* port, CML_WifiStatus* result) {
    static char ssidText[sizeof(wifi_station_record::ssid)];
    if (port == nullptr || result == nullptr) {
        return 0;
    }
    *result = {};
    const Handle wifi(wifi_scan_init(port));
    if (!wifi) {
        return 0;
    }
    wifi_station_record station{};
    wifi_scan_station(wifi.get(), &station);
    result->ssid = "";
    if (isConnected(station)) {
        std::memcpy(ssidText, station.ssid, sizeof ssidText);
        result->ssid = ssidText;
    }
    result->signalDbm = station.signal_dbm;
    result->rxPackets = station.rx_packets;
    result->txPackets = station.tx_packets;
    return 1;
}
