#include <console-manager/wifi.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>

#include "commands.h"
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

// Of a station to which the port has no link all but connected is null.
Json linkOf(const wifi_station_record& station) {
    const bool connected = isJoined(station.status);
    const auto known = [&](const Json& value) { return connected ? value : Json(); };
    return {{"connected", connected},
            {"ssid", known(orNull(station.ssid))},
            {"bssid", known(bssidText(station.bssid))},
            {"signal_dbm", known(station.signal_dbm)},
            {"rx_packets", known(station.rx_packets)},
            {"tx_packets", known(station.tx_packets)}};
}

// Asks in a process that ends, as most failures of Wi-Fi end it anyhow. The answer follows what the
// library says on stderr, in a line of its own.
[[noreturn]] void answer(const char* port) {
    wifi_station_record station{};
    station.status = CML_BSS_STATUS_NONE;
    if (wifi_data* const wifi = wifi_scan_init(port); wifi != nullptr) {
        wifi_scan_station(wifi, &station);
        std::fprintf(stderr, "\n%s", jsonText(linkOf(station), -1).c_str());
    }
    _exit(0);
}

Json readLink(const std::string& port) {
    // The library's exit in the child would write out once more what is in the buffer.
    std::fflush(stdout);
    const auto close = [](FILE* file) { std::fclose(file); };
    const std::unique_ptr<FILE, decltype(close)> said(
        fdopen(memfd_create("said", MFD_CLOEXEC), "r+"), close);
    const pid_t child = said ? fork() : -1;
    if (child == 0) {
        dup2(fileno(said.get()), STDERR_FILENO);
        answer(port.c_str());
    }
    std::string last = child < 0 ? std::strerror(errno) : "no answer";
    if (child > 0) {
        waitpid(child, nullptr, 0);
        std::rewind(said.get());
        for (char line[1024]; std::fgets(line, sizeof line, said.get()) != nullptr;) {
            last = *line == '\n' ? last : std::string(line, std::strcspn(line, "\n"));
        }
    }
    const Json link = Json::parse(last, nullptr, false);
    Json told = {{"port", port}};
    told.update(link.is_object() ? link : linkOf({}));
    told["error"] = link.is_object() ? Json() : Json(last);
    return told;
}

// A bar from -100 dBm to -50 dBm, and the figure.
Cell signalCell(const Json& dbm) {
    if (dbm.is_null()) {
        return "";
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

// What the kernel listed, strongest first.
Json networksOf(std::vector<wifi_bss_record> records) {
    std::ranges::stable_sort(records, std::greater(), &wifi_bss_record::signal_mbm);
    Json networks = Json::array();
    for (const wifi_bss_record& record : records) {
        networks.push_back({{"ssid", orNull(record.ssid)},
                            {"bssid", bssidText(record.bssid)},
                            {"frequency_mhz", record.frequency},
                            {"signal_dbm", record.signal_mbm / 100.0},
                            {"seen_ms_ago", record.seen_ms_ago},
                            {"joined", isJoined(record.status)}});
    }
    return networks;
}

std::string showNetworks(const Json& told) {
    std::vector<Row> rows;
    for (const Json& network : told["networks"]) {
        rows.push_back({network["joined"] == true ? "*" : "", ssidCell(network["ssid"]),
                        signalCell(network["signal_dbm"]), Cell(network["bssid"]),
                        Cell(network["frequency_mhz"]), Cell(network["seen_ms_ago"])});
    }
    const Json& more = told["not_shown"];
    return tableOf({"", "Network", "Signal", "Access point", ">MHz", ">Seen ms ago"}, rows) +
           (more == 0 ? "" : paragraph(more.dump() + " more are not shown"));
}

void readWifi(Json& report, const Json& ports) {
    Json& told = report["wifi"] = ports.is_null() ? Json() : Json::array();
    for (const std::string port : ports) {
        if (std::filesystem::exists("/sys/class/net/" + port + "/phy80211")) {
            told.push_back(readLink(port));
        }
    }
}

std::string showWifi(const Json& report) {
    std::vector<Row> rows;
    const Json& told = report["wifi"];
    for (const Json& link : told) {
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
                ? paragraph({told.is_null() ? "no ports are known" : "no wireless port", kDim})
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
    // The cursor stays in front, so that a message of the library takes the line.
    const bool visible = isatty(STDERR_FILENO) == 1;
    std::fputs(visible ? "Scanning...\r" : "", stderr);
    std::vector<wifi_bss_record> records(kMostNetworks);
    const int32_t count = wifi_scan_all(wifi.get(), records.data(), kMostNetworks);
    std::fputs(visible ? "           \r" : "", stderr);
    if (count < 0) {
        return fail("can't scan with " + port + ": it is down, not wireless or busy");
    }
    records.resize(static_cast<size_t>(std::min(count, kMostNetworks)));
    const Json told = {{"port", port},
                       {"networks", networksOf(std::move(records))},
                       {"not_shown", std::max(count - kMostNetworks, 0)}};
    print(arguments.has('j') ? jsonText(told) : showNetworks(told));
    return kDone;
}
