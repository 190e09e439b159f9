#include "support/calls.h"

#include <sys/utsname.h>

#include <cmath>

#include "console-manager/device.h"
#include "console-manager/network.h"
#include "console-manager/settings.h"
#include "console-manager/wifi.h"
#include "support/fault.h"
#include "support/nl80211_kernel.h"
#include "support/played_exit.h"
#include "wifi/handle.h"

namespace {

constexpr const char* kNoMemory = "std::bad_alloc";

// Returns the text of a block from the library, and frees it.
std::string takeText(char* block) {
    const std::string text = block == nullptr ? "null" : block;
    std::free(block);
    return text;
}

std::string takeList(char** list) {
    std::string text = list == nullptr ? "null" : "";
    for (const std::string& entry : take(list)) {
        text += entry + ",";
    }
    return text;
}

#define NAMED(function) #function, function

// Returns the two numbers that a function writes over 7 and 8.
template <typename Number>
std::string twoNumbers(int32_t (*ask)(Number*, Number*)) {
    Number first = 7;
    Number second = 8;
    EXPECT_EQ(within(ask, &first, &second), 0);
    return joined(first, second);
}

// A function of a node, which has the icon "x": whether its result is 0, and whether the icon is
// there afterwards.
Call ofIcon(const char* name, int32_t (*call)(const char*), const char* good, const char* failed) {
    const auto run = [=] {
        DAL_CML_setHomeScreenIcon("n", "x");
        const int32_t result = within(call, "n");
        return joined(result == 0, DAL_CML_isHomeScreenIconPresent("n"));
    };
    return {"icon", name, good, {failed}, run};
}

std::vector<Call> settingCalls() {
    const auto text = [] {
        char* icon = nullptr;
        uint32_t length = 0;
        DAL_CML_setHomeScreenIcon("n", "x");
        within(DAL_CML_getHomeScreenIconMalloc, "n", &icon, &length);
        return joined(takeText(icon), length);
    };
    const auto nodes = [] {
        DAL_CML_setHomeScreenIcon("n", "x");
        return takeList(within(DAL_CML_listHomeScreenIconsNodes));
    };
    const auto clear = [] {
        DAL_CML_setTheme(1);
        DAL_CML_setAutoTheme(1);
        const int32_t result = within(DAL_CML_deleteAll);
        return joined(result, DAL_CML_isThemePresent(), DAL_CML_isAutoThemePresent());
    };
    return {ofIcon(NAMED(DAL_CML_isHomeScreenIconPresent), "0 1", "1 1"),
            ofIcon(NAMED(DAL_CML_isHomeScreenIconsNodePresent), "0 1", "1 1"),
            ofIcon(NAMED(DAL_CML_deleteHomeScreenIcon), "1 0", "0 1"),
            {"icon", "DAL_CML_getHomeScreenIconMalloc", "x 1", {"null 0"}, text},
            {"icon", "DAL_CML_listHomeScreenIconsNodes", "n,", {"null"}, nodes},
            {"settings", "DAL_CML_deleteAll", "0 0 0", {"0 0 1", "0 1 0", "0 1 1"}, clear}};
}

// Asks for a port that is running, one without a link, one that is down (its name cut to 15 bytes),
// and an unknown one.
std::string portStatus() {
    std::string all;
    for (const char* const port : {"lo", "lone", "fifteen-letters-", "nothing"}) {
        CML_NetworkPortStatus status{7, 7};
        const int32_t result = within(CML_getNetworkPortStatus, port, &status);
        all += joined(result, status.up, status.running) + ",";
    }
    return all;
}

std::string hostAvailable() {
    const int32_t own = within(CML_getHostAvailable, "127.0.0.1", 2, "lo");
    return joined(own, CML_getHostAvailable("h", -1, ""), CML_getHostAvailable("h", -1, nullptr));
}

// A function that returns a text of a port; the text of an unknown port is empty.
Call portText(const char* name, const char* (*ask)(const char*), const std::string& good,
              const std::vector<Situation>& situations = {}) {
    const auto run = [=] {
        const std::string text = within(ask, "wire");
        return text + ask("wir");
    };
    return {name, name, good, {"", kNoMemory}, run, situations};
}

// clang-format off
std::vector<Call> networkCalls() {
    const std::string counters = "/sys/class/net/wire/statistics/", net = "/sys/class/net";
    const std::string onlyAFile = "mount -t tmpfs none /sys/class && mkdir " + net +
                                  " && touch " + net + "/bonding_masters";
    return {
        {"", "CML_getNetworkPortsList", "fifteen-letters,lo,lone,peer,wire,",
         {"null", "filesystem error"},
         [] { return takeList(within(CML_getNetworkPortsList, 0)); },
         {{"", onlyAFile, "bonding_masters,"}, {"", "rm " + net + "/*", "null"},
          {"", "rmdir " + net, "filesystem error"},
          {"", "umount /sys/class", "fifteen-letters,lo,lone,peer,wire,"}}},
        {"", "CML_getNetworkPortsList_active", "lo,peer,wire,",
         {"null", "lo,peer,", "lo,wire,", "peer,wire,", "filesystem error"},
         [] { return takeList(within(CML_getNetworkPortsList, -1)); },
         {{"", onlyAFile, "null"}, {"", "umount /sys/class", "lo,peer,wire,"}}},
        {"", "CML_checkNetworkPortActive", "1", {"0"},
         [] { return joined(within(CML_checkNetworkPortActive, "lo")); }},
        {"", "CML_getNetworkPortStatus", "1 1 1,1 1 0,1 0 0,0 0 0,",
         {"0 0 0,1 1 0,1 0 0,0 0 0,", "1 1 1,0 0 0,1 0 0,0 0 0,", "1 1 1,1 1 0,0 0 0,0 0 0,"},
         portStatus},
        portText(NAMED(CML_getNetworkPortIPv4Address), "192.0.2.5"),
        portText(NAMED(CML_getNetworkPortIPv4NetMask), "255.255.255.128"),
        portText(NAMED(CML_getNetworkPortIPv6Address), "2001:db8::5"),
        portText(NAMED(CML_getNetworkPortMACAddress), "02:00:5e:10:00:01"),
        portText(NAMED(CML_getNetworkPortIPv4Gateway), "192.0.2.1", {
            {"", "ip addr add 198.51.100.1/24 dev peer && "
                 "ip route replace default via 198.51.100.9 dev peer", ""},
            {"", "ip route add default via 192.0.2.1 table 100 dev wire && "
                 "ip -6 route add default via 2001:db8::1 dev wire", ""},
            {"", "ip route add 203.0.113.0/24 via 192.0.2.2 dev wire", "192.0.2.2"},
            {"", "seq 200 | sed 's,.*,route add 10.0.&.0/24 dev lo,' | ip -batch -", ""}}),
        {"", "CML_getNetworkPortInfo", "12 34", {"0 34", "12 0", kNoMemory},
         [] { return twoNumbers<int32_t>([](int32_t* received, int32_t* sent) {
             return CML_getNetworkPortInfo("wire", received, sent), 0; }); },
         {{counters + "rx_bytes", " 2147483647 12\n", "2147483647 34"},
          {counters + "tx_bytes", "18446744073709551615\n", "2147483647 0"},
          {counters + "rx_bytes", "many", "0 0"}}},
        // Wait statuses: 32512 of exit status 127, a shell that could not be run; 768 of 3.
        {"", "CML_getHostAvailable", "0 0 0", {"-1 0 0", "32512 0 0", kNoMemory}, hostAvailable,
         {{"ping", "test /proc/self/fd/1 -ef /dev/null && test /proc/self/fd/2 -ef /dev/null "
                   "&& exit 3", "768 768 768"},
          {"ping", "PATH=${PATH#*:} && case $* in *lo*) ping $* ;; esac", "0 0 0"}}},
    };
}
// clang-format on

// One figure after the other, without the sign of NaN, which differs between machines.
std::string allUsage() {
    int32_t count = 0;
    const long double* const usage = within(CML_getAllCPUUsage, &count);
    std::string text;
    for (int32_t i = 0; i < count; ++i) {
        text += joined(std::abs(usage[i])) + ",";
    }
    return text;
}

std::string releaseInformation() {
    utsname kernel{};
    uname(&kernel);
    char* release = nullptr;
    char* version = nullptr;
    const int32_t result = within(CML_getLinuxReleaseInformation, &release, &version);
    return joined(result, takeText(release) == kernel.release, takeText(version) == kernel.version);
}

// clang-format off
Call releaseText(const char* name, const char* (*ask)(), const std::string& key) {
    const auto run = [=] {
        os_release.clear();
        return std::string(within(ask));
    };
    const std::string file = "/etc/os-release", twice = key + "=old\n\nno separator\n" + key;
    return {"os_release", name, "text", {"", kNoMemory}, run,
            {{file, key + "=\"a b\"\n", "a b"}, {file, key + "=\"\"\n", ""},
             {file, key + "=\"\n", "\""}, {file, twice + "=a=b", "a=b"},
             {file, key + " =x\n=nameless\n", ""}}};
}

// A function that returns a setting.
#define RETURNS(setting, number, initial) \
    {#setting, "CML_get" #setting, #number, {initial}, [] { \
        DAL_CML_set##setting(number); \
        return joined(within(CML_get##setting)); \
    }}

std::vector<Call> deviceCalls() {
    const std::string stat = "/proc/stat", memory = "/proc/meminfo", uptime = "/proc/uptime";
    return {
        releaseText(NAMED(CML_getBuildType), "BUILD_MODE"),
        releaseText(NAMED(CML_getProductID), "ID"),
        releaseText(NAMED(CML_getBuildId), "BUILD_ID"),
        releaseText(NAMED(CML_getMachineName), "MACHINE"),
        releaseText(NAMED(CML_getProductRelease), "VERSION"),
        {"", "CML_getLinuxReleaseInformation", "0 1 1", {"0 0 0", "0 1 0", "0 0 1"},
         releaseInformation},
        {"", "CML_getStorageInfo", "1000 250", {"0 0", kNoMemory, "popen() failed!"},
         [] { return twoNumbers(CML_getStorageInfo); },
         {{"df", "echo Filesystem 1K-blocks; echo /dev/data 1000 250.5 25%; exit 1", "1000 250"},
          {"df", "printf '\\n \\n  /dev/\\t4294967295 0\\n/dev/b 3 4'", "4294967295 0"},
          {"df", "printf 'tmpfs 1 2\\n/dev 3 4\\nx/dev/a 7 8\\n'", "0 0"},
          {"df", "printf '/dev/a 5\\n/dev/b 4294967296 7\\n'", "4294967295 0"},
          {"df", "printf '/dev/a -2 +x\\r\\n/dev/b \\n/dev/c'", "4294967294 0"},
          {"df", "printf '/dev/a 5\\0%118s0 250\\n'", "50 250"}}},
        {"", "CML_getMemoryInformation", "2048 512", {"7 8", "2048 8", "7 512", kNoMemory},
         [] { return twoNumbers(CML_getMemoryInformation); },
         {{memory, "A: 1\n\nMemFree:\t512\nMemAvailable: 3 kB\n  MemTotal:  2048", "2048 512"},
          {memory, "MemTotal 1\nMemFree:x 2\nMemTotal:3\nmemtotal: 4\nXMemFree: 5\n", "7 8"},
          {memory, "MemTotal: -5.024\nMemFree: +7,024\n", "-5 7"},
          {memory, "MemTotal: 2147483647\nMemFree: 2147483648\n", "2147483647 8"}}},
        // Counters that do not change give NaN, and a failed reading leaves the figures alone.
        {"usage", "CML_getAllCPUUsage", "nan,nan,", {kNoMemory}, allUsage,
         {{stat, "cpu 100 0 50 850\ncpu0 1 1 1 1\ncpu1 0 0 0 0\nintr 1\n", "nan,nan,"},
          {stat, "cpu 130 20 100 950 9\ncpu0 1 1 1 9\ncpu1 1 2 3 0 7\nctxt", "0.5,0,1,"},
          // One core fewer: the figures stay for one call.
          {stat, "cpu 152 0 100 951\ncpu1 1 2 4 1\n", "0.5,0,1,"},
          {stat, "\n cpu 152 0 100.5 952.5\nno cpu 5\ncpux 2 2 4 2\n", "0.25,0.5,"},
          // No reading, then a reading with none to compare with.
          {stat, "intr 1 2 3 4\n", "0.25,0.5,"},
          {stat, "cpu 10 10 10 10\ncpu0 0 0 0 0\n", "0.25,0.5,"},
          {stat, "cpu 20 10\ncpu0 0 x 1 1\n", "0,nan,"},
          {stat, "cpu 1e999 1e999\ncpu0 0 - 1 1\n", "1,nan,"}}},
        {"usage", "CML_getCPUUsage", "nan", {kNoMemory},
         [] { return joined(std::abs(within(CML_getCPUUsage))); },
         {{stat, "cpu 2 1 1 4\ncpu0 0 0 0 0\n", "0.25"}}},
        {"", "CML_getUpTime", "12345.67", {"0", kNoMemory},
         [] { return joined(within(CML_getUpTime)); },
         {{uptime, "1.234.567 2", "1.234"}, {uptime, "1e+3 2", "1000"}, {uptime, "", "0"}}},
        {"", "CML_restoreDisplayBrightness", "", {},
         [] { return within(CML_restoreDisplayBrightness), ""; }},
        RETURNS(AllowDriverToAdjustBrightness, 1, "0"),
        RETURNS(DisplayInactivityTimeout, -2, "15"),
        RETURNS(DisplayOffTimeout, 2147483647, "30"),
    };
}

std::vector<Call> wifiCalls() {
    const auto init = [] {
        const Handle wifi(within(wifi_scan_init, "wlan7"));
        return std::string(wifi ? "handle" : "null");
    };
    const auto close = [] {
        within(wifi_scan_close, wifi_scan_init("wlan7"));
        return "";
    };
    const auto all = [] {
        const Handle wifi(wifi_scan_init("wlan7"));
        wifi_bss_record record{};
        kernel.notifications.clear();
        const int32_t count = within(wifi_scan_all, wifi.get(), &record, 1);
        return joined(count, record.ssid);
    };
    const auto station = [] {
        const Handle wifi(wifi_scan_init("wlan7"));
        wifi_station_record record{};
        const int32_t result = within(wifi_scan_station, wifi.get(), &record);
        return joined(result, record.ssid, record.status, record.rx_packets);
    };
    const auto status = [] {
        CML_WifiStatus link{};
        const int32_t result = within(CML_getWifiStatus, "wlan7", &link);
        return joined(result, link.ssid == nullptr ? "null" : link.ssid, link.rxPackets);
    };
    return {{"wifi", "wifi_scan_init", "handle", {"null", "ended"}, init},
            {"wifi", "wifi_scan_close", "", {}, close},
            {"wifi", "wifi_scan_all", "2 net2", {"-1 ", "0 ", "1 net1", "ended"}, all},
            {"wifi", "wifi_scan_station", "1 net2 1 5",
                      {"0  0 0", "1 net1 -1 0", "1 net1 -1 5", "1 net2 1 0", "ended"}, station},
            {"wifi", "CML_getWifiStatus", "1 net2 5",
                      {"0 null 0", "1  0", "1 net1 5", "ended"}, status}};
}
// clang-format on

}  // namespace

std::string Call::result() const {
    try {
        return run();
    } catch (const std::exception& failure) {
        const std::string text = failure.what();
        return text.substr(0, text.find(": "));
    }
}

std::vector<Call> functionCalls() {
    std::vector<Call> all;
    for (const auto& part : {settingCalls(), networkCalls(), deviceCalls(), wifiCalls()}) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

void Calls::change(const std::string& what, const std::string& content) {
    if (what.starts_with('/')) {
        bindFile(what, content);
    } else if (what.empty()) {
        run(content);
    } else {
        writeFile("/mnt/test/bin/" + what, "#!/bin/sh\n" + content + "\n");
        run("chmod +x /mnt/test/bin/" + what);
    }
}

void Calls::prepare() {
    addPorts();
    run("ip route replace default via 192.0.2.1 dev wire; "
        "test ! -e /sys/class/net/end || ip link set end name fifteen-letters");
    change("/sys/class/net/wire/statistics/rx_bytes", "12\n");
    change("/sys/class/net/wire/statistics/tx_bytes", "34\n");
    change("/etc/os-release",
           "BUILD_MODE=text\nID=text\nBUILD_ID=text\nMACHINE=text\nVERSION=text");
    change("/proc/meminfo", "MemTotal: 2048 kB\nMemFree: 512 kB\n");
    change("/proc/stat", "cpu 1 1 1 1\ncpu0 1 1 1 1\n");
    change("/proc/uptime", "12345.67 54321.89\n");
    change("df", "test \"$*\" = '-k /mnt/vex-data' && echo /dev/data 1000 250");
    change("ping", "test \"$*\" = '-c1 -w2 -I lo 127.0.0.1' || test \"$*\" = '-c1 -w-1 h'");
    using namespace nl80211;
    kernel.reset();
    kernel.on[NL80211_CMD_GET_SCAN] = networks("1 2:1");
    kernel.on[NL80211_CMD_GET_STATION] = {station(attribute(NL80211_STA_INFO_RX_PACKETS, u32(5))),
                                          acknowledgement()};
    kernel.later = {notification(NL80211_CMD_NEW_SCAN_RESULTS)};
    CML_getCPUUsage();
    CML_getCPUUsage();
}
