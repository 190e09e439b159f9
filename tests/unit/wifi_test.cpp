// Scanning and the state of the link against a played nl80211, byte by byte and word by word.
#include "console-manager/wifi.h"

#include <span>

#include "support/nl80211_kernel.h"
#include "support/sandbox.h"
#include "wifi/handle.h"

using namespace nl80211;

namespace {

const std::string kPrefix = "CML: wifi-scan: ";
const std::string kInvalid = "mnl_attr_validate error: Numerical result out of range\n";
const std::string kRefusedSsid =
    "SSID len 0 or payload not starting from 0 or payload length > 32 or payload length > "
    "length-2!\n";

const std::string kTriggered = notification(NL80211_CMD_TRIGGER_SCAN);
const std::string kResults = notification(NL80211_CMD_NEW_SCAN_RESULTS);
const std::string kAborted = notification(NL80211_CMD_SCAN_ABORTED);
const std::string kOwnTriggered = notificationOf(7, NL80211_CMD_TRIGGER_SCAN);
const std::string kOwnAborted = notificationOf(7, NL80211_CMD_SCAN_ABORTED);
const std::string kOthersTriggered = notificationOf(8, NL80211_CMD_TRIGGER_SCAN);
const std::string kOthersAborted = notificationOf(8, NL80211_CMD_SCAN_ABORTED);
const std::string kNoMore = failure(EAGAIN);

const wifi_bss_record kBefore{{9, 9, 9, 9, 9, 9}, 9, "before", 9, 9, 9};

std::string text(const wifi_bss_record& record) {
    return joined(int{record.bssid[0]}, int{record.bssid[5]}, record.frequency, record.ssid,
                  record.status, record.signal_mbm, record.seen_ms_ago);
}

// The list of networks that would leave these elements; "-" for one that nothing was written to.
std::string listOf(const wifi_bss_record (&records)[4]) {
    std::string words;
    for (const auto& record : records) {
        const uint32_t id = record.seen_ms_ago;
        const std::string whole =
            joined(2, id, 2400 + id, "net" + std::to_string(id), record.status, -100 * int(id), id);
        const std::string status = record.status == -1 ? "" : ":" + std::to_string(record.status);
        words += text(record) == text(kBefore) ? "- "
                 : text(record) == whole       ? std::to_string(id) + status + " "
                                               : text(record) + " ";
    }
    return words;
}

// One scan on a new handle.
struct Scan {
    const char* situation;
    Datagrams past;   // notifications that wait
    Datagrams later;  // those that come after a trigger
    Datagrams dump;
    int32_t capacity;  // of an array with four elements
    int32_t result;
    const char* sent;                        // commands, each with its number
    std::string left;                        // the elements, and the words on stderr
    std::string answer = acknowledgement();  // to a trigger
};

class Wifi : public testing::Test {
  protected:
    void SetUp() override { kernel.reset(); }

    // A new handle on a new kernel.
    void open() {
        wifi.reset();
        kernel.reset();
        wifi.reset(wifi_scan_init("wlan7"));
        ASSERT_NE(wifi, nullptr);
        kernel.commands.clear();
    }

    void check(std::span<const Scan> scans) {
        for (const Scan& c : scans) {
            SCOPED_TRACE(c.situation);
            open();
            kernel.notifications = c.past;
            kernel.later = c.later;
            kernel.on[NL80211_CMD_TRIGGER_SCAN] = {c.answer};
            kernel.on[NL80211_CMD_GET_SCAN] = c.dump;
            wifi_bss_record records[4] = {kBefore, kBefore, kBefore, kBefore};
            testing::internal::CaptureStderr();
            EXPECT_EQ(wifi_scan_all(wifi.get(), records, c.capacity), c.result);
            const std::string words = testing::internal::GetCapturedStderr();
            EXPECT_EQ(listOf(records) + words, c.left);
            EXPECT_EQ(kernel.commands, c.sent);
            EXPECT_TRUE(kernel.notifying->waits());
            kernel.notifications = {kResults};
            kernel.on[NL80211_CMD_GET_SCAN] = networks("1 2");
            EXPECT_EQ(wifi_scan_all(wifi.get(), nullptr, 0), 2)
                << "the handle is as good as before";
        }
    }

    Handle wifi;
};

TEST_F(Wifi, RequestsAreTheseBytes) {
    wifi.reset(wifi_scan_init("wlan7"));
    kernel.later = {kResults};
    EXPECT_EQ(wifi_scan_all(wifi.get(), nullptr, 0), 0);
    kernel.on[NL80211_CMD_GET_SCAN] = networks("1 2:1");
    wifi_station_record station;
    EXPECT_EQ(wifi_scan_station(wifi.get(), &station), 1);
    const std::string ifindex = "0800030007000000";
    const std::vector<std::string> requests = {
        "notifications 28000000100005000100000000000000030100000600010010000000"
        "0c0002006e6c383032313100",
        "commands 1c0000001c000500010000000000000021010000" + ifindex,
        "commands 1c0000001c000503020000000000000020010000" + ifindex,
        "commands 1c0000001c000503030000000000000020010000" + ifindex,
        "commands 280000001c000500040000000000000011010000" + ifindex + "0a0006000202020202020000"};
    EXPECT_EQ(kernel.sent, requests);
    EXPECT_EQ(kernel.joinedGroup, 6u);
}

TEST_F(Wifi, MostFailuresEndTheProcess) {
    const auto about = [](const std::string& id, const std::string& groups) {
        return reply(CTRL_CMD_NEWFAMILY, attribute(CTRL_ATTR_FAMILY_ID, id) + groups, GENL_ID_CTRL);
    };
    const std::string group6 = attribute(CTRL_ATTR_MCAST_GROUPS, group("scan", 6));
    const std::string withoutId =
        attribute(1, attribute(CTRL_ATTR_MCAST_GRP_NAME, std::string("scan\0", 5)));
    const std::string lookUp = kPrefix + "GetFamilyAndScanId failed: ";
    const std::string past = kPrefix + "ReadPastNotificationsNonBlocking ";
    const std::string noRoom = ": No buffer space available\n";
    const std::string noGroup = kPrefix + "No scan multicast group in generic netlink nl80211\n\n";
    struct Case {
        bool scans;  // on a handle that is open before anything fails
        const char* failing;
        Datagrams heard;  // about the family, or by a scan
        std::string words;
    };
    // clang-format off
    const Case cases[] = {
        {false, "mnl_socket_open", {}, kPrefix + "mnl_socket_open" + noRoom},
        {false, "mnl_socket_bind", {}, kPrefix + "mnl_socket_bind" + noRoom},
        {false, "mnl_socket_sendto", {}, kPrefix + "mnl_socket_sendto" + noRoom},
        {false, "mnl_socket_setsockopt", {}, kPrefix + "mnl_socket_set_sockopt" + noRoom},
        {false, "", {acknowledgement(-ENOENT)}, lookUp + "No such file or directory\n"},
        {false, "", {failure(EPERM)}, lookUp + "Operation not permitted\n"},
        {false, "", {notification(1, 77, 0)}, lookUp + "Protocol error\n"},
        {false, "", {notification(1, 1, 77)}, lookUp + "No such process\n"},
        {false, "", {acknowledgement()}, noGroup},
        {false, "", {about(u16(28), ""), acknowledgement()}, noGroup},
        {false, "", {family(group("mlme", 6)), acknowledgement()}, noGroup},
        {false, "", {family(group("scan", 0)), acknowledgement()}, noGroup},
        {false, "", {reply(CTRL_CMD_NEWFAMILY, group6, GENL_ID_CTRL)}, kPrefix + "No family id attribute\n"},
        {false, "", {about(u32(28), group6)}, kInvalid + kPrefix + "No family id attribute\n"},
        {false, "", {family(withoutId)}, kPrefix + "Missing id attribute for scan multicast group\n"},
        {true, "F_GETFL", {}, kPrefix + "SetChannelNonBlocking F_GETFL: Bad file descriptor\n"},
        {true, "F_SETFL", {}, kPrefix + "SetChannelNonBlocking F_SETFL: Bad file descriptor\n"},
        {true, "mnl_socket_sendto", {}, kPrefix + "mnl_socket_sendto" + noRoom},
        {true, "", {failure(EPERM)}, past + "mnl_socket_recv failed: Operation not permitted\n"},
        {true, "", {acknowledgement(-EPERM)}, past + "mnl_cb_run failed: Operation not permitted\n"},
        {true, "", {done()}, past + "mnl_cb_run failed: Success\n"},
        {true, "", {kTriggered, kNoMore, failure(EPERM)}, kPrefix + "Waiting for new scan results failed - mnl_socket_recvfrom: Operation not permitted\n"},
        {true, "", {kTriggered, kNoMore, acknowledgement(-EPERM)}, kPrefix + "Processing notificatoins failed - mnl_cb_run: Operation not permitted\n"},
    };
    // clang-format on
    for (const Case& c : cases) {
        open();
        const auto run = [&] {
            fault = {c.failing};
            if (!c.heard.empty()) {
                (c.scans ? kernel.notifications : kernel.on[CTRL_CMD_GETFAMILY]) = c.heard;
            }
            c.scans ? within(wifi_scan_all, wifi.get(), nullptr, 0)
                    : within(wifi_scan_init, "wlan7") != nullptr;
        };
        EXPECT_EXIT(run(), testing::ExitedWithCode(1), testing::Eq(c.words)) << &c - cases;
    }
}

TEST_F(Wifi, NotificationsDecideWhetherToScan) {
    const std::string line =
        "- - - - Ignoring generic netlink command type 28 seq 0 pid  0 genl cmd ";
    const std::string empty = notification(0).substr(0, 16).replace(0, 4, u32(16));
    const std::string others = notification(NL80211_CMD_NEW_SCAN_RESULTS, 0, 5) +
                               notification(NL80211_CMD_NEW_SCAN_RESULTS, 5, 0);
    const std::string othersTrigger = notification(NL80211_CMD_TRIGGER_SCAN, 5, 5);
    const Datagrams ended = {kResults}, none = {done()};
    const std::string busy = acknowledgement(-EBUSY);
    const char *const both = "33/1 32/2 ", *const noTrigger = "32/1 ";
    // clang-format off
    const Scan cases[] = {
        {"nothing yet", {}, {kTriggered, kResults}, none, 3, 0, both, "- - - - "},
        {"a scan runs", {kTriggered, kNoMore, kResults}, {}, none, 3, 0, noTrigger, "- - - - "},
        {"the same, in other words", {kTriggered, failure(EINPROGRESS), kResults}, {}, none, 3, 0, noTrigger, "- - - - "},
        {"a scan has ended", {kTriggered, kResults}, {}, none, 3, 0, noTrigger, "- - - - "},
        {"the same in one datagram", {kTriggered + kResults}, {}, none, 3, 0, noTrigger, "- - - - "},
        {"results that aren't the kernel's", {others}, ended, none, 3, 0, both, "- - - - "},
        {"a trigger that isn't", {othersTrigger, kNoMore, kResults}, {}, none, 3, 0, noTrigger, "- - - - "},
        {"no command behind one of no use", {notification(77), empty}, ended, none, 3, 0, both,
         line + "77\n" + line.substr(8) + "0\n"},
        {"given up before", {kTriggered, kAborted}, ended, none, 3, 0, both, line + "35\n"},
        {"another runs", {kAborted, kTriggered, kNoMore, kResults}, {}, none, 3, 0, noTrigger, line + "35\n"},
        {"given up after results", {kResults, kAborted}, {}, none, 3, 0, noTrigger, line + "35\n"},
        {"given up in the wait", {}, {kTriggered, kAborted, kResults}, none, 3, -1, "33/1 ", line + "35\n"},
        {"another port's given up before, beside this port's", {kOwnTriggered, kOthersTriggered, kOthersAborted, kNoMore, kResults}, {}, none, 3, 0, noTrigger, line + "35\n"},
        {"the same in the wait", {kOwnTriggered, kNoMore, kOthersTriggered, kOthersAborted, kResults}, {}, none, 3, 0, noTrigger, line + "35\n"},
        {"beside a scan of our own", {}, {kOthersAborted, kOwnTriggered, kResults}, none, 3, 0, both, line + "35\n"},
        {"beside a third port's", {kOthersTriggered, notificationOf(9, NL80211_CMD_TRIGGER_SCAN), kOthersAborted, kNoMore, kResults}, {}, none, 3, 0, noTrigger, line + "35\n"},
        {"one that was running already", {kOthersAborted, kOthersTriggered, kNoMore, kResults}, {}, none, 3, 0, noTrigger, line + "35\n"},
        {"another port's alone", {kOthersTriggered, kNoMore, kOthersAborted}, {kOwnTriggered, kResults}, none, 3, 0, both, line + "35\n"},
        {"and then our own", {kOthersTriggered, kNoMore, kOthersAborted}, {kOwnTriggered, kOwnAborted}, none, 3, -1, "33/1 ", line + "35\n" + line.substr(8) + "35\n"},
        {"refused", {}, {}, none, 3, -1, "33/1 ", "- - - - ", failure(EIO)},
        {"refused as busy", {}, {}, none, 3, -1, "33/1 ", "- - - - ", busy},
        {"the port's scan has begun meanwhile", {}, {kOwnTriggered, kNoMore, kResults}, none, 3, 0, both, "- - - - ", busy},
        {"and ended", {}, {kResults}, none, 3, 0, both, "- - - - ", busy},
        {"or was given up", {}, {kOwnTriggered, kOwnAborted}, none, 3, -1, "33/1 ", line + "35\n", busy},
        {"another port's has begun", {}, {kOthersTriggered}, none, 3, -1, "33/1 ", "- - - - ", busy},
    };
    // clang-format on
    check(cases);
}

TEST_F(Wifi, TheJoinedNetworkComesFirst) {
    const std::string one = networks("1")[0];
    const std::string noNetwork =
        reply(NL80211_CMD_NEW_SCAN_RESULTS, attribute(NL80211_ATTR_IFINDEX, u32(7)));
    const std::string line = "Ignoring generic netlink command 28 seq 1 pid  1001 genl cmd 77\n";
    std::string other = one;
    other[sizeof(nlmsghdr)] = 77;  // the command
    std::string endless = one;
    endless.replace(0, 4, u32(0x80000010));
    const auto largest = static_cast<size_t>(std::min(sysconf(_SC_PAGESIZE), 8192L));
    std::string large = network(attribute(NL80211_BSS_TSF, ""));
    large = network(attribute(NL80211_BSS_TSF, std::string(largest - large.size(), 'x')));
    std::string interrupted = networks("2")[0];
    interrupted.replace(6, 2, u16(NLM_F_DUMP_INTR));
    const Datagrams ended = {kResults};
    // clang-format off
    const Scan cases[] = {
        {"none joined", ended, {}, networks("1 2:0"), 3, 2, "32/1 ", "1 2:0 - - "},
        {"first", ended, {}, networks("1:1 2"), 3, 2, "32/1 ", "1:1 2 - - "},
        {"in the middle", ended, {}, networks("1 2:1 3"), 3, 3, "32/1 ", "2:1 1 3 - "},
        {"last", ended, {}, networks("1 2 3:2"), 3, 3, "32/1 ", "3:2 2 1 - "},
        {"twice", ended, {}, networks("1:1 2 3:2"), 4, 3, "32/1 ", "3:2 2 1:1 - "},
        {"beyond the array", ended, {}, networks("1 2 3 4:1"), 2, 4, "32/1 ", "4:1 2 - - "},
        {"an array of one", ended, {}, networks("1 2:1 3:3"), 1, 3, "32/1 ", "2:1 - - - "},
        {"an array of none", ended, {}, networks("1:1 2"), 0, 2, "32/1 ", "- - - - "},
        {"another message", ended, {}, {other, one + one, done()}, 1, 2, "32/1 ", "1 - - - " + line},
        {"a message without a network", ended, {}, {noNetwork, one, done()}, 3, 1, "32/1 ", "1 - - - "},
        {"an error", ended, {}, {one, acknowledgement(-EIO)}, 3, 1, "32/1 ", "1 - - - "},
        {"an error at once", ended, {}, {acknowledgement(-ENODEV)}, 3, 0, "32/1 ", "- - - - "},
        {"a failed receive", ended, {}, {one, failure(EIO)}, 3, 1, "32/1 ", "1 - - - "},
        {"an answer to another", ended, {}, {one, notification(34, 999, 0)}, 3, 1, "32/1 ", "1 - - - "},
        {"the largest datagram", ended, {}, {large, done()}, 0, 1, "32/1 ", "- - - - "},
        {"one beyond", ended, {}, {large + "x", done()}, 0, 0, "32/1 ", "- - - - "},
        {"an interrupted dump", ended, {}, {one, interrupted, one, done()}, 3, 1, "32/1 ", "1 - - - "},
        {"a length that wraps", ended, {}, {one + endless, done()}, 3, 1, "32/1 ", "1 - - - "},
    };
    // clang-format on
    check(cases);
}

TEST_F(Wifi, AttributesAreReadByTheirRules) {
    const std::string bssid = attribute(NL80211_BSS_BSSID, "\1\2\3\4\5\6");
    const std::string frequency = attribute(NL80211_BSS_FREQUENCY, u32(5180));
    const std::string large(32, 'x');
    // BSSID, frequency and SSID; and the words.
    const auto read = [](const char* situation, const std::string& bss, const std::string& left,
                         const std::string& words = "") -> Scan {
        const Datagrams dump = {network(bss), done()};
        return {situation, {kResults}, {}, dump, 1, 1, "32/1 ", left + " -1 9 9 - - - " + words};
    };
    // clang-format off
    const Scan cases[] = {
        read("nothing", "", "9 9 9 before"),
        read("a BSSID of 5 bytes, first", attribute(1, "12345") + frequency, "9 9 9 before", kInvalid),
        read("a BSSID of 7 bytes, last", frequency + attribute(1, "1234567"), "9 9 5180 before", kInvalid),
        read("a status of 2 bytes", bssid + attribute(9, u16(1)) + frequency, "1 6 9 before", kInvalid),
        read("no rule", attribute(3, "xyz") + attribute(19, "") + frequency, "9 9 5180 before"),
        read("above the table", attribute(20, "") + attribute(99, "x") + bssid, "1 6 9 before"),
        read("a length beyond the nest", bssid + attribute(2, u32(1), 8), "1 6 9 before"),
        read("a hidden name", ssid(""), "9 9 9 "),
        read("a name of 32 bytes", ssid(large), "9 9 9 " + large),
        read("a name of 33 bytes", ssid(large + "x"), "9 9 9 ", kRefusedSsid),
        read("a name with a NUL", ssid(std::string("ab\0cd", 5)), "9 9 9 ab"),
        read("an exact fit", elements(std::string("\0\5abcde", 7)), "9 9 9 abcde"),
        read("a byte too few", elements(std::string("\0\5abcd", 6)), "9 9 9 ", kRefusedSsid),
        read("an id alone", elements(std::string("\0", 1)), "9 9 9 ", kRefusedSsid),
        read("another element first", elements(std::string("\1\1x\0\1y", 6)), "9 9 9 ", kRefusedSsid),
        read("no elements, the rest good", bssid + elements("") + frequency, "1 6 5180 ", kRefusedSsid),
    };
    // clang-format on
    check(cases);
}

std::string figures(int signal, uint32_t received, uint32_t sent) {
    return station(attribute(NL80211_STA_INFO_SIGNAL, u8(static_cast<uint8_t>(signal))) +
                   attribute(NL80211_STA_INFO_SIGNAL_AVG, u8(static_cast<uint8_t>(signal - 1))) +
                   attribute(NL80211_STA_INFO_RX_PACKETS, u32(received)) +
                   attribute(NL80211_STA_INFO_TX_PACKETS, u32(sent)));
}

TEST_F(Wifi, TheLinkIsThatToTheJoinedNetwork) {
    const std::string faulty = station(attribute(NL80211_STA_INFO_TX_PACKETS, u32(7)) +
                                       attribute(NL80211_STA_INFO_SIGNAL, u16(1)) +
                                       attribute(NL80211_STA_INFO_RX_PACKETS, u32(7)));
    std::string other = figures(-60, 5, 5);
    other[sizeof(nlmsghdr)] = 18;  // the command
    const std::string large(32, 'x');
    const Datagrams dump = networks("1 2:1 3");
    const std::string ignored = "Ignoring generic netlink command 28 seq 2 pid  1001 genl cmd 18\n";
    struct Case {
        Datagrams dump, answer;
        std::string station;  // result, BSSID's end, SSID, status and the four figures
        std::string status;   // SSID and the three figures
        std::string words;    // of either
    };
    // clang-format off
    const Case cases[] = {
        {networks(""), {}, "0 9 before 9 9 9 9 9", " 0 0 0", ""},
        {{acknowledgement(-EPERM)}, {}, "0 9 before 9 9 9 9 9", " 0 0 0", ""},
        {networks("1 2"), {acknowledgement(-ENOENT)}, "1 1 net1 -1 9 9 9 9", " 0 0 0", ""},
        {dump, {figures(-60, 5, 4000000000)}, "1 2 net2 1 -60 -61 5 4000000000", "net2 -60 5 4000000000", ""},
        {{network(ssid(large)), done()}, {}, "1 0 " + large + " -1 9 9 9 9", " 0 0 0", ""},
        {dump, {figures(-60, 0, 1)}, "1 2 net2 1 -60 -61 0 1", "net2 -60 0 1", ""},
        {dump, {figures(-60, 1, 0)}, "1 2 net2 1 -60 -61 1 0", "net2 -60 1 0", ""},
        {dump, {figures(-60, 0, 0)}, "1 2 net2 1 -60 -61 0 0", " -60 0 0", ""},
        {dump, {figures(1, 5, 5)}, "1 2 net2 1 1 0 5 5", " 1 5 5", ""},
        {dump, {figures(0, 5, 5)}, "1 2 net2 1 0 -1 5 5", "net2 0 5 5", ""},
        {dump, {figures(2, 5, 5)}, "1 2 net2 1 2 1 5 5", "net2 2 5 5", ""},
        {networks("2:2"), {faulty}, "1 2 net2 2 9 9 9 7", "net2 0 0 7", kInvalid},
        {dump, {reply(NL80211_CMD_NEW_STATION, ""), other}, "1 2 net2 1 9 9 9 9", " 0 0 0", ignored},
    };
    // clang-format on
    const char* buffer = nullptr;
    for (const Case& c : cases) {
        open();
        kernel.on[NL80211_CMD_GET_SCAN] = c.dump;
        kernel.on[NL80211_CMD_GET_STATION] = c.answer;
        kernel.on[NL80211_CMD_GET_STATION].push_back(acknowledgement());
        wifi_station_record r{{9, 9, 9, 9, 9, 9}, "before", 9, 9, 9, 9, 9};
        r.ssid[sizeof r.ssid - 1] = '9';
        testing::internal::CaptureStderr();
        const int32_t result = wifi_scan_station(wifi.get(), &r);
        EXPECT_EQ(joined(result, int{r.bssid[5]}, r.ssid, r.status, int{r.signal_dbm},
                         int{r.signal_avg_dbm}, r.rx_packets, r.tx_packets),
                  c.station);
        wifi.reset();
        CML_WifiStatus s{"x", 9, 9, 9};
        EXPECT_EQ(CML_getWifiStatus("wlan7", &s), 1);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), c.words + c.words);
        EXPECT_EQ(joined(s.ssid, s.signalDbm, s.rxPackets, s.txPackets), c.status) << c.station;
        buffer = *s.ssid != '\0' && buffer == nullptr ? s.ssid : buffer;
        EXPECT_TRUE(*s.ssid == '\0' || s.ssid == buffer) << "one buffer";
    }
    EXPECT_STREQ(buffer, "net2") << "no empty text is written to it";
}

TEST_F(Wifi, WithoutAPortThereIsNoStatus) {
    CML_WifiStatus s{"x", 9, 9, 9};
    EXPECT_EQ(CML_getWifiStatus(nullptr, &s) + CML_getWifiStatus("wlan7", nullptr), 0);
    EXPECT_STREQ(s.ssid, "x");
    EXPECT_EQ(CML_getWifiStatus("wlan8", &s), 0);
    EXPECT_EQ(joined(s.ssid == nullptr, s.signalDbm, s.rxPackets, s.txPackets), "1 0 0 0");
    EXPECT_EQ(kernel.commands, "") << "nobody was asked";
}

// Attribute, type and length of each rule.
std::string rules(std::span<const wifi_attribute_rule> table, int32_t length) {
    std::string all = std::ssize(table) == length ? "" : "another length";
    for (const wifi_attribute_rule& rule : table) {
        all += joined(rule.attribute, rule.type, rule.length) + ", ";
    }
    return all;
}

TEST_F(Wifi, TheRuleTablesAreExported) {
#define RULES(table) rules(NL80211_##table, NL80211_##table##_LENGTH)
    EXPECT_EQ(RULES(VALIDATION), "1 2 0, 7 8 0, ");
    EXPECT_EQ(RULES(MCAST_GROUPS_VALIDATION), "2 3 0, 1 5 0, ");
    EXPECT_EQ(RULES(NEW_SCAN_RESULTS_VALIDATION), "3 3 0, 45 8 0, 47 8 0, ");
    EXPECT_EQ(RULES(BSS_VALIDATION), "1 11 6, 2 3 0, 6 11 0, 9 3 0, 7 3 0, 10 3 0, ");
    EXPECT_EQ(RULES(CMD_NEW_STATION_VALIDATION), "21 8 0, ");
    EXPECT_EQ(RULES(STA_INFO_VALIDATION), "7 1 0, 13 1 0, 9 3 0, 10 3 0, ");
}

}  // namespace
