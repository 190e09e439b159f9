// The program as it is used: from a shell, on a terminal and by scripts.
#include <console-manager/settings.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "support/sandbox.h"

namespace {

using Json = nlohmann::json;

class ConsoleStatus : public Sandbox {
  protected:
    void prepare() override {
        addPorts();
        run("ln -sf '" CS "' /mnt/test/bin");
        setenv("LC_ALL", "C.UTF-8", 1);
        setenv("TERM", "xterm", 1);
        unsetenv("NO_COLOR");
    }

    // All output, and the exit status.
    static std::string answer(const std::string& command) {
        return run("{ " + command + "; echo status $?; } 2>&1");
    }

    // The same on a terminal. What these commands write is typed; `see TEXT` waits until it's
    // shown.
    static std::string onTerminal(const std::string& command, int columns = 80,
                                  const std::string& keys = ":") {
        return run(
            "see() { until grep -q \"$1\" /mnt/test/shown; do :; done; }; >/mnt/test/shown; { " +
            keys + "; } | script -qfc 'stty rows 8 cols " + std::to_string(columns) + "; " +
            command + "; echo status $?' /mnt/test/shown | tr -d '\\r'");
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
        {"--jsn", 2, "there is no option 'jsn'; did you mean json?\n"},
        {"--json=1", 2, "--json takes no value\n"},
        {"--watch", 2, "--watch needs a value\n"},
        {"-x", 2, "there is no option 'x'\n"},
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
    const std::string asked = "Remove all values of all settings and lists? [y/N] ";
    EXPECT_EQ(onTerminal("console-status factory-reset", 80, "see y/N; echo n"),
              asked + "n\nconsole-status: nothing is changed\nstatus 1\n");
    EXPECT_EQ(onTerminal("console-status factory-reset", 80, "see y/N; echo y"),
              asked + "y\nstatus 0\n");
    ASSERT_EQ(DAL_CML_setLanguage("a\033[1m\x9b\xc2\x9b\xff"), 0);
    EXPECT_EQ(onTerminal("console-status get Language"), "a?[1m???\nstatus 0\n");
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
    for (const int told : {40, 120, 0}) {
        const int columns = told > 0 ? told : 80;
        for (const std::string command : {"", "list HomeScreenIcon"}) {
            writeFile("/mnt/test/screen", onTerminal("NO_COLOR=1 console-status " + command, told));
            const int widest = std::stoi(run("wc -L </mnt/test/screen"));
            EXPECT_TRUE(widest <= columns && widest > columns - 20) << columns << ": " << widest;
        }
    }
    for (const std::string environment : {"", "NO_COLOR=1 ", "TERM=dumb "}) {
        const std::string text = onTerminal(environment + "console-status device");
        EXPECT_EQ(text.find("\033[1mDevice") == std::string::npos, !environment.empty()) << text;
    }
}

TEST_F(ConsoleStatus, RedrawsAWatchedTerminal) {
    const std::string text =
        onTerminal("tty >/mnt/test/tty; console-status --watch 600", 80,
                   "see '\\[J'; stty rows 50 <$(cat /mnt/test/tty); see wire; printf '\\003'");
    const std::string screen = text.substr(text.find("\033[H"), text.find("\033[J"));
    EXPECT_EQ(std::ranges::count(screen, '\n'), 7) << screen;
    EXPECT_TRUE(text.ends_with("\033[J^C\nstatus 0\n")) << text;
}

TEST_F(ConsoleStatus, TellsWhyADatabaseCantBeUsed) {
    const std::string folder = "/mnt/vex-data/m7", file = folder + "/console-manager.db";
    // What is made of "/mnt", who looks, and what is told.
    const std::tuple<std::string, std::string, std::string> rows[] = {
        {"mount -t tmpfs -o ro none /mnt", "", "/mnt: Read-only file system"},
        {"chmod 555 /mnt", "setpriv --bounding-set=-dac_override ", "/mnt: Permission denied"},
        {"mkdir -p " + folder + "; >" + file + "; chmod 555 " + file,
         "setpriv --bounding-set=-dac_override ", file + ": Permission denied"},
        {"mkdir /mnt/vex-data; touch " + folder, "", file + ": Not a directory"},
        {"mkdir -p " + folder + "; yes | head -c 9999 >" + file, "",
         "it is damaged, or another process holds it"},
        {"mount -t tmpfs -o size=8k none /mnt; mkdir -p " + folder +
             "; head -c 8192 /dev/zero >/mnt/full || true",
         "", "its disk is full"},
    };
    run("mkdir /tmp/m7/bin; cp /mnt/test/bin/* /tmp/m7/bin");
    setenv("PATH", ("/tmp/m7/bin:" + std::string(getenv("PATH"))).c_str(), 1);
    for (const auto& [situation, as, reason] : rows) {
        run("mount -t tmpfs none /mnt; " + situation);
        const std::string program = as + "console-status";
        const std::string why = "the persistent database " + file + " can't be used: " + reason;
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
