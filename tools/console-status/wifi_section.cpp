#include <console-manager/wifi.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "port_names.h"
#include "sections.h"
#include "table.h"

namespace {

bool isWireless(const std::string& port) {
    return std::filesystem::exists("/sys/class/net/" + port + "/phy80211");
}

// What a child process passes on.
struct Answer {
    char ssid[33];
    int32_t signalDbm;
    uint32_t rxPackets;
    uint32_t txPackets;
};

[[noreturn]] void passOn(const char* port, int pipeEnd) {
    CML_WifiStatus status;
    if (CML_getWifiStatus(port, &status) == 0) {
        _exit(1);
    }
    Answer answer{{}, status.signalDbm, status.rxPackets, status.txPackets};
    std::strncpy(answer.ssid, status.ssid, sizeof answer.ssid - 1);
    _exit(write(pipeEnd, &answer, sizeof answer) == sizeof answer ? 0 : 1);
}

// Asks in a child process, because most failures of Wi-Fi end the process that asks. Nothing if
// there is no answer; why not has been told on stderr then.
std::optional<Answer> ask(const std::string& port) {
    // The child's end would write out what is still in the buffer a second time.
    std::fflush(stdout);
    int ends[2];
    if (pipe(ends) != 0) {
        std::perror("console-status: pipe");
        return std::nullopt;
    }
    const pid_t child = fork();
    if (child == 0) {
        passOn(port.c_str(), ends[1]);
    }
    if (child < 0) {
        std::perror("console-status: fork");
    }
    close(ends[1]);
    Answer answer;
    const bool answered = child > 0 && read(ends[0], &answer, sizeof answer) == sizeof answer;
    close(ends[0]);
    if (child > 0) {
        waitpid(child, nullptr, 0);
    }
    return answered ? std::optional(answer) : std::nullopt;
}

std::string macAddress(const uint8_t (&bytes)[6]) {
    char text[18];
    std::snprintf(text, sizeof text, "%02x:%02x:%02x:%02x:%02x:%02x", bytes[0], bytes[1], bytes[2],
                  bytes[3], bytes[4], bytes[5]);
    return text;
}

void printNetworks(std::vector<wifi_bss_record>& networks) {
    std::stable_sort(networks.begin(), networks.end(),
                     [](const wifi_bss_record& a, const wifi_bss_record& b) {
                         return a.signal_mbm > b.signal_mbm;
                     });
    Table table({"Network", "Access point", ">MHz", ">Signal", ">Seen", "Joined"});
    for (const wifi_bss_record& network : networks) {
        const bool joined = network.status == 1 || network.status == 2;
        table.add({*network.ssid == '\0' ? "(hidden)" : network.ssid, macAddress(network.bssid),
                   std::to_string(network.frequency),
                   std::to_string(network.signal_mbm / 100) + " dBm",
                   std::to_string(network.seen_ms_ago) + " ms ago", joined ? "yes" : ""});
    }
    table.print();
}

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

}  // namespace

void reportWifi() {
    printTitle("Wi-Fi");
    Table table({"Port", "Network", ">Signal", ">Packets in", ">Packets out"});
    bool any = false;
    for (const std::string& port : portNames()) {
        if (!isWireless(port)) {
            continue;
        }
        any = true;
        const auto status = ask(port);
        if (!status) {
            table.add({port, "?"});
            continue;
        }
        table.add({port, *status->ssid == '\0' ? "-" : status->ssid,
                   std::to_string(status->signalDbm) + " dBm", std::to_string(status->rxPackets),
                   std::to_string(status->txPackets)});
    }
    if (!any) {
        std::puts("  There is no wireless port.");
        return;
    }
    table.print();
}

int scanWifi(const std::string& port) {
    constexpr int32_t kMost = 500;
    const std::unique_ptr<wifi_data, decltype(&wifi_scan_close)> wifi(wifi_scan_init(port.c_str()),
                                                                      wifi_scan_close);
    if (!wifi) {
        return 1;
    }
    std::vector<wifi_bss_record> networks(kMost);
    const int32_t count = scanVisibly(wifi.get(), networks);
    if (count < 0) {
        std::fprintf(stderr,
                     "console-status: can't scan with %s: it is down, not wireless or busy\n",
                     port.c_str());
        return 1;
    }
    networks.resize(static_cast<size_t>(std::min(count, kMost)));
    printNetworks(networks);
    if (count > kMost) {
        std::printf("  %d more are not shown.\n", count - kMost);
    }
    return 0;
}
