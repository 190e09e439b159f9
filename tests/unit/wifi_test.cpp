// Scanning and the state of the link against a played nl80211: requests, records and messages.
#include "console-manager/wifi.h"

#include "support/nl80211_kernel.h"
#include "support/sandbox.h"
#include "wifi/handle.h"

using namespace nl80211;

namespace {

const std::string kInvalid = "mnl_attr_validate error: Numerical result out of range\n";
const std::string kRefusedSsid =
    "SSID len 0 or payload not starting from 0 or payload length > 32 or payload length > "
    "length-2!\n";
const std::string kScan = "scan\0"s;
const std::string kResults = notification(NL80211_CMD_NEW_SCAN_RESULTS);

// One byte is too few for a number, a BSSID and a nest.
constexpr auto faulty = [](int number) { return attribute(uint16_t(number), "a"); };

// Fills the elements of an array before a scan.
const wifi_bss_record kBefore{{2, 2, 2, 2, 2, 9}, 2409, "net9", 9, -900, 9};

// The networks that the elements hold, by number and with their status as in networks(); or what an
// element holds instead, and "-" for one that was not written.
std::string listOf(const wifi_bss_record (&records)[4]) {
    std::string words;
    for (const auto& r : records) {
        const int id = r.bssid[5];
        const std::string text = joined(int{r.bssid[0]}, id, r.frequency, r.ssid, r.status,
                                        r.signal_mbm, r.seen_ms_ago),
                          whole = joined(2, id, 2400 + id, "net" + std::to_string(id), r.status,
                                         -100 * id, id),
                          status = r.status == -1 ? "" : ":" + std::to_string(r.status);
        words += (r.status == kBefore.status ? "-"
                  : text == whole            ? std::to_string(id) + status
                                             : text) +
                 " ";
    }
    return words;
}

// Datagrams of notifications, one for each letter: t, r and a are the trigger, the results and the
// abort of a scan of this port, T, R and A of another port's. The others are special.
Datagrams notifications(Text letters) {
    constexpr auto kTrigger = NL80211_CMD_TRIGGER_SCAN, kNew = NL80211_CMD_NEW_SCAN_RESULTS,
                   kAborted = NL80211_CMD_SCAN_ABORTED;
    const auto of = [](Text port, uint8_t command) {
        return notification(command, attribute(NL80211_ATTR_IFINDEX, port));
    };
    // clang-format off
    const std::map<char, std::string> meanings = {
        {'t', of(u32(7), kTrigger)}, {'r', of(u32(7), kNew)}, {'a', of(u32(7), kAborted)},
        {'T', of(u32(8), kTrigger)}, {'R', of(u32(8), kNew)}, {'A', of(u32(8), kAborted)},
        {'.', failure(EAGAIN)}, {'p', failure(EINPROGRESS)}, {'d', failure(EPERM)}, {'z', ""},
        {'k', acknowledgement(-EPERM)}, {'o', done()}, {'m', notification(kTrigger) + kResults},
        // Of a third port, with a port number that is too short, unknown, and without a command.
        {'U', of(u32(9), kTrigger)}, {'b', of(u16(8), kAborted)}, {'x', notification(77)},
        {'y', message(kFamily, "", 0, 0, 0)},
        // Not from the kernel.
        {'u', notification(kTrigger, "", 5, 5)}, {'q', notification(kNew, "", 0, 5)},
        {'s', notification(kNew, "", 5, 0)}};
    // clang-format on
    Datagrams all;
    for (const char letter : letters) {
        all.push_back(meanings.at(letter));
    }
    return all;
}

// What a scan makes of a list that is ready.
struct List {
    Datagrams dump;
    int32_t capacity;                    // of four elements
    std::string left;                    // the result, the elements and the words on stderr
    std::deque<Datagrams> earlier = {};  // replies to the dumps before
};

class Wifi : public testing::Test {
  protected:
    // A new handle on a new kernel.
    void open() {
        wifi.reset();
        kernel.reset();
        wifi.reset(wifi_scan_init("wlan7"));
    }

    // Scans into an array of four elements, of which the library may use some. Returns the result,
    // the elements and the words on stderr.
    std::string scan(int32_t capacity) {
        wifi_bss_record records[4] = {kBefore, kBefore, kBefore, kBefore};
        kernel.commands.clear();
        testing::internal::CaptureStderr();
        const int32_t result = wifi_scan_all(wifi.get(), records, capacity);
        EXPECT_TRUE(waits(kernel.notifying));
        return joined(result, listOf(records)) + testing::internal::GetCapturedStderr();
    }

    void expectGoodHandle() {
        kernel.notifications = {kResults};
        kernel.on[NL80211_CMD_GET_SCAN] = networks("1:1 2");
        EXPECT_EQ(wifi_scan_all(wifi.get(), nullptr, 0), 2) << "the handle is as good as before";
    }

    void expectLists(const std::vector<List>& lists) {
        for (const List& c : lists) {
            open();
            kernel.notifications = {kResults};
            kernel.dumps = c.earlier;
            kernel.on[NL80211_CMD_GET_SCAN] = c.dump;
            EXPECT_EQ(scan(c.capacity), c.left) << &c - lists.data();
            EXPECT_EQ(kernel.commands.size(), 3 * std::min<size_t>(c.earlier.size() + 1, 11));
            expectGoodHandle();
        }
    }

    Handle wifi;
};

TEST_F(Wifi, RequestsAreTheseBytes) {
    open();
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
}

TEST_F(Wifi, MostFailuresEndTheProcess) {
    const std::string prefix = "CML: wifi-scan: ", denied = "Operation not permitted\n",
                      noRoom = ": No buffer space available\n",
                      lookUp = prefix + "GetFamilyAndScanId failed: ",
                      noId = prefix + "No family id attribute\n",
                      past = prefix + "ReadPastNotificationsNonBlocking mnl_",
                      noGroup = prefix + "No scan multicast group in generic netlink nl80211\n\n",
                      wait = prefix + "Waiting for new scan results failed - mnl_socket_recvfrom: ";
    struct Case {
        std::string words;
        std::string family;  // the controller's reply; without, a scan on an open handle fails
        const char* letters = "";   // notifications
        const char* function = "";  // whose first call fails
    };
    // clang-format off
    const Case cases[] = {
        {lookUp + "No such file or directory\n", acknowledgement(-ENOENT)},
        {lookUp + "Protocol error\n", notification(1, "", 77, 0)},
        {lookUp + "No such process\n", notification(1, "", 1, 77)},
        {lookUp + denied, failure(EPERM)}, {noGroup, acknowledgement()},
        {noGroup, controllerReply(attribute(1, u16(28)))}, {noGroup, family(group("mlme", u32(6)))},
        {noGroup, family(group(kScan, u32(0)))}, {kInvalid + noGroup, family(group(kScan, "a"))},
        {kInvalid + noGroup, family(group("", u32(6)))}, {kInvalid + noGroup, family("a")},
        {kInvalid + noId, family("", "a")}, {noId, controllerReply(attribute(7, ""))},
        {kInvalid + prefix + "Missing id attribute for scan multicast group\n",
         family(attribute(1, group(kScan, "").substr(8, 12) + faulty(2)))},
        {past + "socket_recv failed: " + denied, "", "d"},
        {past + "cb_run failed: " + denied, "", "k"}, {past + "cb_run failed: Success\n", "", "o"},
        {wait + denied, "", "t.d"}, {wait + "Success\n", "", "t.z"},
        {prefix + "Processing notificatoins failed - mnl_cb_run: " + denied, "", "t.k"},
        {prefix + "mnl_socket_open" + noRoom, done(), "", "mnl_socket_open"},
        {prefix + "mnl_socket_bind" + noRoom, done(), "", "mnl_socket_bind"},
        {prefix + "mnl_socket_sendto" + noRoom, done(), "", "mnl_socket_sendto"},
        {prefix + "mnl_socket_set_sockopt" + noRoom, family(group(kScan, u32(1))), "",
         "mnl_socket_setsockopt"},
        {prefix + "SetChannelNonBlocking F_GETFL: Bad file descriptor\n", "", "", "F_GETFL"},
        {prefix + "SetChannelNonBlocking F_SETFL: Bad file descriptor\n", "", "", "F_SETFL"},
        {prefix + "mnl_socket_sendto" + noRoom, "", "", "mnl_socket_sendto"}};
    // clang-format on
    for (const Case& c : cases) {
        open();
        const auto run = [&] {
            const int socket = mnl_socket_get_fd(kernel.notifying);
            fault = {c.function};
            std::strcmp(c.function, "F_GETFL") == 0 ? close(socket) : 0;
            // The flags of such a descriptor can be read, but not changed.
            std::strcmp(c.function, "F_SETFL") == 0 ? dup2(::open("/", O_PATH), socket) : 0;
            kernel.notifications = notifications(c.letters);
            kernel.on[CTRL_CMD_GETFAMILY] = {c.family, acknowledgement()};
            c.family.empty() ? within(wifi_scan_all, wifi.get(), nullptr, 0)
                             : within(wifi_scan_init, "wlan7") != nullptr;
        };
        EXPECT_EXIT(run(), testing::ExitedWithCode(1), testing::Eq(c.words));
    }
}

TEST_F(Wifi, NotificationsDecideWhetherToScan) {
    struct Case {
        const char *past, *later;  // notifications that wait, and those after a trigger
        int32_t result;
        const char* sent;           // commands
        int error = 0;              // in the reply to the trigger
        const char* earlier = "r";  // notifications that an earlier call read
    };
    // clang-format off
    const Case cases[] = {
        {"", "tr", 0, "33 32 "}, {"t.r", "", 0, "32 "}, {"tpr", "", 0, "32 "}, {"tr", "", 0, "32 "},
        {"m", "", 0, "32 "}, {"xy", "r", 0, "33 32 "},
        // Only the kernel's own results count.
        {"qs", "r", 0, "33 32 "}, {"u.r", "", 0, "32 "},
        // A scan that is given up.
        {"ta", "r", 0, "33 32 "}, {"at.r", "", 0, "32 "}, {"ra", "", 0, "32 "},
        {"", "tar", -1, "33 "}, {"t.b", "", -1, ""},
        // A scan of another port that is given up.
        {"tTA.r", "", 0, "32 "}, {"t.TAr", "", 0, "32 "}, {"", "Atr", 0, "33 32 "},
        {"TUA.r", "", 0, "32 "}, {"AT.r", "", 0, "32 "}, {"T.A", "tr", 0, "33 32 "},
        {"T.A", "ta", -1, "33 "},
        // A trigger that is refused, as busy also because a scan began since the last look.
        {"", "", -1, "33 ", EIO}, {"", "", -1, "33 ", EBUSY}, {"", "T", -1, "33 ", EBUSY},
        {"", "t.r", 0, "33 32 ", EBUSY}, {"", "r", 0, "33 32 ", EBUSY},
        {"", "ta", -1, "33 ", EBUSY},
        // A scan that began in an earlier call. It is waited for only if the radio is busy.
        {"", ".r", 0, "33 32 ", EBUSY, "rt"}, {"", ".r", 0, "33 32 ", EBUSY, "tR"},
        {"", ".a", -1, "33 ", EBUSY, "rt"}, {"", "", -1, "33 ", EIO, "rt"},
        {"", "r", 0, "33 32 ", 0, "rt"},
        // One that ended in that call, or was another port's.
        {"", "", -1, "33 ", EBUSY, "tr"}, {"", "", -1, "33 ", EBUSY, "taR"},
        {"", "", -1, "33 ", EBUSY, "rT"}};
    // clang-format on
    const std::map<char, int> ignored = {{'a', 35}, {'A', 35}, {'b', 35}, {'x', 77}, {'y', 0}};
    for (const Case& c : cases) {
        SCOPED_TRACE(joined(c.past, c.later, c.error, c.earlier));
        open();
        std::string expected = joined(c.result, "- - - - ");
        for (const char letter : std::string(c.past) + c.later) {
            if (ignored.contains(letter)) {
                expected += "Ignoring generic netlink command type 28 seq 0 pid  0 genl cmd " +
                            std::to_string(ignored.at(letter)) + "\n";
            }
        }
        kernel.notifications = notifications(c.earlier);
        EXPECT_EQ(scan(0)[0], '0');
        kernel.notifications = notifications(c.past);
        kernel.later = notifications(c.later);
        kernel.on[NL80211_CMD_TRIGGER_SCAN] = {acknowledgement(-c.error)};
        EXPECT_EQ(scan(4), expected);
        EXPECT_EQ(kernel.commands, c.sent);
        expectGoodHandle();
    }
}

TEST_F(Wifi, TheJoinedNetworkComesFirst) {
    const std::string one = networks("1")[0], two = networks("2")[0], empty = network(""),
                      cutOff = two.substr(0, two.size() - 4);
    const std::string line = "Ignoring generic netlink command 28 seq 1 pid  1001 genl cmd 77\n";
    std::string endless = one, flagged = two;
    endless.replace(0, 4, u32(0x80000010));
    flagged.replace(6, 2, u16(NLM_F_DUMP_INTR));
    const auto largest = static_cast<size_t>(std::min(sysconf(_SC_PAGESIZE), 8192L));
    std::string large = network(attribute(NL80211_BSS_TSF, ""));
    large = network(attribute(NL80211_BSS_TSF, std::string(largest - large.size(), 'x')));
    const Datagrams changed = {networks("1 2 3:1")[2], one, flagged, one, done()};
    // clang-format off
    const std::vector<List> cases = {
        {networks("1 2:0"), 3, "2 1 2:0 - - "}, {networks("1:1 2"), 3, "2 1:1 2 - - "},
        {networks("1 2:1 3"), 3, "3 2:1 1 3 - "}, {networks("1 2 3:2"), 3, "3 3:2 2 1 - "},
        {networks("1:1 2 3:2"), 4, "3 3:2 2 1:1 - "}, {networks("1 2 3 4:1"), 2, "4 4:1 2 - - "},
        {networks("1 2:1 3:3"), 1, "3 2:1 - - - "}, {networks("1:1 2"), 0, "2 - - - - "},
        {networks("1:1 2"), -1, "2 - - - - "},
        // Messages of no use, and dumps that end early.
        {{reply(77, ""), one + one, done()}, 1, "2 1 - - - " + line},
        {{reply(34, ""), one, done()}, 3, "1 1 - - - "},
        {{acknowledgement(-ENODEV)}, 3, "0 - - - - "},
        {{one, acknowledgement(-EIO)}, 3, "1 1 - - - "}, {{one, failure(EIO)}, 3, "1 1 - - - "},
        {{one, failure(EINTR)}, 3, "1 1 - - - "}, {{one, notification(34)}, 3, "1 1 - - - "},
        // The largest datagram and one beyond, and messages that end outside of theirs.
        {{large, done()}, 0, "1 - - - - "}, {{large + "x", done()}, 0, "0 - - - - "},
        {{one + endless, done()}, 3, "1 1 - - - "}, {{one, cutOff, done()}, 3, "1 1 - - - "},
        // Lists that changed while they were read, one of them only before its end.
        {networks("4 5"), 3, "2 4 5 - - ", {changed}}, {networks("4"), 1, "1 4 - - - ", {changed}},
        {{empty, empty, done()}, 2, "2 9 9 - - ", {changed}},
        {{empty, done()}, 1, "1 9 - - - ", {{two, interrupted()}}},
        {networks("4 5"), 3, "2 4 5 - - ", std::deque<Datagrams>(10, changed)},
        {networks("4 5"), 3, "2 3:1 1 - - ", std::deque<Datagrams>(11, changed)}};
    // clang-format on
    expectLists(cases);
}

TEST_F(Wifi, AttributesAreReadByTheirRules) {
    const std::string bssid = attribute(NL80211_BSS_BSSID, "\1\2\3\4\5\6"), large(32, 'x'),
                      frequency = attribute(NL80211_BSS_FREQUENCY, u32(5180));
    // BSSID, frequency and SSID; and the words.
    const auto read = [](Text bss, Text left, Text words = "") -> List {
        return {{network(bss), done()}, 1, "1 " + left + " -1 -900 9 - - - " + words};
    };
    const auto name = [&](Text elements, Text left, Text words = "") {
        return read(bssid + elements + frequency, "1 6 5180 " + left, words);
    };
    // clang-format off
    std::vector<List> cases = {
        {{reply(34, attribute(45, "") + attribute(47, "")), done()}, 1, "1 9 - - - "},
        read(frequency + attribute(2, u32(2412)), "2 9 2412 net9"),
        read(frequency + attribute(1, "1234567"), "2 9 5180 net9", kInvalid),
        // Without a rule, above the table, and longer than the nest.
        read(attribute(3, "xyz") + attribute(19, "") + frequency, "2 9 5180 net9"),
        read(attribute(20, "") + attribute(99, "x") + bssid, "1 6 2409 net9"),
        read(bssid + attribute(2, u32(1), 8), "1 6 2409 net9"),
        // Names, and elements without one.
        name(ssid(""), ""), name(ssid(large), large), name(ssid("ab\0cd"s), "ab"),
        name(elements("\0\5abcde"s), "abcde"), name(ssid(large + "x"), "", kRefusedSsid),
        name(elements("\0\5abcd"s), "", kRefusedSsid), name(elements("\0"s), "", kRefusedSsid),
        name(elements("\1\1x\0\1y"s), "", kRefusedSsid), name(elements(""), "", kRefusedSsid)};
    // clang-format on
    for (const int number : {1, 2, 7, 9, 10}) {
        cases.push_back(read(bssid + faulty(number) + frequency, "1 6 2409 net9", kInvalid));
    }
    for (const int number : {3, 45, 47}) {
        const std::string all = faulty(number) + attribute(NL80211_ATTR_BSS, bssid);
        cases.push_back({{reply(34, all), done()}, 1, "0 - - - - " + kInvalid});
    }
    expectLists(cases);
#define LAST(table) NL80211_##table[NL80211_##table##_LENGTH - 1].attribute
    EXPECT_EQ(joined(LAST(VALIDATION), LAST(MCAST_GROUPS_VALIDATION), LAST(BSS_VALIDATION),
                     LAST(NEW_SCAN_RESULTS_VALIDATION), LAST(CMD_NEW_STATION_VALIDATION),
                     LAST(STA_INFO_VALIDATION)),
              "7 1 10 47 21 10");
}

TEST_F(Wifi, TheLinkIsThatToTheJoinedNetwork) {
    const std::string large(32, 'x'),
        received = attribute(NL80211_STA_INFO_RX_PACKETS, u32(7)),
        line = "Ignoring generic netlink command 28 seq 2 pid  1001 genl cmd 18\n",
        nest = attribute(NL80211_ATTR_STA_INFO, received);
    const Datagrams dump = networks("1 2:1 3"), changed = {networks("3:1")[0], interrupted()};
    struct Case {
        Datagrams dump, answer;
        // Result, end of the BSSID, SSID, status and the figures; SSID and three of them.
        std::string expected;
        std::string words = "";  // on stderr, of each
        std::deque<Datagrams> earlier = {};
    };
    std::vector<Case> cases = {
        {networks(""), {}, "0 9 before 9 9 9 9 9;  0 0 0"},
        {{acknowledgement(-EPERM)}, {}, "0 9 before 9 9 9 9 9;  0 0 0"},
        {networks("1 2"), {acknowledgement(-ENOENT)}, "1 1 net1 -1 9 9 9 9;  0 0 0"},
        {{network(ssid(large)), done()}, {}, "1 0 " + large + " -1 9 9 9 9;  0 0 0"},
        {dump, {station(-60, 0, 1)}, "1 2 net2 1 -60 -61 0 1; net2 -60 0 1"},
        {dump, {station(-60, 1, 0)}, "1 2 net2 1 -60 -61 1 0; net2 -60 1 0"},
        {dump, {station(-60, 0, 0)}, "1 2 net2 1 -60 -61 0 0;  -60 0 0"},
        {dump, {station(1, 5, 5)}, "1 2 net2 1 1 0 5 5;  1 5 5"},
        {dump, {station(0, 5, 3000000000)}, "1 2 net2 1 0 -1 5 3000000000; net2 0 5 3000000000"},
        {dump, {station(2, 5, 5)}, "1 2 net2 1 2 1 5 5; net2 2 5 5"},
        {dump, {station("")}, "1 2 net2 1 9 9 9 9;  0 0 0"},
        {dump, {reply(18, nest)}, "1 2 net2 1 9 9 9 9;  0 0 0", line},
        {dump, {reply(19, faulty(21) + nest)}, "1 2 net2 1 9 9 9 9;  0 0 0", kInvalid},
        {{network(""), done()}, {}, "1 0  -1 9 9 9 9;  0 0 0", "", {changed}},
        {networks("2:2"), {station(5, 5, 5)}, "1 2 net2 2 5 4 5 5; net2 5 5 5", "", {changed}}};
    const std::map<uint16_t, std::string> faults = {{7, "abc"}, {9, "abc"}, {10, "a"}, {13, "abc"}};
    for (const auto& [number, bytes] : faults) {
        const Datagrams answer = {station(received + attribute(number, bytes) + received)};
        cases.push_back({dump, answer, "1 2 net2 1 9 9 7 9; net2 0 7 0", kInvalid});
    }
    const char* buffer = nullptr;
    for (const Case& c : cases) {
        open();
        kernel.on[NL80211_CMD_GET_SCAN] = c.dump;
        kernel.on[NL80211_CMD_GET_STATION] = c.answer;
        kernel.on[NL80211_CMD_GET_STATION].push_back(acknowledgement());
        wifi_station_record r{{9, 9, 9, 9, 9, 9}, "before", 9, 9, 9, 9, 9};
        r.ssid[sizeof r.ssid - 1] = '9';
        CML_WifiStatus s{"x", 9, 9, 9};
        testing::internal::CaptureStderr();
        kernel.dumps = c.earlier;
        const int32_t result = wifi_scan_station(wifi.get(), &r);
        wifi.reset();
        kernel.dumps = c.earlier;
        EXPECT_EQ(CML_getWifiStatus("wlan7", &s), 1);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), c.words + c.words);
        EXPECT_EQ(joined(result, int{r.bssid[5]}, r.ssid, r.status, int{r.signal_dbm},
                         int{r.signal_avg_dbm}, r.rx_packets, r.tx_packets) +
                      "; " + joined(s.ssid, s.signalDbm, s.rxPackets, s.txPackets),
                  c.expected);
        buffer = *s.ssid != '\0' && buffer == nullptr ? s.ssid : buffer;
        EXPECT_TRUE(*s.ssid == '\0' || s.ssid == buffer) << "one buffer";
    }
    EXPECT_STREQ(buffer, "net2") << "no empty text is written to it";
    CML_WifiStatus s{"x", 9, 9, 9};
    EXPECT_EQ(CML_getWifiStatus(nullptr, &s) + CML_getWifiStatus("wlan7", nullptr), 0);
    EXPECT_STREQ(s.ssid, "x");
    EXPECT_EQ(CML_getWifiStatus("wlan8", &s), 0);
    EXPECT_EQ(joined(s.ssid == nullptr, s.signalDbm, s.rxPackets, s.txPackets), "1 0 0 0");
    fault = {"if_nametoindex", 2};
    EXPECT_EQ(within(wifi_scan_init, "wlan7"), nullptr) << "the port is gone meanwhile";
}

}  // namespace
