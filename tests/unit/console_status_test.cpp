#include <console-manager/settings.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cwchar>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>

#include "support/sandbox.h"

namespace {

using Json = nlohmann::json;

// A pseudo-terminal on which the program runs.
class Terminal {
  public:
    explicit Terminal(const std::string& command, int columns = 80, int rows = 24) {
        const winsize size = sizeOf(columns, rows);
        if (forkpty(&master, nullptr, nullptr, &size) == 0) {
            execl("/bin/sh", "sh", "-c", ("exec " + command).c_str(), nullptr);
        }
    }
    ~Terminal() { close(master); }

    void type(std::string_view keys) const {
        EXPECT_EQ(write(master, keys.data(), keys.size()), std::ssize(keys));
    }

    void resize(int columns, int rows) const {
        const winsize size = sizeOf(columns, rows);
        ioctl(master, TIOCSWINSZ, &size);
    }

    // What is written from now on to that text, or to the end; status is then set.
    std::string until(const std::string& end) {
        std::string text;
        char byte = 0;
        while ((end.empty() || !text.ends_with(end)) && read(master, &byte, 1) == 1) {
            text += byte;
        }
        return text;
    }

    // The rest, without control sequences, and the exit status in a line of its own.
    std::string rest() {
        std::string text =
            std::regex_replace(until(""), std::regex("\r|\033\\[[0-9;]*[A-Za-z]"), "");
        int status = 0;
        wait(&status);
        return text + "status " + std::to_string(WEXITSTATUS(status)) + "\n";
    }

  private:
    static winsize sizeOf(int columns, int rows) {
        return {static_cast<unsigned short>(rows), static_cast<unsigned short>(columns), 0, 0};
    }

    int master = -1;
};

class ConsoleStatus : public Sandbox {
  protected:
    void prepare() override {
        run("ip link add v0 type veth peer name a-port-name-0 && ip address add 192.168.100.200/24 "
            "dev v0 && "
            "ip link set v0 up");
        ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
        setenv("TERM", "xterm", 1);
        unsetenv("NO_COLOR");
    }

    // All output, and the exit status in a line of its own at the end.
    static std::string answer(const std::string& arguments) {
        return run("{ " CS " " + arguments + "; echo status $?; } 2>&1");
    }

    static Json json(const std::string& arguments) {
        return Json::parse(run(CS " --json " + arguments), nullptr, false);
    }
};

TEST_F(ConsoleStatus, AnswersCommands) {
    putProgram(
        "ping",
        "case $* in '-c1 -w3 -I v0 fe80::1%v0') exit 0;; *-w2*far*) exit 1;; *) exit 2;; esac");
    const struct {
        const char* arguments;
        const char* end;  // of the answer
    } rows[] = {
        {"set Language DE", "status 0\n"},
        {"get Language", "DE\nstatus 0\n"},
        {"reset Language", "status 0\n"},
        {"get Language", "EN\nstatus 0\n"},
        {"get Language >/dev/full", "No space left on device\nstatus 1\n"},
        {"--watch 1 >/dev/full", "No space left on device\nstatus 1\n"},
        {"set Theme dark && " CS " get Theme", "DARK\nstatus 0\n"},
        {"set Theme 3", "takes LIGHT, DARK, AUTO or 0 to 2, not '3'\nstatus 2\n"},
        {"set Theme DRAK", "not 'DRAK'; did you mean DARK?\nstatus 2\n"},
        {"set AllowDriverReboot 1 && " CS " get AllowDriverReboot", "true\nstatus 0\n"},
        {"set DriverDisplaySource -7 && " CS " get DriverDisplaySource", "-7\nstatus 0\n"},
        {"set DriverDisplaySource 7x", "of 32 bits, not '7x'\nstatus 2\n"},
        {"set Language -- -x && " CS " get Language", "-x\nstatus 0\n"},
        {"get language", "there is no setting 'language'; did you mean Language?\nstatus 2\n"},
        {"get Language x", "Language has no nodes: it is no list\nstatus 2\n"},
        {"set HomeScreenIcon map", "name one of its nodes, too\nstatus 2\n"},
        {"set HomeScreenIcon map /m", "status 0\n"},
        {"set HomeScreenIcon f\xc3\xbcr \"$(printf 'a\\033[1m\\233\\302\\233\\377')\"",
         "status 0\n"},
        {"list HomeScreenIcon", "  Node  Value\n  f\xc3\xbcr   a?[1m???\n  map   /m\nstatus 0\n"},
        {"get HomeScreenIcon mop", "no HomeScreenIcon 'mop'; did you mean map?\nstatus 1\n"},
        {"reset HomeScreenIcon map && " CS " get HomeScreenIcon map", "\nstatus 0\n"},
        {"remove HomeScreenIcon map && " CS " remove HomeScreenIcon map", "'map'\nstatus 1\n"},
        {"clear HomeScreenIcon && " CS " list HomeScreenIcon", "Node  Value\nstatus 0\n"},
        {"list Theme", "there is no list 'Theme'\nstatus 2\n"},
        {"factory-reset </dev/null", "needs --yes where it can't ask\nstatus 2\n"},
        {"factory-reset --yes && " CS " get Theme", "LIGHT\nstatus 0\n"},
        {"ping fe80::1%v0 --port=v0 -t3", "fe80::1%v0 answers\nstatus 0\n"},
        {"ping far", "far doesn't answer\nstatus 1\n"},
        {"ping nowhere", "can't be reached, or there is no such name\nstatus 1\n"},
        {"ping 'a;touch /mnt/hit'", "is no name or address\nstatus 2\n"},
        {"ping -- -f", "'-f' is no name or address\nstatus 2\n"},
        {"ping far --port '$(touch /mnt/hit)'; ls /mnt",
         "no name or address\ntest\nvex-data\nstatus 0\n"},
        {"ping far --timeout 0", "from 1, not '0'\nstatus 2\n"},
        {"--watch 0", "from 1, not '0'\nstatus 2\n"},
        {"get --watch 1 Theme", "get takes no --watch\nstatus 2\n"},
        {"--jsn", "there is no option --jsn; did you mean --json?\nstatus 2\n"},
        {"--watch", "--watch needs a value\nstatus 2\n"},
        {"-x", "there is no option -x\nstatus 2\n"},
        {"scan nothing", "No such device\nstatus 1\n"},
        {"prots", "there is no command 'prots'; did you mean ports?\nstatus 2\n"},
        {"get", "get takes NAME [NODE]\nstatus 2\n"},
        {"get --help | head -n 1", "usage: console-status get NAME [NODE]\nstatus 0\n"},
        {"--version", "console-status " CS_VERSION "\nstatus 0\n"},
    };
    for (const auto& row : rows) {
        const std::string all = answer(row.arguments);
        EXPECT_TRUE(all.ends_with(row.end)) << row.arguments << ": " << all;
    }
    for (const char* key : {"n", "y"}) {
        Terminal terminal(CS " factory-reset");
        EXPECT_TRUE(terminal.until("[y/N] ").starts_with("Remove all values"));
        terminal.type(key + std::string("\n"));
        EXPECT_TRUE(terminal.rest().ends_with(*key == 'y' ? "status 0\n"
                                                          : "nothing is changed\nstatus 1\n"));
    }
    DAL_CML_setLanguage("a\033c");
    EXPECT_EQ(Terminal(CS " get Language").rest(), "a?c\nstatus 0\n");
    EXPECT_EQ(run(CS " get Language"), "a\033c\n");
}

TEST_F(ConsoleStatus, WritesJsonForScripts) {
    ASSERT_EQ(DAL_CML_setTheme(CML_THEME_DARK), 0);
    DAL_CML_setHomeScreenIcon("n\xff", "caf\xc3\xa9");
    bindFile("/sys/devices/system/cpu/online", "0,2-3\n");
    bindFile("/proc/stat", "cpu 1 1 1 1\ncpu0 1 1 1 1\ncpu2 1 1 1 1\ncpu3 1 1 1 1\n");
    bindFile("/proc/meminfo", "MemTotal: 4194304 kB\nMemFree: 1024 kB\n");
    bindFile("/sys/class/net/v0/statistics/tx_bytes", "3000000000\n");
    bindFile("/sys/class/net/v0/statistics/rx_bytes", "2147483647\n");
    const Json report = json("");
    const struct {
        const char* pointer;
        Json value;
    } rows[] = {
        {"/settings/Theme",
         {{"value", 1},
          {"word", "DARK"},
          {"default", 0},
          {"default_word", "LIGHT"},
          {"stored", true},
          {"database", "persistent"}}},
        {"/settings/Language",
         {{"value", "EN"},
          {"word", nullptr},
          {"default", "EN"},
          {"default_word", nullptr},
          {"stored", false},
          {"database", "persistent"}}},
        {"/settings/AutoTheme/database", "volatile"},
        {"/lists/HomeScreenIcon/nodes", {{{"node", "n\ufffd"}, {"value", "caf\u00e9"}}}},
        {"/databases/persistent/error", nullptr},
        {"/ports/2/name", "v0"},
        {"/ports/2/state", "no link"},
        {"/ports/2/ipv4_address", "192.168.100.200"},
        {"/ports/2/ipv4_mask", "255.255.255.0"},
        {"/ports/2/ipv4_gateway", nullptr},
        {"/ports/2/rx_bytes", 2147483647},
        {"/ports/2/tx_bytes", nullptr},
        {"/device/memory", {{"total_bytes", 4294967296}, {"unused_bytes", 1048576}}},
        {"/device/load/all", nullptr},
        {"/device/load/processors/1/processor", 2},
        {"/wifi", Json::array()},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(report.value(Json::json_pointer(row.pointer), Json("absent")), row.value)
            << row.pointer;
    }
    EXPECT_EQ(report["settings"].size() + report["lists"].size(), 49U);
    for (const char* section : {"settings", "ports", "device", "wifi"}) {
        const Json alone = json(section);
        for (const auto& [key, value] : alone.items()) {
            EXPECT_EQ(value.type(), report[key].type()) << key;
        }
    }
    const std::string device = run(CS " device");
    EXPECT_NE(device.find("  core 2  "), std::string::npos) << device;
    EXPECT_NE(device.find("1.0 MiB of 4.0 GiB unused\n"), std::string::npos) << device;
    EXPECT_TRUE(std::regex_search(
        run(CS " ports"), std::regex("v0 +no link  192.168.100.200/24  - +2.0 GiB  0 or >2GiB")));
    std::istringstream lines(run(CS " ports --watch 1 --json | head -n 2"));
    for (const bool first : {true, false}) {
        std::string line;
        std::getline(lines, line);
        const Json rate = Json::parse(line)["ports"][2]["rx_bytes_per_second"];
        EXPECT_EQ(rate, first ? Json() : Json(0.0));
    }
}

// Columns that the longest line takes.
int widest(const std::string& text) {
    int most = 0;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::wstring wide(line.size(), L'\0');
        wide.resize(std::mbstowcs(wide.data(), line.c_str(), line.size()));
        most = std::max(most, wcswidth(wide.data(), wide.size()));
    }
    return most;
}

TEST_F(ConsoleStatus, FitsATerminal) {
    const std::string value(300, 'x');
    DAL_CML_setLanguage(value.c_str());
    DAL_CML_setHomeScreenIcon(value.c_str(), "\u65e5\u672c\u8a9e");
    const std::string wide = run(CS);
    EXPECT_NE(wide.find(value), std::string::npos);
    for (const int columns : {40, 80, 120}) {
        const std::string report = Terminal(CS, columns).rest();
        EXPECT_TRUE(widest(report) <= columns && widest(report) > columns - 20) << report;
        EXPECT_NE(report.find("192.168.100.200/24"), std::string::npos) << report;
        EXPECT_TRUE(report.ends_with("status 0\n"));
        EXPECT_LE(widest(Terminal(CS " list HomeScreenIcon", columns).rest()), columns);
        EXPECT_EQ(run("COLUMNS=" + std::to_string(columns) + " " CS " ports"), run(CS " ports"));
    }
    EXPECT_NE(Terminal(CS " device").until("").find("\033[1mDevice\033[0m"), std::string::npos);
    for (const char* without : {"NO_COLOR=1", "TERM=dumb"}) {
        EXPECT_EQ(Terminal("env " + std::string(without) + " " CS).until("").find('\033'),
                  std::string::npos);
    }
}

TEST_F(ConsoleStatus, RedrawsAWatchedTerminal) {
    Terminal terminal(CS " --watch 600", 80, 8);
    terminal.until("\033[H");
    const std::string screen = terminal.until("\033[J");
    EXPECT_EQ(std::ranges::count(screen, '\n'), 7) << screen;
    EXPECT_NE(screen.find(" more lines"), std::string::npos) << screen;
    terminal.resize(120, 50);
    EXPECT_NE(terminal.until("\033[J").find("a-port-name-0"), std::string::npos);
    terminal.type("\003");
    EXPECT_EQ(terminal.rest(), "^C\nstatus 0\n");
}

TEST_F(ConsoleStatus, TellsWhyADatabaseCantBeUsed) {
    const std::string database = "/mnt/vex-data/m7/console-manager.db";
    const std::string start = "the persistent database " + database + " can't be used: ";
    const struct {
        const char* situation;
        const char* why;
        const char* as = "";
    } rows[] = {
        {"mount -t tmpfs -o ro none /mnt",
         "there is none, and it can't be made in /mnt: Read-only file system"},
        {"chmod 555 /mnt", "there is none, and it can't be made in /mnt: Permission denied",
         "setpriv --bounding-set=-dac_override "},
        {"mkdir /mnt/vex-data && touch /mnt/vex-data/m7", "/mnt/vex-data/m7 is no folder"},
        {"mkdir -p /mnt/vex-data/m7 && yes | head -c 9999 >/mnt/vex-data/m7/console-manager.db",
         "it is damaged, or no database, or another process holds it"},
    };
    for (const auto& row : rows) {
        run("mount -t tmpfs none /mnt; " + std::string(row.situation));
        const std::string program = std::string(row.as) + CS " ";
        const std::string message = "console-status: " + start + row.why + "\nstatus 1\n";
        EXPECT_EQ(run(program + "get Theme 2>&1; echo status $?"), message);
        EXPECT_EQ(run(program + "set Theme dark 2>&1; echo status $?"), message);
        const std::string report = run(program + "2>&1; echo status $?");
        EXPECT_TRUE(report.starts_with("\nSettings\n  " + start + row.why + "\n")) << report;
        EXPECT_NE(report.find("AutoTheme"), std::string::npos) << report;
        EXPECT_TRUE(report.ends_with("status 1\n")) << report;
        EXPECT_EQ(Json::parse(
                      run(program + "settings --json || true"))["databases"]["persistent"]["error"],
                  start + row.why);
    }
}

// The manual page and the completion against the program's own table of commands.
TEST_F(ConsoleStatus, IsDocumentedAndCompleted) {
    const std::string page = readFile(CS_SOURCE "/console-status.1");
    const std::string plain = std::regex_replace(page, std::regex(R"(\\f[BIR]|\\(?=-))"), "");
    std::set<std::string> documented;
    const std::regex entry(R"(\.TP\n(.*))");
    const size_t start = plain.find(".SH COMMANDS");
    const std::string part = plain.substr(start, plain.find(".SH EXIT STATUS") - start);
    for (std::sregex_iterator found(part.begin(), part.end(), entry);
         found != std::sregex_iterator(); ++found) {
        documented.insert(found->str(1));
    }
    std::set<std::string> known;
    const std::string help = run(CS " help");
    const std::regex line(R"((?:^|\n)  (\S.*?)  +\S)");
    for (std::sregex_iterator found(help.begin(), help.end(), line);
         found != std::sregex_iterator(); ++found) {
        known.insert(found->str(1));
    }
    EXPECT_EQ(documented, known);

    DAL_CML_setHomeScreenIcon("a b", "");
    const struct {
        const char* line;
        const char* wanted;
    } rows[] = {
        {"h", "help\n"},
        {"set Theme ''", "LIGHT\nDARK\nAUTO\n"},
        {"set Theme d", "DARK\n"},
        {"get theme ''", "\n"},
        {"reset lang", "Language\n"},
        {"clear h", "HomeScreenIcon\n"},
        {"get HomeScreenIcon ''", "a\\ b\n"},
        {"ping far --port v", "v0\n"},
        {"scan v", "v0\n"},
        {"ping --", "--json\n--port\n--timeout\n--help\n"},
        {"help set", "settings\nset\n"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(
            run("bash -c '. " CS_SOURCE "/completion.bash; COMP_WORDS=(x \"$@\"); COMP_CWORD=$#; "
                "_console_status " CS "; printf \"%s\\n\" \"${COMPREPLY[@]}\"' bash " +
                std::string(row.line)),
            row.wanted)
            << row.line;
    }

    // A port that says it is wireless, on a kernel or a machine that has no such thing.
    run("mkdir -p /mnt/test/net/lo/phy80211 && mount --bind /mnt/test/net /sys/class/net");
    const Json watched = json("--watch 1 | head -n 1");
    EXPECT_TRUE(watched["wifi"][0]["error"].is_string() || watched["wifi"][0]["connected"] == false)
        << watched;
    const std::regex name("/([a-z]\\w*)");
    for (const Json& told : {json(" || true"), watched, json("get Theme"),
                             json("list HomeScreenIcon"), json("ping 127.0.0.1 || true")}) {
        const Json flat = told.flatten();
        for (const auto& [path, value] : flat.items()) {
            // The names of settings are documented elsewhere.
            for (std::sregex_iterator key(path.begin(), path.end(), name), end; key != end; ++key) {
                EXPECT_NE(page.find("\\fB" + key->str(1) + "\\fR"), std::string::npos) << path;
            }
        }
    }
}

}  // namespace
