// The Wi-Fi functions against nl80211 with the kernel's simulated radios, beside what `iw` tells of
// them. Each test loads the radios anew, and so runs on the emulated board only.
#include <dlfcn.h>
#include <fcntl.h>
#include <libmnl/libmnl.h>
#include <linux/nl80211.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <sstream>

#include "console-manager/wifi.h"
#include "support/sandbox.h"
#include "wifi/handle.h"

// Commands, each run once: when the library has found no notification and is about to start a scan,
// and when it is about to wait for one.
static std::string beforeItScans;
static std::string beforeItWaits;

static void runOnce(std::string& command) {
    const int failure = errno;
    if (!command.empty()) {
        EXPECT_EQ(std::system(command.c_str()), 0);
    }
    command.clear();
    errno = failure;
}

extern "C" ssize_t mnl_socket_recvfrom(const mnl_socket* socket, void* buffer, size_t size) {
    static const auto next =
        reinterpret_cast<decltype(&mnl_socket_recvfrom)>(dlsym(RTLD_NEXT, "mnl_socket_recvfrom"));
    static const mnl_socket* notifying = nullptr;  // the one that doesn't always wait
    const bool waits = (fcntl(mnl_socket_get_fd(socket), F_GETFL) & O_NONBLOCK) == 0;
    if (waits && socket == notifying) {
        runOnce(beforeItWaits);
    }
    const ssize_t received = next(socket, buffer, size);
    if (!waits && received < 0) {
        notifying = socket;
        runOnce(beforeItScans);
    }
    return received;
}

namespace {

std::string bssidText(const uint8_t (&bssid)[6]) {
    char text[18];
    std::snprintf(text, sizeof text, "%02x:%02x:%02x:%02x:%02x:%02x", bssid[0], bssid[1], bssid[2],
                  bssid[3], bssid[4], bssid[5]);
    return text;
}

// wlan0 is the console's port, and wlan4 another one; wlan1 to wlan3 are access points, the last
// one without its name in the air.
class Radios : public Sandbox {
  protected:
    void SetUp() override {
        run("modprobe mac80211_hwsim radios=5");
        std::string files;
        for (const std::string own : {"wlan1\nssid=depot\nchannel=1", "wlan2\nssid=yard\nchannel=6",
                                      "wlan3\nchannel=11\nssid=secret\nignore_broadcast_ssid=1"}) {
            files += " /tmp/" + own.substr(0, 5);
            // Several beacons in the time for which a scan listens on a channel.
            writeFile("/tmp/" + own.substr(0, 5),
                      "driver=nl80211\nbeacon_int=25\ninterface=" + own + "\n");
        }
        // It comes back when all access points are on the air.
        run("hostapd -B -P /tmp/pid" + files +
            " >/tmp/log && ip link set wlan0 up && ip link set wlan4 up");
        wifi.reset(wifi_scan_init("wlan0"));
    }
    void TearDown() override {
        run("p=$(cat /tmp/pid); kill $p; while test -e /proc/$p; do :; done; "
            "rmmod mac80211_hwsim mac80211 cfg80211");
    }

    static std::string wifiStatus(const char* port) {
        CML_WifiStatus status{"untouched", 7, 7, 7};
        const int32_t result = CML_getWifiStatus(port, &status);
        return joined(result, status.ssid == nullptr ? "null" : status.ssid, status.signalDbm,
                      status.rxPackets, status.txPackets);
    }

    // Scans for the three networks; they are those that iw shows.
    void scan() {
        ASSERT_EQ(wifi_scan_all(wifi.get(), records.data(), 3), 3);
        std::string lines;
        for (const auto& record : records) {
            char line[100];
            std::snprintf(line, sizeof line, " %u %.2f %s\n", record.frequency,
                          record.signal_mbm / 100.0, record.ssid);
            lines += bssidText(record.bssid) + line;
        }
        EXPECT_EQ(run("sort <<'end'\n" + lines + "end\n"),
                  run("iw dev wlan0 scan dump | sed -n 's/^BSS \\([0-9a-f:]*\\).*/\\1/p; "
                      "s/^\\tfreq: \\([0-9]*\\).*/\\1/p; s/^\\tsignal: \\(.*\\) dBm$/\\1/p; "
                      "s/^\\tSSID: *//p' | paste -d' ' - - - - | sort"));
    }

    // Of the link that iw shows: packets received, packets sent, signal and its average.
    static std::array<int64_t, 4> linkShownByIw() {
        std::istringstream shown(
            run("iw dev wlan0 station dump | sed -n 's/^\\t[rt]x packets:\\t//p; "
                "s/^\\tsignal.*:[ \\t]*\\(-[0-9]*\\).*/\\1/p'"));
        std::array<int64_t, 4> figures{};
        shown >> figures[0] >> figures[1] >> figures[2] >> figures[3];
        EXPECT_TRUE(shown) << shown.str();
        return figures;
    }

    Handle wifi;
    std::array<wifi_bss_record, 3> records{};
    wifi_station_record station{{}, "", 7, 7, 7, 7, 7};
};

TEST(WithoutRadios, AKernelWithoutWifiEndsTheProcess) {
    const testing::Matcher<const std::string&> line =
        testing::MatchesRegex("CML: wifi-scan: GetFamilyAndScanId failed: .+\n");
    CML_WifiStatus status;
    EXPECT_EXIT(wifi_scan_init("lo"), testing::ExitedWithCode(1), line);
    EXPECT_EXIT(CML_getWifiStatus("lo", &status), testing::ExitedWithCode(1), line);
}

TEST_F(Radios, AScanFindsWhatTheKernelLists) {
    scan();
    const auto isHidden = [](const auto& record) { return *record.ssid == '\0'; };
    EXPECT_EQ(std::ranges::count_if(records, isHidden), 1);
    // One that the kernel doesn't list first.
    const std::string joined = records[0].ssid == std::string("depot") ? "yard" : "depot";
    run("iw dev wlan0 connect -w " + joined);
    scan();
    EXPECT_EQ(records[0].ssid, joined);
    EXPECT_EQ(records[0].status, 1);
    EXPECT_EQ(records[1].status, -1);
    records = {};
    EXPECT_EQ(wifi_scan_all(wifi.get(), records.data(), 1), 3);
    EXPECT_EQ(records[1].frequency, 0U);
}

TEST_F(Radios, TheLinkIsThatOfTheStationDump) {
    run("iw dev wlan0 connect -w yard");
    const auto before = linkShownByIw();
    CML_WifiStatus status{};
    EXPECT_EQ(wifi_scan_station(wifi.get(), &station), 1);
    EXPECT_EQ(CML_getWifiStatus("wlan0", &status), 1);
    const auto after = linkShownByIw();
    // Beacons arrive all the time.
    const std::array<int64_t, 4> received{before[0], station.rx_packets, status.rxPackets,
                                          after[0]};
    const std::array<int64_t, 4> sent{before[1], station.tx_packets, status.txPackets, after[1]};
    EXPECT_TRUE(std::ranges::is_sorted(received)) << testing::PrintToString(received);
    EXPECT_TRUE(std::ranges::is_sorted(sent)) << testing::PrintToString(sent);
    EXPECT_EQ(run("iw dev wlan0 station dump").find("Station " + bssidText(station.bssid)), 0U);
    EXPECT_EQ(std::string(station.ssid) + status.ssid, "yardyard");
    EXPECT_EQ(station.status, 1);
    EXPECT_EQ(station.signal_dbm, before[2]);
    EXPECT_EQ(station.signal_avg_dbm, before[3]);
    EXPECT_EQ(status.signalDbm, before[2]);
    run("iw dev wlan0 disconnect");
    EXPECT_EQ(wifiStatus("wlan0"), "1  0 0 0");
}

TEST_F(Radios, APortWithoutALinkHasNoFigures) {
    EXPECT_EQ(wifiStatus("wlan0"), "1  0 0 0") << "no network known";
    EXPECT_EQ(wifiStatus("lo"), "1  0 0 0") << "a wired port";
    EXPECT_EQ(wifiStatus("nothing"), "0 null 0 0 0");
    const Handle wired(wifi_scan_init("lo"));
    EXPECT_EQ(wifi_scan_all(wired.get(), records.data(), 3), -1);
    EXPECT_EQ(wifi_scan_station(wired.get(), &station), 0);
    scan();
    EXPECT_EQ(wifi_scan_station(wifi.get(), &station), 1);
    EXPECT_EQ(station.status, -1);
    EXPECT_EQ(station.rx_packets, 7U);
}

TEST_F(Radios, APortTakenDownEndsTheScan) {
    beforeItWaits = "ip link set wlan0 down";
    EXPECT_EQ(wifi_scan_all(wifi.get(), records.data(), 3), -1);
    EXPECT_EQ(beforeItWaits, "") << "no scan had started";
    run("ip link set wlan0 up");
    scan();
}

TEST_F(Radios, AScanOfAnotherPortThatIsGivenUpDoesNotEndThisOne) {
    const std::string another = "ip link set wlan4 up && iw dev wlan4 scan trigger",
                      givenUp = " && ip link set wlan4 down", begun = "iw dev wlan0 scan trigger";
    const std::array<std::string, 3> situations[] = {
        {"", "", another + givenUp},                   // in the wait for its own
        {begun + " && " + another + givenUp, "", ""},  // before the call, beside the port's own
        {another, "", "true" + givenUp},               // in the wait for that one alone
        {"", begun, ""},                               // none, but the port's own began meanwhile
    };
    for (const auto& [before, beforeScan, beforeWait] : situations) {
        run(before);
        beforeItScans = beforeScan;
        beforeItWaits = beforeWait;
        scan();
        EXPECT_EQ(beforeItScans + beforeItWaits, "");
    }
}

}  // namespace
