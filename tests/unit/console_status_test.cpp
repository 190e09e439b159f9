// The program as it is used: from a shell, on a terminal and by scripts.
#include <console-manager/settings.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cwchar>
#include <nlohmann/json.hpp>

#include "support/sandbox.h"

namespace {

using Json = nlohmann::json;

// A pseudo-terminal on which a command runs.
struct Terminal {
    explicit Terminal(const std::string& command, int columns = 80) {
        const winsize size{8, static_cast<unsigned short>(columns), 0, 0};
        if (forkpty(&master, nullptr, nullptr, &size) == 0) {
            execl("/bin/sh", "sh", "-c", ("exec " + command).c_str(), nullptr);
        }
    }
    ~Terminal() { close(master); }

    void type(std::string_view keys) const {
        EXPECT_EQ(write(master, keys.data(), keys.size()), std::ssize(keys));
    }

    // What is written from now on up to that text, or to the end.
    std::string until(const std::string& end) const {
        std::string text;
        for (char byte = 0; !text.ends_with(end) && read(master, &byte, 1) == 1;) {
            text += byte == '\r' ? "" : std::string(1, byte);
        }
        return text;
    }

    // The rest, and the exit status.
    std::string rest() const {
        const std::string text = until("no such end");
        int status = 0;
        wait(&status);
        return text + "status " + std::to_string(WEXITSTATUS(status)) + "\n";
    }

    int master = -1;
};

class ConsoleStatus : public Sandbox {
  protected:
    void prepare() override {
        addPorts();
        run("ln -sf '" CS "' /mnt/test/bin");
        std::setlocale(LC_CTYPE, "C.UTF-8");
        setenv("TERM", "xterm", 1);
        unsetenv("NO_COLOR");
    }

    // All output, and the exit status.
    static std::string answer(const std::string& command) {
        return run("{ " + command + "; echo status $?; } 2>&1");
    }
};

TEST_F(ConsoleStatus, AnswersCommands) {
    // What follows the program's name, the exit status, and what comes out.
    const struct {
        std::string arguments;
        int status;
        std::string words;
    } rows[] = {
        {"set Language DE", 0, ""},
        {"get Language", 0, "DE\n"},
        {"reset Language; console-status get Language", 0, "EN\n"},
        {"set Language -- -x; console-status get Language", 0, "-x\n"},
        {"get Language >/dev/full", 1, "output: No space left on device\n"},
        {"--watch 1 >/dev/full", 1, "output: No space left on device\n"},
        {"set Theme dark; console-status get Theme", 0, "DARK\n"},
        {"set Theme 3", 2, "Theme takes LIGHT (0), DARK (1), AUTO (2), not '3'\n"},
        {"set Theme DRAK", 2, "AUTO (2), not 'DRAK'; did you mean DARK?\n"},
        {"set AllowDriverReboot 1; console-status get AllowDriverReboot", 0, "true\n"},
        {"set DriverDisplaySource -7; console-status get DriverDisplaySource", 0, "-7\n"},
        {"set DriverDisplaySource 7x", 2, "takes a whole number of 32 bits, not '7x'\n"},
        {"get language", 2, "no setting or list 'language'; did you mean Language?\n"},
        {"list Theme", 2, "Theme is no list\n"},
        {"set HomeScreenIcon map", 2, "HomeScreenIcon is a list: name one of its nodes, too\n"},
        {"set HomeScreenIcon map /m; console-status set HomeScreenIcon f /f", 0, ""},
        {"list HomeScreenIcon", 0, "  Node  Value\n  f     /f\n  map   /m\n"},
        {"get HomeScreenIcon mop", 1, "there is no HomeScreenIcon 'mop'\n"},
        {"reset HomeScreenIcon map; console-status get HomeScreenIcon map", 0, "\n"},
        {"remove HomeScreenIcon f; console-status get HomeScreenIcon f", 1, "Icon 'f'\n"},
        {"clear HomeScreenIcon; console-status list HomeScreenIcon", 0, "  Node  Value\n"},
        {"factory-reset </dev/null", 2, "factory-reset needs --yes where it can't ask\n"},
        {"factory-reset --yes; console-status get Theme", 0, "LIGHT\n"},
        {"ping fe80::1%wire --port=wire -t3", 0, "fe80::1%wire answers\n"},
        {"ping far", 1, "far doesn't answer\n"},
        {"ping nowhere", 1, "can't be reached, or there is no such name\n"},
        {"ping 'a;touch /mnt/hit'", 2, "'a;touch /mnt/hit' is no name or address\n"},
        {"ping far --port -f", 2, "'-f' is no name or address\n"},
        {"ping far --timeout 0", 2, "--timeout takes a whole number from 1, not '0'\n"},
        {"--watch 1x", 2, "--watch takes a whole number from 1, not '1x'\n"},
        {"get --watch 1 Theme", 2, "get takes no --watch\n"},
        {"--jsn", 2, "there is no option --jsn; did you mean --json?\n"},
        {"--json=1", 2, "--json takes no value\n"},
        {"--watch", 2, "--watch needs a value\n"},
        {"-x", 2, "there is no option -x\n"},
        {"scan nothing", 1, "Incorrect network interface: No such device\n"},
        {"prots", 2, "there is no command 'prots'; did you mean ports?\n"},
        {"get", 2, "get takes NAME [NODE]\n"},
        {"get --help | head -n 1", 0, "usage: console-status get NAME [NODE]\n"},
        {"--version", 0, "console-status " CS_VERSION "\n"},
    };
    putProgram("ping",
               "case $* in *'w3 -I wire fe80::1%wire') ;; *w2*far*) exit 1;; *) exit 2; esac");
    for (const auto& [arguments, status, words] : rows) {
        const std::string all = answer("console-status " + arguments);
        EXPECT_TRUE(all.ends_with(words + "status " + std::to_string(status) + "\n"))
            << arguments << ": " << all;
    }
    for (const char* key : {"n\n", "y\n"}) {
        const Terminal terminal("console-status factory-reset");
        EXPECT_EQ(terminal.until("] "), "Remove all values of all settings and lists? [y/N] ");
        terminal.type(key);
        EXPECT_TRUE(
            terminal.rest().ends_with(*key == 'y' ? "y\nstatus 0\n" : "changed\nstatus 1\n"));
    }
    ASSERT_EQ(DAL_CML_setLanguage("a\033[1m\x9b\xc2\x9b\xff"), 0);
    EXPECT_EQ(Terminal("console-status get Language").rest(), "a?[1m???\nstatus 0\n");
    EXPECT_EQ(run("console-status get Language"), "a\033[1m\x9b\xc2\x9b\xff\n");
}

TEST_F(ConsoleStatus, WritesJsonForScripts) {
    // What stands where.
    const std::pair<const char*, const char*> rows[] = {
        {"/settings/Theme", R"({"value": 1, "word": "DARK", "words": ["LIGHT", "DARK", "AUTO"],
            "default": 0, "default_word": "LIGHT", "stored": true, "database": "persistent"})"},
        {"/settings/Language", R"({"value": "EN", "word": null, "words": null, "default": "EN",
            "default_word": null, "stored": false, "database": "persistent"})"},
        {"/lists/HomeScreenIcon/nodes", R"([{"node": "n\ufffd", "value": "caf\u00e9"}])"},
        {"/databases/volatile", R"({"path": "/tmp/m7/console-manager.db", "error": null})"},
        {"/ports/4", R"({"name": "wire", "state": "up", "ipv4_address": "192.0.2.5",
            "ipv4_mask": "255.255.255.128", "ipv4_gateway": null, "mac_address": "02:00:5e:10:00:01",
            "rx_bytes": 2147483647, "tx_bytes": null})"},
        {"/device/memory", R"({"total_bytes": 4294967296, "unused_bytes": 1048576})"},
        {"/device/load/processors/1", R"({"processor": 2, "load": null})"},
        {"/wifi", "[]"}};
    ASSERT_EQ(DAL_CML_setTheme(CML_THEME_DARK), 0);
    ASSERT_EQ(DAL_CML_setHomeScreenIcon("n\xff", "caf\xc3\xa9"), 0);
    bindFile("/proc/stat", "cpu 1 1 1 1\ncpu0 1 1 1 1\ncpu2 1 1 1 1\ncpu3 1 1 1 1\n");
    bindFile("/proc/meminfo", "MemTotal: 4194304 kB\nMemFree: 1024 kB\n");
    bindFile("/sys/class/net/wire/statistics/tx_bytes", "3000000000\n");
    bindFile("/sys/class/net/wire/statistics/rx_bytes", "2147483647\n");
    Json report = Json::parse(run("console-status --json"));
    report["ports"][4].erase("ipv6_address");
    for (const auto& [place, value] : rows) {
        EXPECT_EQ(report.at(Json::json_pointer(place)), Json::parse(value)) << place;
    }
    const std::string text = run("console-status ports; console-status device");
    for (const char* const line :
         {"  wire  up       192.0.2.5/25  -           2.0 GiB  0 or >2GiB  02:00:5e:10:00:01",
          "\n    core 2 ", " 0 %  1.0 MiB of 4.0 GiB unused\n"}) {
        EXPECT_NE(text.find(line), std::string::npos) << line << text;
    }
    const std::string watched = run("console-status ports --watch 1 --json | head -n 2");
    const Json second = Json::parse(watched.substr(watched.find('\n')));
    EXPECT_EQ(second["ports"][4]["rx_bytes_per_second"], 0.0);
    EXPECT_EQ(second["time"].get<std::string>().back(), 'Z');
}

TEST_F(ConsoleStatus, FitsATerminal) {
    const std::string value(300, 'x');
    ASSERT_EQ(DAL_CML_setLanguage(value.c_str()), 0);
    ASSERT_EQ(DAL_CML_setHomeScreenIcon(value.c_str(), "\u65e5\u672c\u8a9e"), 0);
    EXPECT_NE(run("console-status").find(value + "\n  MaintenanceTimeout"), std::string::npos);
    for (const int told : {40, 80, 0}) {
        const int columns = told > 0 ? told : 120;
        for (const char* command : {"", " list HomeScreenIcon"}) {
            std::istringstream lines(
                Terminal("env NO_COLOR=1 COLUMNS=120 console-status" + std::string(command), told)
                    .rest());
            int widest = 0;
            for (std::string line; std::getline(lines, line);) {
                std::wstring wide(line.size(), L'\0');
                wide.resize(std::mbstowcs(wide.data(), line.c_str(), wide.size()));
                widest = std::max(widest, wcswidth(wide.data(), wide.size()));
            }
            EXPECT_TRUE(widest <= columns && widest > columns - 20) << columns << ": " << widest;
        }
    }
    for (const char* environment : {"", "env NO_COLOR=1 ", "env TERM=dumb "}) {
        const std::string text =
            Terminal(environment + std::string("console-status device")).rest();
        EXPECT_EQ(text.find("\033[1mDevice") == std::string::npos, *environment != '\0') << text;
    }
}

TEST_F(ConsoleStatus, RedrawsAWatchedTerminal) {
    const Terminal terminal("console-status --watch 600");
    terminal.until("\033[H");
    const std::string screen = terminal.until("\033[J");
    EXPECT_EQ(std::ranges::count(screen, '\n'), 7) << screen;
    const winsize larger{50, 120, 0, 0};
    ioctl(terminal.master, TIOCSWINSZ, &larger);
    EXPECT_NE(terminal.until("\033[J").find("wire"), std::string::npos);
    terminal.type("\003");
    EXPECT_TRUE(terminal.rest().ends_with("\nstatus 0\n"));
}

TEST_F(ConsoleStatus, TellsWhyADatabaseCantBeUsed) {
    // What is made of "/mnt", who looks, and what is told.
    const std::tuple<std::string, std::string, std::string> rows[] = {
        {"mount -t tmpfs -o ro none /mnt", "",
         "there is none, and it can't be made in /mnt: Read-only file system"},
        {"chmod 555 /mnt", "setpriv --bounding-set=-dac_override ",
         "there is none, and it can't be made in /mnt: Permission denied"},
        {"mkdir /mnt/vex-data; touch /mnt/vex-data/m7", "", "/mnt/vex-data/m7 is no folder"},
        {"mkdir -p /mnt/vex-data/m7; yes | head -c 9999 >/mnt/vex-data/m7/console-manager.db", "",
         "it is damaged, or no database"},
        {"mount -t tmpfs -o size=8k none /mnt; mkdir -p /mnt/vex-data/m7; head -c 8192 /dev/zero "
         ">/mnt/full || true",
         "", "its disk is full"},
    };
    run("mkdir /tmp/m7/bin; cp /mnt/test/bin/* /tmp/m7/bin");
    setenv("PATH", ("/tmp/m7/bin:" + std::string(getenv("PATH"))).c_str(), 1);
    for (const auto& [situation, as, reason] : rows) {
        run("mount -t tmpfs none /mnt; " + situation);
        const std::string program = as + "console-status";
        const std::string why =
            "the persistent database /mnt/vex-data/m7/console-manager.db can't be used: " + reason;
        EXPECT_EQ(answer(program + " get Theme"), "console-status: " + why + "\nstatus 1\n");
        const std::string both = answer(program) + answer(program + " settings --json");
        EXPECT_TRUE(both.starts_with("\nSettings\n  " + why + "\n  Setting")) << both;
        EXPECT_NE(both.find("status 1\n{"), std::string::npos) << both;
        EXPECT_NE(both.find(why + "\"\n"), std::string::npos) << both;
    }
}

// The manual page against the program's own help, and the completion against its answers.
TEST_F(ConsoleStatus, IsDocumentedAndCompleted) {
    const std::string entries =
        run("sed -n '/^.SH COMMANDS/,/^.SH EXIT/{/^.TP/{n;s/\\\\f[BIR]\\|\\\\//gp}}' '" CS_SOURCE
            "/console-status.1'");
    EXPECT_EQ(entries, run("console-status help | sed -n 's/^  \\([^ ].*[^ ]\\)   *[^ ].*/\\1/p'"));

    ASSERT_EQ(DAL_CML_setHomeScreenIcon("a $(b)\\", ""), 0);
    const std::pair<std::string, std::string> rows[] = {
        {"he", "help\n"},
        {"reset Lang", "Language\n"},
        {"clear h", "HomeScreenIcon\n"},
        {"set Theme ''", "LIGHT\nDARK\nAUTO\n"},
        {"get HomeScreenIcon ''", "a\\ \\$\\(b\\)\\\\\n"},
        {"ping far --port w", "wire\n"},
        {"--json scan w", "wire\n"},
        {"ping far --p", "--port\n"},
    };
    for (const auto& [line, words] : rows) {
        EXPECT_EQ(
            run("bash -c '" + std::string(". \"$0\"; COMP_WORDS=(x \"$@\"); COMP_CWORD=$#; ") +
                "_console_status console-status; printf \"%s\\n\" \"${COMPREPLY[@]}\"' '" +
                CS_SOURCE "/completion.bash' " + line),
            words)
            << line;
    }

    // A port that says it is wireless, on a kernel or a machine that has no such thing.
    run("mkdir -p /mnt/test/net/lo/phy80211 && mount --bind /mnt/test/net /sys/class/net");
    Json told = {Json::parse(run("console-status --json --watch 1 | head -n 1"))};
    EXPECT_TRUE(told[0]["wifi"][0]["error"].is_string() ||
                told[0]["wifi"][0]["connected"] == false);
    for (const char* arguments : {"settings", "get Theme", "list HomeScreenIcon", "ping ::1"}) {
        told.push_back(
            Json::parse(run("console-status --json " + std::string(arguments) + " || :")));
    }
    const std::string page = readFile(CS_SOURCE "/console-status.1");
    const Json flat = told.flatten();
    for (const auto& [path, value] : flat.items()) {
        const std::string key = path.substr(path.find_last_of('/') + 1);
        EXPECT_TRUE(key < ":" || page.find("\\fB" + key + "\\fR") != std::string::npos) << path;
    }
}

}  // namespace
