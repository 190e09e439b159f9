#include <console-manager/wifi.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <sstream>

#include "commands.h"
#include "messages.h"
#include "report.h"
#include "table.h"

namespace {

constexpr int32_t kMostNetworks = 2000;

bool isJoined(int32_t status) {
    return status == CML_BSS_STATUS_ASSOCIATED || status == CML_BSS_STATUS_IBSS_JOINED;
}

std::string bssidText(const uint8_t (&bssid)[6]) {
    char text[18];
    std::snprintf(text, sizeof text, "%02x:%02x:%02x:%02x:%02x:%02x", bssid[0], bssid[1], bssid[2],
                  bssid[3], bssid[4], bssid[5]);
    return text;
}

// A figure that the kernel didn't send keeps its value from before the call.
constexpr wifi_bss_record kUnsent = {{}, 0, "", CML_BSS_STATUS_NONE, INT32_MIN, UINT32_MAX};
constexpr wifi_station_record kUnsentLink = {{},       "",         CML_BSS_STATUS_NONE, INT8_MIN,
                                             INT8_MIN, UINT32_MAX, UINT32_MAX};

template <typename Value>
Json sent(const Value& value, const Value& unsent) {
    return value == unsent ? Json() : Json(value);
}

// Without a link there are no figures.
Json linkOf(const std::string& port, const wifi_station_record& station) {
    const bool connected = isJoined(station.status);
    const wifi_station_record& known = connected ? station : kUnsentLink;
    return {{"port", port},
            {"connected", connected},
            {"ssid", orNull(known.ssid)},
            {"bssid", connected ? Json(bssidText(known.bssid)) : Json()},
            {"signal_dbm", sent(known.signal_dbm, kUnsentLink.signal_dbm)},
            {"rx_packets", sent(known.rx_packets, kUnsentLink.rx_packets)},
            {"tx_packets", sent(known.tx_packets, kUnsentLink.tx_packets)},
            {"error", nullptr}};
}

// Reads a link in a child process, because most failures of Wi-Fi end the process. The child's JSON
// follows the messages of the library on a separate line.
Json readLink(const std::string& port) {
    std::istringstream said(saidByChild([&] {
        wifi_station_record station = kUnsentLink;
        if (wifi_data* const wifi = wifi_scan_init(port.c_str()); wifi != nullptr) {
            wifi_scan_station(wifi, &station);
            std::fprintf(stderr, "\n%s", jsonText(linkOf(port, station), -1).c_str());
        }
    }));
    std::string last = "no answer";
    for (std::string line; std::getline(said, line);) {
        last = line.empty() ? last : line;
    }
    Json link = Json::parse(last, nullptr, false);
    if (!link.is_object()) {
        link = linkOf(port, kUnsentLink);
        link.update({{"connected", nullptr}, {"error", last}});
    }
    return link;
}

// A bar from -100 dBm to -50 dBm, and the figure.
Cell signalCell(const Json& dbm) {
    if (dbm.is_null()) {
        return Cell(dbm);
    }
    const double quality = (dbm.get<double>() + 100) / 50;
    return {bar(quality, 8) + " " + std::to_string(std::lround(dbm.get<double>())) + " dBm",
            quality > 0.5    ? kGreen
            : quality > 0.25 ? kYellow
                             : kRed};
}

Cell ssidCell(const Json& ssid) {
    return ssid.is_null() ? Cell("(hidden)", kDim) : Cell(ssid);
}

// Sorts the networks, strongest first, those of unknown signal last.
Json networksOf(std::vector<wifi_bss_record> records) {
    std::ranges::stable_sort(records, std::greater(), &wifi_bss_record::signal_mbm);
    Json networks = Json::array();
    for (const wifi_bss_record& record : records) {
        networks.push_back(
            {{"ssid", orNull(record.ssid)},
             {"bssid", bssidText(record.bssid)},
             {"frequency_mhz", sent(record.frequency, kUnsent.frequency)},
             {"signal_dbm",
              record.signal_mbm == kUnsent.signal_mbm ? Json() : Json(record.signal_mbm / 100.0)},
             {"seen_ms_ago", sent(record.seen_ms_ago, kUnsent.seen_ms_ago)},
             {"joined", isJoined(record.status)}});
    }
    return networks;
}

std::string showNetworks(const Json& scan) {
    std::vector<Row> rows;
    for (const Json& network : scan["networks"]) {
        rows.push_back({network["joined"] == true ? "*" : "", ssidCell(network["ssid"]),
                        signalCell(network["signal_dbm"]), Cell(network["bssid"]),
                        Cell(network["frequency_mhz"]), Cell(network["seen_ms_ago"])});
    }
    const Json& more = scan["not_shown"];
    return tableOf({"", "Network", "Signal", "Access point", ">MHz", ">Seen ms ago"}, rows) +
           (more == 0 ? "" : paragraph(more.dump() + " more are not shown"));
}

void readWifi(Json& report, const Json& ports) {
    Json& links = report["wifi"] = ports.is_null() ? Json() : Json::array();
    for (const std::string port : ports) {
        if (std::filesystem::exists("/sys/class/net/" + port + "/phy80211")) {
            links.push_back(readLink(port));
        }
    }
}

std::string showWifi(const Json& report) {
    std::vector<Row> rows;
    const Json& links = report["wifi"];
    for (const Json& link : links) {
        rows.push_back({Cell(link["port"]),
                        !link["error"].is_null()     ? Cell(Cell(link["error"]).text, kYellow)
                        : link["connected"] == false ? Cell("not connected", kDim)
                                                     : ssidCell(link["ssid"]),
                        signalCell(link["signal_dbm"]), Cell(link["bssid"]),
                        Cell(link["rx_packets"]), Cell(link["tx_packets"])});
    }
    const Names headings = {"Port",         "Network",     "Signal",
                            "Access point", ">Packets in", ">Packets out"};
    return title("Wi-Fi") +
           (rows.empty()
                ? paragraph({links.is_null() ? "no ports are known" : "no wireless port", kDim})
                : tableOf(headings, rows));
}

}  // namespace

const Section kWifiSection = {"wifi", true, readWifi, showWifi};

int scanWifi(const Arguments& arguments) {
    const std::string& port = arguments.words[1];
    const std::unique_ptr<wifi_data, decltype(&wifi_scan_close)> wifi(wifi_scan_init(port.c_str()),
                                                                      wifi_scan_close);
    if (!wifi) {
        return kFailed;
    }
    showProgress("Scanning...");
    std::vector<wifi_bss_record> records(kMostNetworks, kUnsent);
    const int32_t count = wifi_scan_all(wifi.get(), records.data(), kMostNetworks);
    showProgress("");
    if (count < 0) {
        return fail("can't scan with " + port +
                    ": it is down or not wireless, its radio is busy, its scan was given up, or "
                    "the right to scan (CAP_NET_ADMIN) is missing");
    }
    records.resize(static_cast<size_t>(std::min(count, kMostNetworks)));
    const Json scan = {{"port", port},
                       {"networks", networksOf(std::move(records))},
                       {"not_shown", std::max(count - kMostNetworks, 0)}};
    print(arguments.has('j') ? jsonText(scan, arguments.indent()) : showNetworks(scan));
    return kDone;
}
