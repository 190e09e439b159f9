// The Wi-Fi functions against nl80211 with the kernel's simulated radios, compared with `iw`. Each
// test loads the radios anew, and so runs on the emulated board only.
#include <array>
#include <map>

#include "console-manager/wifi.h"
#include "support/sandbox.h"
#include "wifi/handle.h"

namespace {

// wlan0 is the console's port, and wlan4 another one; wlan1 to wlan3 are access points, the last
// one with a hidden name. The MAC address of each is 02:00:00:00:NUMBER:00.
class Radios : public Sandbox {
  protected:
    void SetUp() override {
        run("modprobe mac80211_hwsim radios=5");
        std::string files;
        for (const std::string own : {"wlan1\nssid=depot\nchannel=1", "wlan2\nssid=yard\nchannel=6",
                                      "wlan3\nchannel=11\nssid=secret\nignore_broadcast_ssid=1"}) {
            const std::string name = own.substr(0, 5);
            // A scan listens on a channel for one beacon or, of a few networks, for several.
            std::string content = "driver=nl80211\ninterface=" + own + "\nbeacon_int=";
            content += others == 0 ? "25" : "100";
            for (int i = 0; i < others; ++i) {
                const std::string other = name + "_" + std::to_string(i);
                content += "\nbss=" + other + "\nssid=" + other;
            }
            files += " /tmp/" + name;
            writeFile("/tmp/" + name, content + "\n");
        }
        // It returns when all access points are on the air.
        run("hostapd -B -P /tmp/pid" + files +
            " >/tmp/log && ip link set wlan0 up && ip link set wlan4 up");
        wifi.reset(wifi_scan_init("wlan0"));
    }
    void TearDown() override {
        writeFile("/tmp/stop", "");
        run("p=$(cat /tmp/pid); kill $p; while test -e /proc/$p || pgrep iw; do :; done; "
            "rm /tmp/stop; rmmod mac80211_hwsim mac80211 cfg80211");
    }

    // Runs a command again and again, in another program, until the test ends.
    static void keepRunning(const std::string& command) {
        run("while test ! -e /tmp/stop; do " + command + "; done >/dev/null 2>&1 &");
    }

    // Repeats what a slow board may time out.
    static void join(const std::string& network) {
        run("until iw dev wlan0 link | grep -q ^Connected; do iw dev wlan0 connect -w " + network +
            "; done");
    }

    static std::string wifiStatus(const char* port) {
        CML_WifiStatus status{"untouched", 7, 7, 7};
        const int32_t result = CML_getWifiStatus(port, &status);
        return joined(result, status.ssid == nullptr ? "null" : status.ssid, status.signalDbm,
                      status.rxPackets, status.txPackets);
    }

    // Scans for the three networks, which are those that iw shows.
    void scan() {
        ASSERT_EQ(wifi_scan_all(wifi.get(), records.data(), 3), 3);
        std::string lines;
        for (const auto& r : records) {
            lines += joined(int{r.bssid[4]}, r.frequency, r.signal_mbm, r.ssid) + "\n";
        }
        EXPECT_EQ(
            run("sort <<'end'\n" + lines + "end\n"),
            run("iw dev wlan0 scan dump | sed -n 's/^BSS 02:00:00:00:0\\(.\\):00.*/\\1/p; "
                "s/^\\tfreq: \\([0-9]*\\).*/\\1/p; s/^\\tSSID: *//p; "
                "s/^\\tsignal: \\(.*\\)[.]\\(..\\) dBm$/\\1\\2/p' | paste -d' ' - - - - | sort"));
    }

    // Packets of the link, "rx" or "tx".
    static int64_t shownByIw(const std::string& direction) {
        return std::stoll(
            run("iw dev wlan0 station dump | sed -n 's/^\\t" + direction + " packets:\\t//p'"));
    }

    int others = 0;  // networks of each access point in addition to the first
    Handle wifi;
    std::array<wifi_bss_record, 3> records{};
    wifi_station_record station{{}, "", 7, 7, 7, 7, 7};
};

TEST_F(Radios, AnswersAreThoseOfIw) {
    const std::string none = "1  0 0 0";
    EXPECT_EQ(wifiStatus("wlan0"), none) << "no network known";
    EXPECT_EQ(wifiStatus("lo"), none) << "a wired port";
    EXPECT_EQ(wifiStatus("nothing"), "0 null 0 0 0");
    const Handle wired(wifi_scan_init("lo"));
    EXPECT_EQ(wifi_scan_all(wired.get(), records.data(), 3), -1);
    EXPECT_EQ(wifi_scan_station(wired.get(), &station), 0);
    scan();
    EXPECT_EQ(wifi_scan_station(wifi.get(), &station), 1);
    EXPECT_EQ(joined(station.ssid, station.status, station.rx_packets),
              joined(records[0].ssid, -1, 7));
    // A network that the kernel doesn't list first.
    const std::string other = records[0].ssid == std::string("depot") ? "yard" : "depot";
    join(other);
    const int64_t received = shownByIw("rx"), sent = shownByIw("tx");
    EXPECT_EQ(wifi_scan_station(wifi.get(), &station), 1);
    EXPECT_EQ(wifiStatus("wlan0").find("1 " + other + " -30 "), 0U);
    // Beacons arrive all the time.
    EXPECT_TRUE(0 < received && received <= station.rx_packets &&
                station.rx_packets <= shownByIw("rx"));
    EXPECT_TRUE(0 < sent && sent <= station.tx_packets && station.tx_packets <= shownByIw("tx"));
    EXPECT_EQ(joined(int{station.signal_dbm}, int{station.signal_avg_dbm}), "-30 -30");
    const std::string bssid = "02:00:00:00:0" + std::to_string(station.bssid[4]) + ":00";
    EXPECT_EQ(run("iw dev wlan0 station dump").find("Station " + bssid), 0U);
    EXPECT_EQ(joined(station.ssid, station.status), other + " 1");
    scan();
    EXPECT_EQ(joined(records[0].ssid, records[0].status, records[1].status), other + " 1 -1");
    run("iw dev wlan0 disconnect");
    EXPECT_EQ(wifiStatus("wlan0"), none);
}

TEST_F(Radios, OnlyThisPortsScanThatIsGivenUpEndsTheCall) {
    keepRunning("iw dev wlan4 scan trigger && iw dev wlan4 scan abort");
    scan();
    scan();
    keepRunning("iw dev wlan0 scan abort");
    EXPECT_EQ(wifi_scan_all(wifi.get(), records.data(), 3), -1);
}

class Crowd : public Radios {
  protected:
    Crowd() { others = 16; }
};

TEST_F(Crowd, AnswersStayTrueWhileAnotherProgramScans) {
    const std::string shown = "iw dev wlan0 scan dump | grep -c ^BSS",
                      trigger = "iw dev wlan0 scan trigger freq 2412 2437 2462";
    // Joins one of the last networks, which a list that breaks off lacks.
    run("until test $(" + shown + ") = 51; do " + trigger + "; done; iw dev wlan0 scan abort || :");
    join("wlan3_15");
    keepRunning(trigger);
    std::map<std::string, int> answers;
    for (int i = 0; i < 60; ++i) {
        CML_WifiStatus status{};
        CML_getWifiStatus("wlan0", &status);
        wifi_scan_station(wifi.get(), &station);
        ++answers[joined(status.ssid, status.signalDbm, station.ssid, station.status)];
    }
    EXPECT_EQ(answers, (std::map<std::string, int>{{"wlan3_15 -30 wlan3_15 1", 60}}));
    // Two lists at once: the first often reads the end of a scan and the beginning of the next.
    for (int i = 0; i < 3; ++i) {
        const int count = std::stoi(run(shown));
        EXPECT_GE(wifi_scan_all(wifi.get(), records.data(), 1), count);
        EXPECT_GE(wifi_scan_all(wifi.get(), records.data(), 1), count);
        EXPECT_STREQ(records[0].ssid, "wlan3_15");
    }
}

}  // namespace
