// The Wi-Fi functions against nl80211 with the kernel's simulated radios, beside what `iw` tells of
// them. Each test loads the radios anew, and so runs on the emulated board only.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <libmnl/libmnl.h>
#include <linux/genetlink.h>
#include <linux/nl80211.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include "console-manager/wifi.h"
#include "sandbox.h"
#include "wifi/handle.h"

namespace {

std::string whenAScanStarts;  // a command, run as soon as the library has read that a scan started

bool tellsOfAScan(std::span<const char> message) {
    nlmsghdr header;
    if (message.size() < sizeof header + sizeof(genlmsghdr)) {
        return false;
    }
    std::memcpy(&header, message.data(), sizeof header);
    return header.nlmsg_type >= NLMSG_MIN_TYPE &&
           message[sizeof header] == NL80211_CMD_TRIGGER_SCAN;
}

}  // namespace

extern "C" ssize_t mnl_socket_recvfrom(const mnl_socket* socket, void* buffer, size_t size) {
    static const auto next =
        reinterpret_cast<decltype(&mnl_socket_recvfrom)>(dlsym(RTLD_NEXT, "mnl_socket_recvfrom"));
    const ssize_t received = next(socket, buffer, size);
    if (received > 0 && !whenAScanStarts.empty() &&
        tellsOfAScan({static_cast<const char*>(buffer), static_cast<size_t>(received)})) {
        EXPECT_EQ(std::system(whenAScanStarts.c_str()), 0);
        whenAScanStarts.clear();
    }
    return received;
}

namespace {

// wlan0 is the console's port; wlan1 to wlan3 are access points, the last one without its name in
// the air. wire is no Wi-Fi port.
class Radios : public Sandbox {
  protected:
    void SetUp() override {
        remove();
        run("modprobe mac80211_hwsim radios=4 && ip link add wire type veth peer name end");
        const char* const settings[] = {"ssid=depot\nchannel=1", "ssid=yard\nchannel=6",
                                        "ssid=secret\nchannel=11\nignore_broadcast_ssid=1"};
        std::string files;
        for (int radio = 1; const char* own : settings) {
            const std::string port = "wlan" + std::to_string(radio++);
            // Several beacons in the time for which a scan listens on a channel.
            writeFile("/tmp/" + port,
                      "interface=" + port + "\ndriver=nl80211\nbeacon_int=25\n" + own + "\n");
            files += " /tmp/" + port;
        }
        // It comes back when all access points are on the air.
        run("hostapd -B -P /tmp/hostapd.pid" + files +
            " >/tmp/hostapd.log && ip link set wlan0 up");
    }
    void TearDown() override { remove(); }

    // Takes away what a test left, also one that was stopped half-way.
    static void remove() {
        run("if test -e /tmp/hostapd.pid; then p=$(cat /tmp/hostapd.pid); kill $p; "
            "while test -e /proc/$p; do :; done; fi; ip link del wire 2>/dev/null; "
            "rmmod mac80211_hwsim mac80211 cfg80211 2>/dev/null; test ! -e /sys/module/cfg80211");
    }

    static void join(const std::string& ssid) { run("iw dev wlan0 connect -w " + ssid); }

    static std::string bssidText(const uint8_t (&bssid)[6]) {
        char text[18];
        std::snprintf(text, sizeof text, "%02x:%02x:%02x:%02x:%02x:%02x", bssid[0], bssid[1],
                      bssid[2], bssid[3], bssid[4], bssid[5]);
        return text;
    }

    using Lines = std::vector<std::string>;

    // A line for each network: BSSID, frequency, signal, SSID.
    static Lines sortedLines(const std::span<const wifi_bss_record>& records) {
        Lines lines;
        for (const auto& record : records) {
            char signal[16];
            std::snprintf(signal, sizeof signal, "%.2f", record.signal_mbm / 100.0);
            lines.push_back(bssidText(record.bssid) + " " + std::to_string(record.frequency) + " " +
                            signal + " " + record.ssid);
        }
        std::ranges::sort(lines);
        return lines;
    }
    static Lines shownByIw() {
        std::istringstream shown(
            run("iw dev wlan0 scan dump | sed -n 's/^BSS \\([0-9a-f:]*\\).*/\\1/p; "
                "s/^\\tfreq: //p; s/^\\tsignal: \\(.*\\) dBm$/\\1/p; s/^\\tSSID: *//p' | "
                "paste -d' ' - - - -"));
        Lines lines;
        for (std::string line; std::getline(shown, line);) {
            lines.push_back(line);
        }
        std::ranges::sort(lines);
        return lines;
    }

    // Figures of the link: packets received, packets sent, signal and its average.
    static std::array<int64_t, 4> linkShownByIw() {
        std::istringstream shown(
            run("iw dev wlan0 station dump | sed -n 's/^\\t[rt]x packets:\\t//p; "
                "s/^\\tsignal: *\\t*\\(-[0-9]*\\).*/\\1/p; s/^\\tsignal "
                "avg:\\t\\(-[0-9]*\\).*/\\1/p'"));
        std::array<int64_t, 4> figures{};
        for (int64_t& figure : figures) {
            shown >> figure;
        }
        EXPECT_TRUE(shown) << shown.str();
        return figures;
    }

    static std::string wifiStatus(const char* port) {
        CML_WifiStatus status{"untouched", 7, 7, 7};
        const int32_t result = CML_getWifiStatus(port, &status);
        return std::to_string(result) + ": " + (status.ssid == nullptr ? "null" : status.ssid) +
               " " + std::to_string(status.signalDbm) + " " + std::to_string(status.rxPackets) +
               " " + std::to_string(status.txPackets);
    }
};

TEST(WithoutRadios, AKernelWithoutWifiEndsTheProcess) {
    const testing::Matcher<const std::string&> line =
        testing::MatchesRegex("CML: wifi-scan: GetFamilyAndScanId failed: .+\n");
    CML_WifiStatus status;
    EXPECT_EXIT(wifi_scan_init("lo"), testing::ExitedWithCode(1), line);
    EXPECT_EXIT(CML_getWifiStatus("lo", &status), testing::ExitedWithCode(1), line);
    EXPECT_EQ(wifi_scan_init("nothing"), nullptr);
}

TEST_F(Radios, AScanFindsWhatTheKernelLists) {
    const Handle wifi(wifi_scan_init("wlan0"));
    std::array<wifi_bss_record, 8> records{};
    for (int scan = 0; scan < 2; ++scan) {
        ASSERT_EQ(wifi_scan_all(wifi.get(), records.data(), 8), 3);
        const auto lines = sortedLines(std::span(records).first(3));
        EXPECT_EQ(lines, shownByIw());
        EXPECT_TRUE(lines[0].ends_with(" 2412 -30.00 depot") &&
                    lines[1].ends_with(" 2437 -30.00 yard") && lines[2].ends_with(" 2462 -30.00 "))
            << testing::PrintToString(lines);
    }
    EXPECT_EQ(records[0].status, -1);

    // One that the kernel doesn't list first.
    const std::string joined = *records[1].ssid != '\0' ? records[1].ssid : records[2].ssid;
    join(joined);
    ASSERT_EQ(wifi_scan_all(wifi.get(), records.data(), 8), 3);
    EXPECT_EQ(sortedLines(std::span(records).first(3)), shownByIw());
    EXPECT_EQ(records[0].ssid, joined);
    EXPECT_EQ(records[0].status, 1);
    EXPECT_EQ(records[1].status, -1);
    EXPECT_EQ(records[2].status, -1);
    records[0] = {};
    const std::string second = bssidText(records[1].bssid);
    ASSERT_EQ(wifi_scan_all(wifi.get(), records.data(), 1), 3);
    EXPECT_EQ(records[0].ssid, joined);
    EXPECT_EQ(bssidText(records[1].bssid), second);
}

TEST_F(Radios, TheLinkIsThatOfTheStationDump) {
    const Handle wifi(wifi_scan_init("wlan0"));
    join("yard");
    const auto before = linkShownByIw();
    wifi_station_record station{};
    ASSERT_EQ(wifi_scan_station(wifi.get(), &station), 1);
    CML_WifiStatus status{};
    ASSERT_EQ(CML_getWifiStatus("wlan0", &status), 1);
    const auto after = linkShownByIw();

    EXPECT_EQ(bssidText(station.bssid) + "\n",
              run("iw dev wlan0 station dump | sed -n 's/^Station \\([^ ]*\\).*/\\1/p'"));
    EXPECT_STREQ(station.ssid, "yard");
    EXPECT_EQ(station.status, 1);
    EXPECT_STREQ(status.ssid, "yard");
    // Beacons arrive all the time.
    EXPECT_TRUE(before[0] <= station.rx_packets && station.rx_packets <= status.rxPackets &&
                status.rxPackets <= after[0])
        << before[0] << " " << station.rx_packets << " " << status.rxPackets << " " << after[0];
    EXPECT_TRUE(before[1] <= station.tx_packets && station.tx_packets <= status.txPackets &&
                status.txPackets <= after[1])
        << before[1] << " " << station.tx_packets << " " << status.txPackets << " " << after[1];
    EXPECT_GT(before[0], 0);
    EXPECT_EQ(station.signal_dbm, before[2]);
    EXPECT_EQ(station.signal_avg_dbm, before[3]);
    EXPECT_EQ(status.signalDbm, before[2]);

    run("iw dev wlan0 disconnect");
    EXPECT_EQ(wifiStatus("wlan0"), "1:  0 0 0");
}

TEST_F(Radios, APortWithoutALinkHasNoFigures) {
    EXPECT_EQ(wifiStatus("wlan0"), "1:  0 0 0") << "no network known";
    EXPECT_EQ(wifiStatus("wire"), "1:  0 0 0");
    EXPECT_EQ(wifiStatus("nothing"), "0: null 0 0 0");

    wifi_bss_record record{};
    wifi_station_record station{{}, "", 7, 7, 7, 7, 7};
    const Handle wire(wifi_scan_init("wire"));
    EXPECT_EQ(wifi_scan_all(wire.get(), &record, 1), -1);
    EXPECT_EQ(wifi_scan_station(wire.get(), &station), 0);
    EXPECT_EQ(station.status, 7);

    const Handle wifi(wifi_scan_init("wlan0"));
    EXPECT_EQ(wifi_scan_all(wifi.get(), nullptr, 0), 3);
    EXPECT_EQ(wifi_scan_station(wifi.get(), &station), 1);
    EXPECT_EQ(station.status, -1);
    EXPECT_EQ(station.rx_packets, 7U);
    EXPECT_EQ(wifiStatus("wlan0"), "1:  0 0 0") << "networks around";
}

TEST_F(Radios, APortTakenDownEndsTheScan) {
    const Handle wifi(wifi_scan_init("wlan0"));
    whenAScanStarts = "ip link set wlan0 down";
    wifi_bss_record record{};
    testing::internal::CaptureStderr();
    EXPECT_EQ(wifi_scan_all(wifi.get(), &record, 1), -1);
    EXPECT_TRUE(whenAScanStarts.empty()) << "no scan had started";
    EXPECT_EQ(wifi_scan_all(wifi.get(), &record, 1), -1) << "a port that is down";
    testing::internal::GetCapturedStderr();
    run("ip link set wlan0 up");
    EXPECT_EQ(wifi_scan_all(wifi.get(), &record, 1), 3) << "on the same handle";
}

}  // namespace
