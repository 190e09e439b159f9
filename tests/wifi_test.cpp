// Scanning and the state of the link against a played nl80211, byte by byte and word by word.
#include "console-manager/wifi.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <libmnl/libmnl.h>
#include <linux/genetlink.h>
#include <linux/nl80211.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "nl80211_kernel.h"
#include "sandbox.h"

using namespace nl80211;

namespace {

int allocations = 0;        // but for the kernel's
int failingAllocation = 0;  // the how manieth from now on; 0 for none

}  // namespace

// The memory checkers bring a malloc of their own, which can't be played.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
extern "C" void* malloc(size_t size) noexcept {
    static auto* const real = reinterpret_cast<void* (*)(size_t)>(dlsym(RTLD_NEXT, "malloc"));
    allocations += kernel.working ? 0 : 1;
    return failingAllocation > 0 && --failingAllocation == 0 ? nullptr : real(size);
}
#endif

namespace {

constexpr char kNoPermission[] = ": Operation not permitted\n";
constexpr char kInvalid[] = "mnl_attr_validate error: Numerical result out of range\n";
constexpr char kSsidRefused[] =
    "SSID len 0 or payload not starting from 0 or payload length > 32 or payload length > "
    "length-2!\n";

class Wifi : public testing::Test {
  protected:
    void SetUp() override { kernel.reset(); }
    void TearDown() override {
        if (wifi != nullptr) {
            wifi_scan_close(wifi);
        }
        EXPECT_EQ(kernel.openSockets, 0);
    }

    // Opens a handle and forgets how.
    void open() {
        wifi = wifi_scan_init("wlan7");
        ASSERT_NE(wifi, nullptr);
        kernel.sent.clear();
    }

    wifi_data* wifi = nullptr;
};

std::string elements(const std::string& bytes) {
    return attribute(NL80211_BSS_INFORMATION_ELEMENTS, bytes);
}

std::string ssidElement(const std::string& ssid) {
    return elements('\0' + u8(static_cast<uint8_t>(ssid.size())) + ssid + "\x01\x01\x02");
}

constexpr int kNone = -1;

// A network whose attributes are all there; id tells it from the others.
std::string network(uint8_t id, int status = kNone) {
    return nl80211::network(
        attribute(NL80211_BSS_BSSID, std::string(5, '\x02') + u8(id)) +
        attribute(NL80211_BSS_FREQUENCY, u32(2400u + id)) +
        ssidElement("net" + std::to_string(id)) +
        (status == kNone ? "" : attribute(NL80211_BSS_STATUS, u32(static_cast<uint32_t>(status)))) +
        attribute(NL80211_BSS_SIGNAL_MBM, u32(static_cast<uint32_t>(-100 * id))) +
        attribute(NL80211_BSS_SEEN_MS_AGO, u32(id)));
}

std::string text(const wifi_bss_record& record) {
    return std::to_string(record.bssid[0]) + ":" + std::to_string(record.bssid[5]) + " " +
           std::to_string(record.frequency) + " " + record.ssid + " " +
           std::to_string(record.status) + " " + std::to_string(record.signal_mbm) + " " +
           std::to_string(record.seen_ms_ago);
}

const wifi_bss_record kBefore{{9, 9, 9, 9, 9, 9}, 9, "before", 9, 9, 9};
const std::string kUntouched = "9:9 9 before 9 9 9";

// What one call leaves behind: the result, the elements and the words on stderr.
struct Scan {
    explicit Scan(wifi_data* wifi, int32_t capacity = 3) {
        testing::internal::CaptureStderr();
        result = wifi_scan_all(wifi, capacity == 0 ? nullptr : records, capacity);
        words = testing::internal::GetCapturedStderr();
    }
    wifi_bss_record records[4] = {kBefore, kBefore, kBefore, kBefore};
    int32_t result;
    std::string words;
};

TEST_F(Wifi, AHandleJoinsTheScanGroup) {
    wifi = wifi_scan_init("wlan7");
    ASSERT_NE(wifi, nullptr);
    EXPECT_EQ(kernel.sent, std::vector<std::string>{"notifications "
                                                    "28000000100005000100000000000000"
                                                    "030100000600010010000000"
                                                    "0c0002006e6c383032313100"});
    EXPECT_EQ(kernel.joinedGroup, 6u);
}

TEST_F(Wifi, TheScanGroupIsFoundByItsName) {
    const std::string nameless = attribute(1, attribute(CTRL_ATTR_MCAST_GRP_ID, u32(3)));
    const std::string unended = attribute(
        2, attribute(CTRL_ATTR_MCAST_GRP_ID, u32(4)) + attribute(CTRL_ATTR_MCAST_GRP_NAME, "scan"));
    const std::string faultyId = attribute(
        2, attribute(CTRL_ATTR_MCAST_GRP_ID, u16(4)) + attribute(CTRL_ATTR_MCAST_GRP_NAME, "scan"));
    const struct {
        std::string groups;
        uint32_t joined;
    } cases[] = {
        {group("scan", 6), 6},
        {group("scanner", 5) + nameless + unended + group("scan", 0x01020304) + group("sca", 8),
         0x01020304},
        {group("scan", 6) + group("scan", 7), 7},
        {faultyId + group("scan", 9), 9},
        {group("scan", 6) + attribute(1, "", 100), 6},
    };
    for (const auto& c : cases) {
        kernel.onFamily[0] = {family(c.groups)};
        wifi_data* const opened = wifi_scan_init("wlan7");
        EXPECT_EQ(kernel.joinedGroup, c.joined);
        wifi_scan_close(opened);
    }
}

TEST_F(Wifi, AnUnknownInterfaceGivesNullAndKeepsNothing) {
    const int descriptors = openDescriptors();
    for (const int look : {1, 2}) {
        kernel.reset();
        kernel.failing = "if_nametoindex";
        kernel.failingCall = look;
        testing::internal::CaptureStderr();
        EXPECT_EQ(wifi_scan_init("wlan7"), nullptr);
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  "CML: wifi-scan: Incorrect network interface: No such device\n");
        EXPECT_EQ(kernel.sent.size(), static_cast<size_t>(look - 1));
        EXPECT_EQ(kernel.openSockets, 0);
    }
    EXPECT_EQ(openDescriptors(), descriptors);
}

// Ends the process as it must: with status 1, and with these words alone.
#define EXPECT_FATAL(statement, words) \
    EXPECT_EXIT(statement, testing::ExitedWithCode(1), testing::Eq(std::string(words)))

TEST_F(Wifi, AHandleThatCantBeHadEndsTheProcess) {
    const std::string prefix = "CML: wifi-scan: ";
    const std::string noRoom = ": No buffer space available\n";
    const struct {
        const char* failing;
        int call;
        std::string words;
    } failures[] = {
        {"mnl_socket_open", 1, "mnl_socket_open" + noRoom},
        {"mnl_socket_open", 2, "mnl_socket_open" + noRoom},
        {"mnl_socket_bind", 2, "mnl_socket_bind" + noRoom},
        {"mnl_socket_sendto", 1, "mnl_socket_sendto" + noRoom},
        {"mnl_socket_setsockopt", 1, "mnl_socket_set_sockopt" + noRoom},
    };
    for (const auto& c : failures) {
        kernel.failing = c.failing;
        kernel.failingCall = c.call;
        EXPECT_FATAL(wifi_scan_init("wlan7"), prefix + c.words);
    }
    kernel.failing.clear();

    const std::string groups = attribute(CTRL_ATTR_MCAST_GROUPS, group("scan", 6));
    const auto withoutId = [](uint16_t type) {
        return attribute(type, attribute(CTRL_ATTR_MCAST_GRP_NAME, std::string("scan\0", 5)));
    };
    const std::string noGroup = "No scan multicast group in generic netlink nl80211\n\n";
    const std::string failed = "GetFamilyAndScanId failed";
    const struct {
        Datagrams answer;
        std::string words;
    } answers[] = {
        {{{acknowledgement(-ENOENT)}}, prefix + failed + ": No such file or directory\n"},
        {{{"", EPERM}}, prefix + failed + kNoPermission},
        {{{notification(1, 77, 0)}}, prefix + failed + ": Protocol error\n"},
        {{{notification(1, 1, 77)}}, prefix + failed + ": No such process\n"},
        {{{acknowledgement()}}, prefix + noGroup},
        {{{reply(1, groups, 16)}}, prefix + "No family id attribute\n"},
        {{{reply(1, attribute(CTRL_ATTR_FAMILY_ID, u32(28)) + groups, 16)}},
         kInvalid + prefix + "No family id attribute\n"},
        {{{reply(1, attribute(CTRL_ATTR_FAMILY_ID, u16(28)), 16)}, {acknowledgement()}},
         prefix + noGroup},
        {{{family(group("mlme", 6))}, {acknowledgement()}}, prefix + noGroup},
        {{{family(group("scan", 0))}, {acknowledgement()}}, prefix + noGroup},
        {{{family(withoutId(1))}}, prefix + "Missing id attribute for scan multicast group\n"},
    };
    for (const auto& c : answers) {
        kernel.onFamily = c.answer;
        EXPECT_FATAL(wifi_scan_init("wlan7"), c.words);
    }
}

TEST_F(Wifi, MemoryThatRunsOutEndsTheProcess) {
    failingAllocation = 1;
    free(strdup(""));
    if (failingAllocation != 0) {
        GTEST_SKIP() << "malloc is a memory checker's here";
    }
    const char* const words[] = {"Insufficient memory - malloc(sizeof(struct wifi_data)\n",
                                 "Insufficent memory for netlink socket buffer\n"};
    for (const int allocation : {1, 2}) {
        EXPECT_FATAL((failingAllocation = allocation, wifi_scan_init("wlan7")),
                     std::string("CML: wifi-scan: ") + words[allocation - 1]);
    }
}

// The requests of one call of wifi_scan_all on a new handle.
const std::string kTrigger = "commands 1c0000001c0005000100000000000000210100000800030007000000";
const std::string kDumpFirst = "commands 1c0000001c0005030100000000000000200100000800030007000000";
const std::string kDumpSecond = "commands 1c0000001c0005030200000000000000200100000800030007000000";

TEST_F(Wifi, NotificationsDecideWhetherToScan) {
    const std::string triggered = notification(NL80211_CMD_TRIGGER_SCAN);
    const std::string results = notification(NL80211_CMD_NEW_SCAN_RESULTS);
    const std::string aborted = notification(NL80211_CMD_SCAN_ABORTED);
    const std::string line = "Ignoring generic netlink command type 28 seq 0 pid  0 genl cmd ";
    const struct {
        const char* situation;
        Datagrams past;
        Datagrams later;  // arrive after the trigger, or when the wait begins
        bool triggers;
        int32_t result;
        std::string words;
    } cases[] = {
        {"nothing yet", {}, {{triggered}, {results}}, true, 1, ""},
        {"a scan runs", {{triggered}, {"", EAGAIN}}, {{results}}, false, 1, ""},
        {"a scan runs, in progress", {{triggered}, {"", EINPROGRESS}}, {{results}}, false, 1, ""},
        {"a scan has ended", {{triggered}, {results}}, {}, false, 1, ""},
        {"two in a datagram", {{triggered + results}}, {}, false, 1, ""},
        {"results of another's making",
         {{notification(NL80211_CMD_NEW_SCAN_RESULTS, 0, 5)},
          {notification(NL80211_CMD_NEW_SCAN_RESULTS, 5, 0)}},
         {{results}},
         true,
         1,
         ""},
        {"a trigger of another's making",
         {{notification(NL80211_CMD_TRIGGER_SCAN, 5, 5)}, {"", EAGAIN}},
         {{results}},
         false,
         1,
         ""},
        {"something else", {{notification(77)}}, {{results}}, true, 1, line + "77\n"},
        {"a message without a command",
         {{notification(0).substr(0, 16).replace(0, 4, u32(16))}},
         {{results}},
         true,
         1,
         line + "0\n"},
        {"given up before", {{triggered}, {aborted}}, {{results}}, true, 1, line + "35\n"},
        {"given up, and another runs",
         {{aborted}, {triggered}, {"", EAGAIN}},
         {{results}},
         false,
         1,
         line + "35\n"},
        {"given up after results", {{results}, {aborted}}, {}, false, 1, line + "35\n"},
        {"given up in the wait", {}, {{triggered}, {aborted}, {results}}, true, -1, line + "35\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.situation);
        kernel.reset();
        open();
        kernel.onDump = {{network(1)}, {done()}};
        kernel.notifications = c.past;
        Datagrams& later = c.triggers ? kernel.notificationsOnTrigger : kernel.notifications;
        later.insert(later.end(), c.later.begin(), c.later.end());
        const Scan scan(wifi);
        EXPECT_EQ(scan.result, c.result);
        EXPECT_EQ(scan.words, c.words);
        std::vector<std::string> requests;
        if (c.triggers) {
            requests.push_back(kTrigger);
        }
        if (c.result >= 0) {
            requests.push_back(c.triggers ? kDumpSecond : kDumpFirst);
        }
        EXPECT_EQ(kernel.sent, requests);

        // The handle is as good as before, whatever came of the call.
        kernel.notifications = {{results}};
        EXPECT_EQ(Scan(wifi).result, 1);
        wifi_scan_close(wifi);
        wifi = nullptr;
    }
}

TEST_F(Wifi, ARefusedScanGivesMinusOneInSilence) {
    open();
    for (const Datagram& refusal : {Datagram{acknowledgement(-EBUSY)}, Datagram{"", EIO}}) {
        kernel.onTrigger = {refusal};
        const Scan scan(wifi);
        EXPECT_EQ(scan.result, -1);
        EXPECT_EQ(scan.words, "");
        EXPECT_EQ(text(scan.records[0]), kUntouched);
    }
    kernel.onTrigger = {{acknowledgement()}};
    kernel.notificationsOnTrigger = {{notification(NL80211_CMD_NEW_SCAN_RESULTS)}};
    EXPECT_EQ(Scan(wifi).result, 0) << "the third number in turn";
}

TEST_F(Wifi, ASocketThatFailsInAScanEndsTheProcess) {
    open();
    const std::string past = "CML: wifi-scan: ReadPastNotificationsNonBlocking ";
    const struct {
        Datagrams notifications;
        std::string words;
    } cases[] = {
        {{{"", EPERM}}, past + "mnl_socket_recv failed" + kNoPermission},
        {{{acknowledgement(-EPERM)}}, past + "mnl_cb_run failed" + kNoPermission},
        {{{done()}}, past + "mnl_cb_run failed: Success\n"},
        {{{notification(NL80211_CMD_TRIGGER_SCAN)}, {"", EAGAIN}, {"", EPERM}},
         std::string("CML: wifi-scan: Waiting for new scan results failed - mnl_socket_recvfrom") +
             kNoPermission},
        {{{notification(NL80211_CMD_TRIGGER_SCAN)}, {"", EAGAIN}, {acknowledgement(-EPERM)}},
         std::string("CML: wifi-scan: Processing notificatoins failed - mnl_cb_run") +
             kNoPermission},
    };
    for (const auto& c : cases) {
        kernel.notifications = c.notifications;
        EXPECT_FATAL(wifi_scan_all(wifi, nullptr, 0), c.words);
    }
    kernel.notifications = {};
    kernel.failing = "mnl_socket_sendto";
    EXPECT_FATAL(wifi_scan_all(wifi, nullptr, 0),
                 "CML: wifi-scan: mnl_socket_sendto: No buffer space available\n");
    kernel.failing = "F_GETFL";
    EXPECT_FATAL(wifi_scan_all(wifi, nullptr, 0),
                 "CML: wifi-scan: SetChannelNonBlocking F_GETFL: Bad file descriptor\n");
    // Descriptors of this kind tell their flags, but don't let them be changed.
    kernel.failing = "F_SETFL";
    EXPECT_FATAL(wifi_scan_all(wifi, nullptr, 0),
                 "CML: wifi-scan: SetChannelNonBlocking F_SETFL: Bad file descriptor\n");
}

TEST_F(Wifi, TheJoinedNetworkComesFirst) {
    const auto shown = [](int id, int status = kNone) {
        return "2:" + std::to_string(id) + " " + std::to_string(2400 + id) + " net" +
               std::to_string(id) + " " + std::to_string(status) + " " + std::to_string(-100 * id) +
               " " + std::to_string(id);
    };
    const std::string old = kUntouched;
    const struct {
        const char* situation;
        int32_t capacity;
        std::vector<std::string> messages;
        int32_t result;
        std::vector<std::string> expected;  // of four elements
    } cases[] = {
        {"none", 3, {}, 0, {old, old, old, old}},
        {"none joined", 3, {network(1), network(2, 0)}, 2, {shown(1), shown(2, 0), old, old}},
        {"first", 3, {network(1, 1), network(2)}, 2, {shown(1, 1), shown(2), old, old}},
        {"in the middle",
         3,
         {network(1), network(2, 1), network(3)},
         3,
         {shown(2, 1), shown(1), shown(3), old}},
        {"last",
         3,
         {network(1), network(2), network(3, 2)},
         3,
         {shown(3, 2), shown(2), shown(1), old}},
        {"twice",
         4,
         {network(1, 1), network(2), network(3, 2)},
         3,
         {shown(3, 2), shown(2), shown(1, 1), old}},
        {"beyond the array",
         2,
         {network(1), network(2), network(3), network(4, 1)},
         4,
         {shown(4, 1), shown(2), old, old}},
        {"an array of one",
         1,
         {network(1), network(2, 1), network(3, 3)},
         3,
         {shown(2, 1), old, old, old}},
        {"no array", 0, {network(1, 1), network(2)}, 2, {old, old, old, old}},
        {"messages that are no network",
         3,
         {reply(NL80211_CMD_NEW_SCAN_RESULTS, attribute(NL80211_ATTR_IFINDEX, u32(7))), network(1)},
         1,
         {shown(1), old, old, old}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.situation);
        kernel.reset();
        open();
        kernel.notifications = {{notification(NL80211_CMD_NEW_SCAN_RESULTS)}};
        kernel.onDump.clear();
        for (const std::string& message : c.messages) {
            kernel.onDump.push_back({message});
        }
        kernel.onDump.push_back({done()});
        const int before = allocations;
        wifi_bss_record records[4] = {kBefore, kBefore, kBefore, kBefore};
        const int32_t result = wifi_scan_all(wifi, c.capacity == 0 ? nullptr : records, c.capacity);
        EXPECT_EQ(allocations, before) << "nothing is allocated";
        EXPECT_EQ(result, c.result);
        for (size_t i = 0; i < c.expected.size(); ++i) {
            EXPECT_EQ(text(records[i]), c.expected[i]) << i;
        }
        wifi_scan_close(wifi);
        wifi = nullptr;
    }
}

TEST_F(Wifi, ADumpCountsAsFarAsItWasRead) {
    open();
    const std::string line = "Ignoring generic netlink command 28 seq 1 pid  1001 genl cmd 77\n";
    const struct {
        Datagrams dump;
        int32_t result;
        std::string words;
    } cases[] = {
        {{{reply(77, "")}, {network(1) + network(2)}, {done()}}, 2, line},
        {{{network(1)}, {acknowledgement(-EIO)}}, 1, ""},
        {{{network(1)}, {"", EIO}}, 1, ""},
        {{{network(1)}, {notification(NL80211_CMD_NEW_SCAN_RESULTS, 999, 0)}}, 1, ""},
        {{{network(1) + u32(0x80000000) + network(2)}, {done()}}, 1, ""},
        {{{acknowledgement(-ENODEV)}}, 0, ""},
    };
    for (const auto& c : cases) {
        kernel.onDump = c.dump;
        kernel.notifications = {{notification(NL80211_CMD_NEW_SCAN_RESULTS)}};
        const Scan scan(wifi);
        EXPECT_EQ(scan.result, c.result);
        EXPECT_EQ(scan.words, c.words);
    }
}

TEST_F(Wifi, AttributesAreReadByTheirRules) {
    const std::string bssid = attribute(NL80211_BSS_BSSID, "\1\2\3\4\5\6");
    const std::string frequency = attribute(NL80211_BSS_FREQUENCY, u32(5180));
    const std::string longSsid(32, 'x');
    const auto named = [](const std::string& ssid) { return "9:9 9 " + ssid + " -1 9 9"; };
    const struct {
        const char* situation;
        std::string bss;
        std::string expected;
        std::string words;
    } cases[] = {
        {"nothing", "", named("before"), ""},
        {"two figures", bssid + frequency, "1:6 5180 before -1 9 9", ""},
        {"a BSSID of 5 bytes, first", attribute(NL80211_BSS_BSSID, "12345") + frequency,
         named("before"), kInvalid},
        {"a BSSID of 7 bytes, last", frequency + attribute(NL80211_BSS_BSSID, "1234567"),
         "9:9 5180 before -1 9 9", kInvalid},
        {"a status of 2 bytes", bssid + attribute(NL80211_BSS_STATUS, u16(1)) + frequency,
         "1:6 9 before -1 9 9", kInvalid},
        {"numbers without a rule", attribute(3, "xyz") + attribute(19, "") + frequency,
         "9:9 5180 before -1 9 9", ""},
        {"numbers above the tables", attribute(20, "") + attribute(0x3fff, "x") + frequency,
         "9:9 5180 before -1 9 9", ""},
        {"an attribute that goes too far", bssid + attribute(NL80211_BSS_FREQUENCY, u32(1), 8),
         "1:6 9 before -1 9 9", ""},
        {"a name", ssidElement("name"), named("name"), ""},
        {"a hidden name", ssidElement(""), named(""), ""},
        {"a name of 32 bytes", ssidElement(longSsid), named(longSsid), ""},
        {"a name of 33 bytes", ssidElement(longSsid + "x"), named(""), kSsidRefused},
        {"a name with a NUL", ssidElement(std::string("ab\0cd", 5)), named("ab"), ""},
        {"an exact fit", elements(std::string("\0\5abcde", 7)), named("abcde"), ""},
        {"a byte too few", elements(std::string("\0\5abcd", 6)), named(""), kSsidRefused},
        {"an id alone", elements(std::string("\0", 1)), named(""), kSsidRefused},
        {"no elements", elements(""), named(""), kSsidRefused},
        {"another element first", elements(std::string("\1\1x\0\1y", 6)), named(""), kSsidRefused},
        {"a faulty name among good figures", bssid + elements("") + frequency, "1:6 5180  -1 9 9",
         kSsidRefused},
    };
    open();
    for (const auto& c : cases) {
        kernel.notifications = {{notification(NL80211_CMD_NEW_SCAN_RESULTS)}};
        kernel.onDump = {{nl80211::network(c.bss)}, {done()}};
        const Scan scan(wifi);
        EXPECT_EQ(scan.result, 1) << c.situation;
        EXPECT_EQ(text(scan.records[0]), c.expected) << c.situation;
        EXPECT_EQ(scan.words, c.words) << c.situation;
    }
    kernel.notifications = {{notification(NL80211_CMD_NEW_SCAN_RESULTS)}};
    kernel.onDump = {{nl80211::network(ssidElement(std::string("a\0b", 3)))}, {done()}};
    EXPECT_EQ(std::string(Scan(wifi).records[0].ssid, 7), std::string("a\0\0\0re\0", 7));
}

std::string station(const std::string& info) {
    return reply(NL80211_CMD_NEW_STATION, attribute(NL80211_ATTR_STA_INFO, info));
}

std::string figures(int signal, uint32_t received, uint32_t sent) {
    return attribute(NL80211_STA_INFO_SIGNAL, u8(static_cast<uint8_t>(signal))) +
           attribute(NL80211_STA_INFO_SIGNAL_AVG, u8(static_cast<uint8_t>(signal - 1))) +
           attribute(NL80211_STA_INFO_RX_PACKETS, u32(received)) +
           attribute(NL80211_STA_INFO_TX_PACKETS, u32(sent));
}

TEST_F(Wifi, TheStationIsThatOfTheJoinedNetwork) {
    const std::string request =
        "commands 280000001c00050002000000000000001101000008000300070000000a000600020202020202";
    const struct {
        const char* situation;
        Datagrams dump;
        Datagrams answer;
        std::string expected;  // result, BSSID's end, SSID, status and the four figures
        std::string words;
    } cases[] = {
        {"no network", {{done()}}, {}, "0 9 before 9 9 9 9 9", ""},
        {"a failed dump", {{acknowledgement(-EPERM)}}, {}, "0 9 before 9 9 9 9 9", ""},
        {"joined",
         {{network(1)}, {network(2, 1)}, {network(3)}, {done()}},
         {{station(figures(-60, 5, 4000000000))}, {acknowledgement()}},
         "1 2 net2 1 -60 -61 5 4000000000",
         ""},
        {"not joined",
         {{network(1)}, {network(2)}, {done()}},
         {{acknowledgement(-ENOENT)}},
         "1 1 net1 -1 9 9 9 9",
         ""},
        {"half the figures",
         {{network(2, 2)}, {done()}},
         {{station(attribute(NL80211_STA_INFO_TX_PACKETS, u32(7)) +
                   attribute(NL80211_STA_INFO_SIGNAL, u16(1)) +
                   attribute(NL80211_STA_INFO_RX_PACKETS, u32(7)))},
          {acknowledgement()}},
         "1 2 net2 2 9 9 9 7",
         kInvalid},
        {"no figures, and another message",
         {{network(2, 1)}, {done()}},
         {{reply(NL80211_CMD_NEW_STATION, "")}, {reply(18, "")}, {acknowledgement()}},
         "1 2 net2 1 9 9 9 9",
         "Ignoring generic netlink command 28 seq 2 pid  1001 genl cmd 18\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.situation);
        kernel.reset();
        open();
        kernel.onDump = c.dump;
        kernel.onStation = c.answer;
        wifi_station_record record{{9, 9, 9, 9, 9, 9}, "before", 9, 9, 9, 9, 9};
        testing::internal::CaptureStderr();
        const int32_t result = wifi_scan_station(wifi, &record);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), c.words);
        EXPECT_EQ(std::to_string(result) + " " + std::to_string(record.bssid[5]) + " " +
                      record.ssid + " " + std::to_string(record.status) + " " +
                      std::to_string(record.signal_dbm) + " " +
                      std::to_string(record.signal_avg_dbm) + " " +
                      std::to_string(record.rx_packets) + " " + std::to_string(record.tx_packets),
                  c.expected);
        std::vector<std::string> requests{kDumpFirst};
        if (result == 1) {
            char last[8];
            std::snprintf(last, sizeof last, "%02x0000", unsigned{record.bssid[5]});
            requests.push_back(request.substr(0, request.size() - 2) + last);
        }
        EXPECT_EQ(kernel.sent, requests);
        wifi_scan_close(wifi);
        wifi = nullptr;
    }
}

TEST_F(Wifi, TheStatusTellsOfALinkWithTraffic) {
    const struct {
        int signal;
        uint32_t received;
        uint32_t sent;
        const char* ssid;
    } cases[] = {
        {-60, 0, 1, "net2"}, {-60, 1, 0, "net2"}, {-60, 0, 0, ""},
        {1, 5, 5, ""},       {0, 5, 5, "net2"},   {2, 5, 5, "net2"},
    };
    const char* kept = nullptr;
    for (const auto& c : cases) {
        kernel.onDump = {{network(1)}, {network(2, 1)}, {done()}};
        kernel.onStation = {{station(figures(c.signal, c.received, c.sent))}, {acknowledgement()}};
        CML_WifiStatus status{"x", 9, 9, 9};
        EXPECT_EQ(CML_getWifiStatus("wlan7", &status), 1);
        EXPECT_STREQ(status.ssid, c.ssid);
        EXPECT_EQ(status.signalDbm, c.signal);
        EXPECT_EQ(status.rxPackets, c.received);
        EXPECT_EQ(status.txPackets, c.sent);
        EXPECT_EQ(kernel.openSockets, 0);
        if (*c.ssid != '\0') {
            EXPECT_TRUE(kept == nullptr || kept == status.ssid) << "one buffer";
            kept = status.ssid;
        }
        EXPECT_STREQ(kept, "net2") << "an empty text leaves it alone";
    }
    CML_WifiStatus status{"x", 9, 9, 9};
    EXPECT_EQ(CML_getWifiStatus(nullptr, &status), 0);
    EXPECT_STREQ(status.ssid, "x");
    EXPECT_EQ(CML_getWifiStatus("wlan7", nullptr), 0);
    kernel.onDump = {{done()}};
    EXPECT_EQ(CML_getWifiStatus("wlan7", &status), 1);
    EXPECT_TRUE(*status.ssid == '\0' && status.signalDbm == 0 && status.rxPackets == 0);
    status = {"x", 9, 9, 9};
    testing::internal::CaptureStderr();
    EXPECT_EQ(CML_getWifiStatus("wlan8", &status), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "CML: wifi-scan: Incorrect network interface: No such device\n");
    EXPECT_TRUE(status.ssid == nullptr && status.signalDbm == 0 && status.txPackets == 0);
}

TEST_F(Wifi, TheRuleTablesAreExported) {
    const auto rows = [](const wifi_attribute_rule* rules, int32_t length) {
        std::string all;
        for (int32_t i = 0; i < length; ++i) {
            all += std::to_string(rules[i].attribute) + "/" + std::to_string(rules[i].type) + "/" +
                   std::to_string(rules[i].length) + " ";
        }
        return all;
    };
    EXPECT_EQ(rows(NL80211_VALIDATION, NL80211_VALIDATION_LENGTH), "1/2/0 7/8/0 ");
    EXPECT_EQ(rows(NL80211_MCAST_GROUPS_VALIDATION, NL80211_MCAST_GROUPS_VALIDATION_LENGTH),
              "2/3/0 1/5/0 ");
    EXPECT_EQ(rows(NL80211_NEW_SCAN_RESULTS_VALIDATION, NL80211_NEW_SCAN_RESULTS_VALIDATION_LENGTH),
              "3/3/0 45/8/0 47/8/0 ");
    EXPECT_EQ(rows(NL80211_BSS_VALIDATION, NL80211_BSS_VALIDATION_LENGTH),
              "1/11/6 2/3/0 6/11/0 9/3/0 7/3/0 10/3/0 ");
    EXPECT_EQ(rows(NL80211_CMD_NEW_STATION_VALIDATION, NL80211_CMD_NEW_STATION_VALIDATION_LENGTH),
              "21/8/0 ");
    EXPECT_EQ(rows(NL80211_STA_INFO_VALIDATION, NL80211_STA_INFO_VALIDATION_LENGTH),
              "7/1/0 13/1/0 9/3/0 10/3/0 ");
}

}  // namespace
