#include <console-manager/wifi.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <memory>
#include <thread>

#include "access_point.h"
#include "commands.h"
#include "measure.h"
#include "table.h"
#include "terminal.h"

namespace {

constexpr int32_t kMost = 500;

// The cursor stays in front, so that a message of the library takes the line.
void tick(const std::stop_token& stop, const sigset_t& deadly) {
    constexpr timespec kPause{0, 100'000'000};
    int signal = -1;
    for (size_t i = 0; signal < 0 && !stop.stop_requested(); ++i) {
        std::fprintf(stderr, "Scanning%-3s\r", std::string(i / 4 % 4, '.').c_str());
        signal = sigtimedwait(&deadly, nullptr, &kPause);
    }
    std::fprintf(stderr, "%11s\r", "");
    if (signal > 0) {
        std::raise(signal);
        pthread_sigmask(SIG_UNBLOCK, &deadly, nullptr);
    }
}

// Scans, and shows that on a terminal until it is over, or the library or a signal ends the
// process.
int32_t scanVisibly(wifi_data* wifi, std::vector<wifi_bss_record>& networks) {
    static std::jthread ticker;  // static: exit joins it
    sigset_t deadly;
    sigemptyset(&deadly);
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
        sigaddset(&deadly, signal);
    }
    if (isatty(STDERR_FILENO) == 1) {
        pthread_sigmask(SIG_BLOCK, &deadly, nullptr);
        ticker = std::jthread(tick, deadly);
    }
    const int32_t count =
        wifi_scan_all(wifi, networks.data(), static_cast<int32_t>(networks.size()));
    ticker = {};
    pthread_sigmask(SIG_UNBLOCK, &deadly, nullptr);
    return count;
}

// Strongest first.
Json networksOf(std::vector<wifi_bss_record> records) {
    std::stable_sort(records.begin(), records.end(),
                     [](const wifi_bss_record& a, const wifi_bss_record& b) {
                         return a.signal_mbm > b.signal_mbm;
                     });
    Json networks = Json::array();
    for (const wifi_bss_record& record : records) {
        networks.push_back({{"ssid", *record.ssid == '\0' ? Json() : Json(record.ssid)},
                            {"bssid", bssidText(record.bssid)},
                            {"frequency_mhz", record.frequency},
                            {"signal_dbm", record.signal_mbm / 100.0},
                            {"seen_ms_ago", record.seen_ms_ago},
                            {"joined", isJoined(record.status)}});
    }
    return networks;
}

std::string showNetworks(const Json& networks) {
    Table table({"", "Network", "Signal", ">", ">MHz", "Access point", ">Seen"});
    for (const Json& network : networks) {
        const double dbm = network["signal_dbm"];
        table.add({network["joined"] == true ? "*" : "",
                   network["ssid"].is_null() ? Cell("(hidden)", kDim) : cellOf(network["ssid"]),
                   signalBar(dbm), std::to_string(std::lround(dbm)) + " dBm",
                   cellOf(network["frequency_mhz"]), cellOf(network["bssid"]),
                   network["seen_ms_ago"].dump() + " ms ago"});
    }
    return table.text();
}

}  // namespace

int scanWifi(const Arguments& arguments) {
    const std::string& port = arguments.words[1];
    const std::unique_ptr<wifi_data, decltype(&wifi_scan_close)> wifi(wifi_scan_init(port.c_str()),
                                                                      wifi_scan_close);
    if (!wifi) {
        return kFailed;
    }
    std::vector<wifi_bss_record> records(kMost);
    const int32_t count = scanVisibly(wifi.get(), records);
    if (count < 0) {
        return fail("can't scan with " + port + ": it is down, not wireless or busy");
    }
    records.resize(static_cast<size_t>(std::min(count, kMost)));
    const Json networks = networksOf(std::move(records));
    if (arguments.has('j')) {
        printJson(Json{
            {"port", port}, {"networks", networks}, {"not_shown", std::max(count - kMost, 0)}});
        return kDone;
    }
    print(showNetworks(networks));
    if (count > kMost) {
        print(paragraph(std::to_string(count - kMost) + " more are not shown"));
    }
    return kDone;
}
