#include "support/calls.h"

#include <sys/utsname.h>

#include <cmath>
#include <filesystem>

#include "console-manager/device.h"
#include "console-manager/network.h"
#include "console-manager/wifi.h"
#include "support/fault.h"
#include "support/nl80211_kernel.h"
#include "support/played_exit.h"
#include "support/setting.h"
#include "wifi/handle.h"

namespace {

constexpr const char* kNoMemory = "std::bad_alloc";

// A block that the library has allocated; frees it.
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

// The two numbers that a function delivers, in the place of 7 and 8.
template <typename Number, typename Result, typename... Port>
std::string twoNumbers(Exact<Result(Port..., Number*, Number*)> ask, Port... port) {
    Number first = 7;
    Number second = 8;
    callWithin<Result>(ask, port..., &first, &second);
    return joined(first, second);
}

// Each is called when a value that is not the default is stored.
Subject settingSubject(const Setting& s) {
    const std::string other = s.getMalloc ? "x" : s.initial == "0" ? "1" : "0";
    Subject subject(s.name);
    const auto add = [&](const char* name, const std::string& good, const std::string& failed,
                         const std::function<std::string()>& call) {
        const auto run = [=] {
            s.set(other);
            return call();
        };
        subject.calls.push_back({name, good, {failed}, run});
    };
    const auto addDelete = [&](const char* name, const auto& call, const auto& isPresent) {
        add(name, "ok 0", "failed 1", [=] {
            const int32_t result = within(call);
            return outcome(result) + joined(isPresent());
        });
    };
    add("get", "ok " + other, "failed " + s.initial, [=] { return within(s.get); });
    add("set", "ok ok " + other, "failed ok " + s.initial, [=] {
        s.deleteItem();
        const int32_t result = within(s.set, other.c_str());
        return outcome(result) + s.get();
    });
    add("isPresent", "1", "0", [=] { return joined(within(s.isPresent)); });
    addDelete("delete", s.deleteItem, s.isPresent);
    addDelete("deleteAll", s.deleteAll, s.isPresent);
    if (s.getMalloc) {
        add("getMalloc", "ok x", "failed null", [=] { return within(s.getMalloc); });
    }
    if (!s.list.name.empty()) {
        const auto isNode = [=] { return s.list.isNodePresent("n"); };
        add("isNodePresent", "1", "0", [=] { return joined(within(isNode)); });
        addDelete(
            "deleteNode", [=] { return s.list.deleteNode("n"); }, isNode);
        addDelete("deleteAllNodes", s.list.deleteAllNodes, isNode);
        add("listNodes", "n,", "null", [=] { return takeList(within(s.list.nodes)); });
    }
    return subject;
}

// clang-format off
std::vector<Subject> networkSubjects() {
    const auto addressOf = [](const char* (*ask)(const char*)) {
        return [=] {
            const std::string address = callWithin<const char*>(ask, "wire");
            return address + ask("wir");  // no port, and so no text
        };
    };
    const auto portStatus = [] {
        CML_NetworkPortStatus status{7, 7};
        const int32_t result = callWithin<int32_t>(CML_getNetworkPortStatus, "lo", &status);
        return joined(result, status.up, status.running);
    };
    const std::string counters = "/sys/class/net/wire/statistics/";
    return {
        {"", {"CML_getNetworkPortsList", "end,lo,lone,peer,wire,", {"null", "filesystem error"},
              [] { return takeList(callWithin<char**>(CML_getNetworkPortsList, 0)); }}},
        {"", {"CML_getNetworkPortsList_active", "lo,peer,wire,",
              {"null", "lo,peer,", "lo,wire,", "peer,wire,", "filesystem error"},
              [] { return takeList(callWithin<char**>(CML_getNetworkPortsList, 1)); }}},
        {"", {"CML_checkNetworkPortActive", "1", {"0"}, [] { return joined(callWithin<int32_t>(CML_checkNetworkPortActive, "lo")); }}},
        {"", {"CML_getNetworkPortStatus", "1 1 1", {"0 0 0"}, portStatus}},
        {"address", {"CML_getNetworkPortIPv4Address", "192.0.2.5", {"", kNoMemory}, addressOf(CML_getNetworkPortIPv4Address)}},
        {"mask", {"CML_getNetworkPortIPv4NetMask", "255.255.255.128", {"", kNoMemory}, addressOf(CML_getNetworkPortIPv4NetMask)}},
        {"gateway", {"CML_getNetworkPortIPv4Gateway", "192.0.2.1", {"", kNoMemory}, addressOf(CML_getNetworkPortIPv4Gateway)}},
        {"address 6", {"CML_getNetworkPortIPv6Address", "2001:db8::5", {"", kNoMemory}, addressOf(CML_getNetworkPortIPv6Address)}},
        {"MAC", {"CML_getNetworkPortMACAddress", "02:00:5e:10:00:01", {"", kNoMemory}, addressOf(CML_getNetworkPortMACAddress)}},
        {"", {"CML_getNetworkPortInfo", "12 34", {"0 34", "12 0", kNoMemory},
              [] { return twoNumbers<int32_t, void>(CML_getNetworkPortInfo, "wire"); },
              {{counters + "rx_bytes", "2147483647\n", "2147483647 34"},
               {counters + "tx_bytes", "18446744073709551615\n", "2147483647 0"},
               {counters + "rx_bytes", "", "0 0"},
               {counters + "rx_bytes", " 12 34\n", "12 0"},
               {counters + "tx_bytes", "many", "12 0"}}}},
        // 32512 is the wait status of a shell that couldn't be run, 127; 768 is that of 3.
        {"", {"CML_getHostAvailable", "0", {"-1", "32512", kNoMemory},
              [] { return joined(callWithin<int32_t>(CML_getHostAvailable, "host", 1, "wire")); },
              {{"ping", "exit 3", "768"}}}},
    };
}

// The sign of what can't be divided differs between processors.
std::string figure(long double usage) {
    return std::isnan(usage) ? "nan" : joined(usage + 0);
}

// Of one processor after the other.
std::string allUsage() {
    int32_t count = 0;
    const long double* const usage = callWithin<const long double*>(CML_getAllCPUUsage, &count);
    std::string text;
    for (int32_t i = 0; i < count; ++i) {
        text += figure(usage[i]) + ",";
    }
    return text;
}

std::string releaseInformation() {
    utsname kernel{};
    uname(&kernel);
    char* release = nullptr;
    char* version = nullptr;
    const int32_t result = callWithin<int32_t>(CML_getLinuxReleaseInformation, &release, &version);
    const auto compared = [](const std::string& text, const char* own) { return text == own ? "own" : text; };
    return joined(result, compared(takeText(release), kernel.release), compared(takeText(version), kernel.version));
}

Subject textSubject(const char* name, const char* (*ask)(), const std::string& key) {
    const std::string file = "/etc/os-release";
    const auto run = [=] {
        os_release.clear();
        return std::string(callWithin<const char*>(ask));
    };
    return {"os_release", {name, "text", {"", kNoMemory}, run,
            {{file, key + "=\"a b\"\n", "a b"}, {file, key + "=\"\"\n", ""}, {file, key + "=\"\n", "\""},
             {file, key + "=old\n\nno separator\n" + key + "=a=b", "a=b"}, {file, key + " =x\n=nameless\n", ""}}}};
}

Subject numberSubject(const char* name, const char* setting, int32_t (*ask)(),
                      int32_t (*set)(int32_t), int32_t number, const char* initial) {
    const auto run = [=] {
        set(number);
        return joined(callWithin<int32_t>(ask));
    };
    return {setting, {name, joined(number), {initial}, run}};
}

std::vector<Subject> deviceSubjects() {
    const std::string stat = "/proc/stat", memory = "/proc/meminfo";
    const auto restore = [] {
        callWithin<void>(CML_restoreDisplayBrightness);
        return "";
    };
    return {
        textSubject("CML_getBuildType", CML_getBuildType, "BUILD_MODE"),
        textSubject("CML_getProductID", CML_getProductID, "ID"),
        textSubject("CML_getBuildId", CML_getBuildId, "BUILD_ID"),
        textSubject("CML_getMachineName", CML_getMachineName, "MACHINE"),
        textSubject("CML_getProductRelease", CML_getProductRelease, "VERSION"),
        {"", {"CML_getLinuxReleaseInformation", "0 own own", {"0 null null", "0 own null", "0 null own"}, releaseInformation}},
        {"", {"CML_getStorageInfo", "1000 250", {"0 0", kNoMemory, "popen() failed!"},
              [] { return twoNumbers<uint32_t, int32_t>(CML_getStorageInfo); },
              {{"df", "printf 'Filesystem 1K-blocks Used\\n/dev/data 1000 250 750 25%% /mnt\\n'; exit 1", "1000 250"},
               {"df", "printf '\\n \\n  /dev/\\t4294967295 0\\n/dev/b 3 4'", "4294967295 0"},
               {"df", "printf 'tmpfs 1 2\\n/dev 3 4\\nx/dev/a 7 8\\n'", "0 0"},
               {"df", "printf '/dev/a 5\\n/dev/b 4294967296 7\\n'", "4294967295 0"},
               {"df", "printf '/dev/a 1.024 2'", "1 0"},
               {"df", "printf '/dev/a -2 +x\\r\\n/dev/b \\n/dev/c'", "4294967294 0"},
               {"df", "printf '/dev/" + std::string(300, 'x') + " 1000 250\\n'", "1000 250"}}}},
        {"", {"CML_getMemoryInformation", "2048 512", {"7 8", "2048 8", "7 512", kNoMemory},
              [] { return twoNumbers<int32_t, int32_t>(CML_getMemoryInformation); },
              {{memory, "A: 1\n\nMemFree:\t512\nMemAvailable: 3 kB\n  MemTotal:   2048", "2048 512"},
               {memory, "MemTotal 1\nMemFree:x 2\nMemTotal:3\nmemtotal: 4\nXMemFree: 5\n", "7 8"},
               {memory, "MemTotal: -5\nMemFree: +7\n", "-5 7"},
               {memory, "MemTotal: 1.024\nMemFree: 1,024\n", "1 1"},
               {memory, "MemTotal: 2147483647\nMemFree: 2147483648\n", "2147483647 8"}}}},
        // In a file that stands still nothing can be divided, and a reading that fails leaves the
        // figures as they are.
        {"usage", {"CML_getAllCPUUsage", "nan,nan,", {kNoMemory}, allUsage,
                   {{stat, "cpu 100 0 50 850\ncpu0 1 1 1 1\ncpu1 0 0 0 0\nintr 1 2 3 4\n", "nan,nan,"},
                    {stat, "cpu 150 0 100 950 9\ncpu0 1 1 1 9\ncpu1 1 2 3 0 7\nctxt 5\n", "0.5,0,1,"},
                    {stat, "cpu 151 0 100 951\ncpu0 1 2 1 10\ncpu1 1 2 4 1", "0.5,0.5,0.5,"},
                    // One core fewer: the figures stay for one call.
                    {stat, "cpu 152 0 100 951\ncpu1 1 2 4 1\n", "0.5,0.5,0.5,"},
                    {stat, "\n cpu 152 0 100.5 952.5\nno cpu 5\ncpux 2 2 4 2\n", "0.25,0.5,"},
                    // No reading, and then none to compare with.
                    {stat, "intr 1 2 3 4\n", "0.25,0.5,"},
                    {stat, "cpu 10 10 10 10\ncpu0 0 0 0 0\n", "0.25,0.5,"},
                    {stat, "cpu 20 10\ncpu0 0 x 1 1\n", "0,nan,"},
                    {stat, "cpu 1e999 1e999\ncpu0 0 - 1 1\n", "1,nan,"}}}},
        {"usage", {"CML_getCPUUsage", "nan", {kNoMemory}, [] { return figure(callWithin<long double>(CML_getCPUUsage)); },
                   {{stat, "cpu 2 1 1 4\ncpu0 0 0 0 0\n", "0.25"}}}},
        {"", {"CML_getUpTime", "12345.67", {"0", kNoMemory}, [] { return joined(callWithin<long double>(CML_getUpTime)); },
              {{"/proc/uptime", "1.234.567 2\n", "1.234"}, {"/proc/uptime", "1e3 2\n", "1000"}, {"/proc/uptime", "7", "7"}, {"/proc/uptime", "", "0"}}}},
        {"", {"CML_restoreDisplayBrightness", "", {}, restore}},
        numberSubject("CML_getAllowDriverToAdjustBrightness", "AllowDriverToAdjustBrightness", CML_getAllowDriverToAdjustBrightness, DAL_CML_setAllowDriverToAdjustBrightness, 1, "0"),
        numberSubject("CML_getDisplayInactivityTimeout", "DisplayInactivityTimeout", CML_getDisplayInactivityTimeout, DAL_CML_setDisplayInactivityTimeout, -2, "15"),
        numberSubject("CML_getDisplayOffTimeout", "DisplayOffTimeout", CML_getDisplayOffTimeout, DAL_CML_setDisplayOffTimeout, 2147483647, "30"),
    };
}
// clang-format on

// clang-format off
std::vector<Subject> wifiSubjects() {
    const auto init = [] {
        const Handle wifi(callWithin<wifi_data*>(wifi_scan_init, "wlan7"));
        return std::string(wifi ? "handle" : "null");
    };
    const auto close = [] {
        callWithin<void>(wifi_scan_close, wifi_scan_init("wlan7"));
        return joined(kernel.openSockets);
    };
    const auto all = [] {
        const Handle wifi(wifi_scan_init("wlan7"));
        wifi_bss_record record{};
        kernel.notifications.clear();
        const int32_t count = callWithin<int32_t>(wifi_scan_all, wifi.get(), &record, 1);
        return joined(count, record.ssid);
    };
    const auto station = [] {
        const Handle wifi(wifi_scan_init("wlan7"));
        wifi_station_record record{};
        const int32_t result = callWithin<int32_t>(wifi_scan_station, wifi.get(), &record);
        return joined(result, record.ssid, record.status, record.rx_packets);
    };
    const auto status = [] {
        CML_WifiStatus link{};
        const int32_t result = callWithin<int32_t>(CML_getWifiStatus, "wlan7", &link);
        return joined(result, link.ssid == nullptr ? "null" : link.ssid, link.rxPackets);
    };
    return {{"wifi", {"wifi_scan_init", "handle", {"null", "ended"}, init}},
            {"wifi", {"wifi_scan_close", "0", {}, close}},
            {"wifi", {"wifi_scan_all", "2 net2", {"-1 ", "0 ", "1 net1", "ended"}, all}},
            {"wifi", {"wifi_scan_station", "1 net2 1 5", {"0  0 0", "1 net1 -1 0", "1 net1 -1 5", "1 net2 1 0", "ended"}, station}},
            {"wifi", {"CML_getWifiStatus", "1 net2 5", {"0 null 0", "1  0", "1 net1 5", "ended"}, status}}};
}
// clang-format on

}  // namespace

std::string Call::result() const {
    try {
        return run();
    } catch (const std::filesystem::filesystem_error&) {
        return "filesystem error";
    } catch (const std::exception& failure) {
        return failure.what();
    }
}

std::vector<Subject> functionSubjects() {
    const auto clearAll = [] {
        DAL_CML_setTheme(1);
        DAL_CML_setAutoTheme(1);
        const int32_t result = callWithin<int32_t>(DAL_CML_deleteAll);
        return joined(result, DAL_CML_isThemePresent(), DAL_CML_isAutoThemePresent());
    };
    std::vector<Subject> all = {
        {"settings", {"DAL_CML_deleteAll", "0 0 0", {"0 0 1", "0 1 0", "0 1 1"}, clearAll}}};
    for (const auto& part : {networkSubjects(), deviceSubjects(), wifiSubjects()}) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

std::vector<Subject> settingSubjects(size_t stride) {
    std::vector<Subject> all;
    for (size_t i = 0; i < std::size(kSettings); i += stride) {
        all.push_back(settingSubject(kSettings[i]));
    }
    return all;
}

void Calls::replace(const std::string& file, const std::string& content) {
    file.starts_with('/') ? bindFile(file, content) : putProgram(file, content);
}

void Calls::prepare() {
    addPorts();
    run("ip route replace default via 192.0.2.1 dev wire");
    // clang-format off
    const std::pair<const char*, const char*> files[] = {
        {"/sys/class/net/wire/statistics/rx_bytes", "12\n"},
        {"/sys/class/net/wire/statistics/tx_bytes", "34\n"},
        {"/etc/os-release", "BUILD_MODE=text\nID=text\nBUILD_ID=text\nMACHINE=text\nVERSION=text\n"},
        {"/proc/meminfo", "MemTotal: 2048 kB\nMemFree: 512 kB\n"},
        {"/proc/stat", "cpu 1 1 1 1\ncpu0 1 1 1 1\n"},
        {"/proc/uptime", "12345.67 54321.89\n"},
        {"df", "test \"$*\" = '-k /mnt/vex-data' && echo /dev/data 1000 250"},
        {"ping", "test \"$*\" = '-c1 -w1 -I wire host'"}};
    // clang-format on
    for (const auto& [file, content] : files) {
        replace(file, content);
    }
    using namespace nl80211;
    kernel.reset();
    kernel.on[NL80211_CMD_GET_SCAN] = networks("1 2:1");
    kernel.on[NL80211_CMD_GET_STATION] = {station(attribute(NL80211_STA_INFO_RX_PACKETS, u32(5))),
                                          acknowledgement()};
    kernel.later = {notification(NL80211_CMD_NEW_SCAN_RESULTS)};
    CML_getCPUUsage();
    CML_getCPUUsage();
}
