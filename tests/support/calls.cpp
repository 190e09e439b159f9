#include "support/calls.h"

#include <cmath>

#include "console-manager/device.h"
#include "console-manager/network.h"
#include "console-manager/settings.h"
#include "console-manager/wifi.h"
#include "support/nl80211_kernel.h"
#include "support/played_exit.h"
#include "support/setting.h"
#include "wifi/handle.h"

namespace {

// What an exception that the library lets through tells.
std::string failureOf(const std::function<std::string()>& run) {
    try {
        return run();
    } catch (const std::exception& failure) {
        return failure.what();
    }
}

// A block that the library has allocated; frees it.
std::string taken(char* block) {
    const std::string text = block == nullptr ? "null" : block;
    std::free(block);
    return text;
}

std::string takenList(char** list) {
    std::string text = list == nullptr ? "null" : "";
    for (const std::string& entry : take(list)) {
        text += entry + ",";
    }
    return text;
}

// The two numbers that a function delivers, in the place of 7 and 8.
template <typename Number>
std::string both(auto ask) {
    Number first = 7;
    Number second = 8;
    within([&] { return ask(&first, &second); });
    return joined(first, second);
}

class Table {
  public:
    void add(const std::string& function, const std::string& owner, const std::string& good,
             const std::string& failed, const std::function<std::string()>& run) {
        calls.push_back({function, owner, good, failed, [run] { return failureOf(run); }});
    }

    std::vector<Call> calls;
};

// Each is called when a value that is not the default is stored.
void addSetting(Table& table, const Setting& s) {
    const std::string other = s.type == 's' ? "x" : s.initial == "0" ? "1" : "0";
    const auto add = [&](const std::string& function, const std::string& good,
                         const std::string& failed, const std::function<std::string()>& run) {
        table.add(function, s.name, good, failed, [=] {
            s.set(plainly, other);
            return run();
        });
    };
    add("get" + s.name, "ok " + other, "failed " + s.initial, [=] { return s.get(within); });
    add("set" + s.name, "ok ok " + other, "failed ok " + s.initial, [=] {
        s.member(plainly, "delete", "");
        const int32_t result = s.set(within, other);
        return s.outcome(result) + s.get(plainly);
    });
    add("get" + s.name + "Default", s.initial, s.initial, [=] { return s.getDefault(within); });
    add("is" + s.name + "Present", "1", "0",
        [=] { return joined(s.member(within, "is", "Present")); });
    for (const std::string verb : {"delete", "deleteAll"}) {
        add(verb + s.name, "ok 0", "failed 1", [=] {
            const int32_t result = s.member(within, verb, "");
            return s.outcome(result) + joined(s.member(plainly, "is", "Present"));
        });
    }
    if (s.type == 's') {
        add("get" + s.name + "Malloc", "ok x", "failed null", [=] { return s.getMalloc(within); });
    }
    if (s.list.empty()) {
        return;
    }
    const std::string node = s.list + "Node";
    const auto isPresent = [=](auto how) {
        return joined(call(how, "is" + node + "Present", "n"));
    };
    add("is" + node + "Present", "1", "0", [=] { return isPresent(within); });
    add("delete" + node, "ok 0", "failed 1", [=] {
        const int32_t result = call(within, "delete" + node, "n");
        return s.outcome(result) + isPresent(plainly);
    });
    add("deleteAll" + node + "s", "ok 0", "failed 1", [=] {
        const int32_t result = call(within, "deleteAll" + node + "s");
        return s.outcome(result) + isPresent(plainly);
    });
    add("list" + node + "s", "n,", "null",
        [=] { return takenList(call<char**>(within, "list" + node + "s")); });
}

void addSettings(Table& table) {
    for (const Kind& kind : kKinds) {
        for (const std::string& name : kind.names) {
            addSetting(table, {kind, name});
        }
    }
    table.add("DAL_CML_deleteAll", "settings", "0 00", "0 @(01|10|11)", [] {
        DAL_CML_setTheme(1);
        DAL_CML_setAutoTheme(1);
        const int32_t result = within(DAL_CML_deleteAll);
        return joined(result, DAL_CML_isThemePresent()) + joined(DAL_CML_isAutoThemePresent());
    });
}

void addNetwork(Table& table) {
    table.add("CML_getNetworkPortsList", "", "lo,peer,wire,", "null|filesystem error: *",
              [] { return takenList(within([] { return CML_getNetworkPortsList(0); })); });
    table.add("CML_getNetworkPortsList of active ports", "", "lo,", "null|filesystem error: *",
              [] { return takenList(within([] { return CML_getNetworkPortsList(1); })); });
    table.add("CML_checkNetworkPortActive", "", "1", "0",
              [] { return joined(within([] { return CML_checkNetworkPortActive("lo"); })); });
    table.add("CML_getNetworkPortStatus", "", "1 1 1", "0 0 0", [] {
        CML_NetworkPortStatus status{7, 7};
        const int32_t result = within([&] { return CML_getNetworkPortStatus("lo", &status); });
        return joined(result, status.up, status.running);
    });
    const auto addText = [&](const std::string& function, const char* (*call)(const char*),
                             const std::string& good) {
        table.add(function, function, good, "|std::bad_alloc",
                  [=] { return std::string(within([=] { return call("wire"); })); });
    };
    addText("CML_getNetworkPortIPv4Address", CML_getNetworkPortIPv4Address, "192.0.2.5");
    addText("CML_getNetworkPortIPv4NetMask", CML_getNetworkPortIPv4NetMask, "255.255.255.0");
    addText("CML_getNetworkPortIPv4Gateway", CML_getNetworkPortIPv4Gateway, "192.0.2.1");
    addText("CML_getNetworkPortIPv6Address", CML_getNetworkPortIPv6Address, "2001:db8::5");
    addText("CML_getNetworkPortMACAddress", CML_getNetworkPortMACAddress, "02:00:5e:10:00:01");
    table.add("CML_getNetworkPortInfo", "", "12 34", "0 34|12 0|std::bad_alloc", [] {
        return both<int32_t>(
            [](int32_t* in, int32_t* out) { CML_getNetworkPortInfo("wire", in, out); });
    });
    // 32512 is the wait status of a shell that couldn't be run, 127.
    table.add("CML_getHostAvailable", "", "0", "-1|32512|std::bad_alloc", [] {
        return joined(within([] { return CML_getHostAvailable("host", 1, "wire"); }));
    });
}

void addDevice(Table& table) {
    const std::pair<const char*, const char* (*)()> texts[] = {
        {"CML_getBuildType", CML_getBuildType},
        {"CML_getProductID", CML_getProductID},
        {"CML_getBuildId", CML_getBuildId},
        {"CML_getMachineName", CML_getMachineName},
        {"CML_getProductRelease", CML_getProductRelease}};
    for (const auto& [function, call] : texts) {
        table.add(function, "os_release", "text", "|std::bad_alloc", [call = call] {
            os_release.clear();
            return std::string(within(call));
        });
    }
    table.add("CML_getLinuxReleaseInformation", "", "text text", "@(null|text) @(null|text)", [] {
        char* release = nullptr;
        char* version = nullptr;
        within([&] { return CML_getLinuxReleaseInformation(&release, &version); });
        const auto kind = [](const std::string& text) { return text == "null" ? "null" : "text"; };
        return joined(kind(taken(release)), kind(taken(version)));
    });
    table.add("CML_getStorageInfo", "", "1000 250", "0 0|std::bad_alloc|popen?? failed!",
              [] { return both<uint32_t>(CML_getStorageInfo); });
    table.add("CML_getMemoryInformation", "", "2048 512", "7 8|2048 8|7 512|std::bad_alloc",
              [] { return both<int32_t>(CML_getMemoryInformation); });
    // In a file that stands still nothing can be divided, and a reading that fails leaves the
    // figures as they are.
    table.add("CML_getAllCPUUsage", "usage", "2 1 1", "std::bad_alloc", [] {
        int32_t count = 0;
        CML_getCPUUsage();
        const auto* const usage = within([&] { return CML_getAllCPUUsage(&count); });
        return joined(count, std::isnan(usage[0]), std::isnan(usage[1]));
    });
    table.add("CML_getCPUUsage", "usage", "1", "std::bad_alloc", [] {
        CML_getCPUUsage();
        return joined(std::isnan(within(CML_getCPUUsage)));
    });
    table.add("CML_getUpTime", "", "12345.7", "0|std::bad_alloc",
              [] { return joined(static_cast<double>(within(CML_getUpTime))); });
    table.add("CML_restoreDisplayBrightness", "", "", "", [] {
        within(CML_restoreDisplayBrightness);
        return "";
    });
    table.add("CML_getAllowDriverToAdjustBrightness", "AllowDriverToAdjustBrightness", "1", "0",
              [] {
                  DAL_CML_setAllowDriverToAdjustBrightness(1);
                  return joined(within(CML_getAllowDriverToAdjustBrightness));
              });
    table.add("CML_getDisplayInactivityTimeout", "DisplayInactivityTimeout", "-2", "15", [] {
        DAL_CML_setDisplayInactivityTimeout(-2);
        return joined(within(CML_getDisplayInactivityTimeout));
    });
    table.add("CML_getDisplayOffTimeout", "DisplayOffTimeout", "2147483647", "30", [] {
        DAL_CML_setDisplayOffTimeout(2147483647);
        return joined(within(CML_getDisplayOffTimeout));
    });
}

void addWifi(Table& table) {
    using namespace nl80211;
    kernel.reset();
    kernel.on[NL80211_CMD_GET_SCAN] = networks("1 2:1");
    kernel.on[NL80211_CMD_GET_STATION] = {station(attribute(NL80211_STA_INFO_RX_PACKETS, u32(5))),
                                          acknowledgement()};
    kernel.later = {notification(NL80211_CMD_NEW_SCAN_RESULTS)};
    // What the kernel has seen is kept for one call.
    const auto add = [&](const std::string& function, const std::string& good,
                         const std::string& failed, std::string (*run)()) {
        table.add(function, "wifi", good, failed, [run] {
            std::vector<std::string>().swap(kernel.sent);
            std::string().swap(kernel.commands);
            return run();
        });
    };
    add("wifi_scan_init", "handle", "null|ended", [] {
        const Handle wifi(within([] { return wifi_scan_init("wlan7"); }));
        return std::string(wifi ? "handle" : "null");
    });
    add("wifi_scan_close", "", "", [] {
        wifi_data* const wifi = wifi_scan_init("wlan7");
        within([=] { wifi_scan_close(wifi); });
        return joined(kernel.openSockets == 0 ? "" : "open");
    });
    add("wifi_scan_all", "2 net2", "-1 |0 |1 net1|ended", [] {
        const Handle wifi(wifi_scan_init("wlan7"));
        wifi_bss_record record{};
        kernel.notifications.clear();
        const int32_t count = within([&] { return wifi_scan_all(wifi.get(), &record, 1); });
        return joined(count, record.ssid);
    });
    add("wifi_scan_station", "1 net2 1 5", "0  0 0|1 net1 -1 [05]|1 net2 1 0|ended", [] {
        const Handle wifi(wifi_scan_init("wlan7"));
        wifi_station_record record{};
        const int32_t result = within([&] { return wifi_scan_station(wifi.get(), &record); });
        return joined(result, record.ssid, record.status, record.rx_packets);
    });
    add("CML_getWifiStatus", "1 net2 5", "0 null 0|1  0|1 net1 5|ended", [] {
        CML_WifiStatus status{};
        const int32_t result = within([&] { return CML_getWifiStatus("wlan7", &status); });
        return joined(result, status.ssid == nullptr ? "null" : status.ssid, status.rxPackets);
    });
}

}  // namespace

void Calls::prepare() {
    run("ip link add wire type veth peer name peer && "
        "ip link set wire address 02:00:5e:10:00:01 up && "
        "sysctl -qw net.ipv6.conf.wire.accept_dad=0 && ip addr add 192.0.2.5/24 dev wire && "
        "ip addr add 2001:db8::5/64 dev wire nodad && "
        "ip route add default via 192.0.2.1 dev wire");
    bindFile("/sys/class/net/wire/statistics/rx_bytes", "12\n");
    bindFile("/sys/class/net/wire/statistics/tx_bytes", "34\n");
    bindFile("/etc/os-release",
             "BUILD_MODE=text\nID=text\nBUILD_ID=text\nMACHINE=text\nVERSION=text\n");
    bindFile("/proc/meminfo", "MemTotal: 2048 kB\nMemFree: 512 kB\n");
    bindFile("/proc/stat", "cpu 1 1 1 1\ncpu0 1 1 1 1\n");
    bindFile("/proc/uptime", "12345.67 54321.89\n");
    putProgram("df", "echo /dev/data 1000 250");
    putProgram("ping", "exit 0");
    Table table;
    addNetwork(table);
    addDevice(table);
    addWifi(table);
    ASSERT_EQ(table.calls.size(), 31)
        << "one for each exported function, and two for the list of ports";
    addSettings(table);
    calls = table.calls;
    for (const Call& call : calls) {
        ASSERT_EQ(call.run(), call.good) << call.function;
    }
}
