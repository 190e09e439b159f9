// console-status: shows what the console manager library knows, and changes settings.
#include <clocale>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "sections.h"
#include "watch.h"

namespace {

using Arguments = std::vector<std::string>;

struct Command {
    const char* name;
    const char* arguments;
    size_t count;
    const char* help;
    std::function<int(const Arguments&)> run;
};

void report() {
    reportSettings();
    reportPorts();
    reportDevice();
    reportWifi();
}

int printHelp();

const Command kCommands[] = {
    {"--help", "", 0, "tell more", [](const Arguments&) { return printHelp(); }},
    {"--watch", "SECONDS", 1, "report again and again, with the load in between, until SIGINT",
     [](const Arguments& a) { return watch(a[0], report); }},
    {"get", "NAME", 1, "print the value of a setting",
     [](const Arguments& a) { return getSetting(a[0]); }},
    {"set", "NAME VALUE", 2, "store a value",
     [](const Arguments& a) { return setSetting(a[0], a[1]); }},
    {"reset", "NAME", 1, "remove the stored value, so that the default holds",
     [](const Arguments& a) { return resetSetting(a[0]); }},
    {"list", "LIST", 1, "print the nodes of a list with their values",
     [](const Arguments& a) { return printList(a[0]); }},
    {"scan", "PORT", 1, "print the Wi-Fi networks around a port, strongest first",
     [](const Arguments& a) { return scanWifi(a[0]); }},
};

void printUsage(FILE* to) {
    std::fprintf(to, "usage: console-status                   report all\n");
    for (const Command& command : kCommands) {
        const std::string words = std::string(command.name) + " " + command.arguments;
        std::fprintf(to, "       console-status %-16s  %s\n", words.c_str(), command.help);
    }
}

constexpr const char* kHelp = R"(
The report has settings, lists, network ports, device and Wi-Fi, and the names for all commands. The
settings are in /mnt/vex-data/m7/console-manager.db, AutoTheme is in /tmp/m7/console-manager.db. Run
it as root, for the right to write there and to scan.

    console-status set Language DE
    console-status list HomeScreenIcon
    NO_COLOR=1 console-status --watch 5

Colours are for terminals, unless NO_COLOR is set or TERM is dumb.
Exit status: 0 done (a report tells what it can't read), 1 failed, 2 arguments not understood, such
as an unknown setting or a value that it can't have.
)";

int printHelp() {
    printUsage(stdout);
    std::fputs(kHelp, stdout);
    return 0;
}

int run(const Arguments& arguments) {
    if (arguments.empty()) {
        report();
        return 0;
    }
    for (const Command& command : kCommands) {
        if (arguments[0] == command.name && arguments.size() == command.count + 1) {
            return command.run({arguments.begin() + 1, arguments.end()});
        }
    }
    printUsage(stderr);
    return kUsageError;
}

}  // namespace

int main(int count, char** words) {
    // Networks' names are UTF-8, if they are text at all. Where a system lacks the locale, all but
    // ASCII shows as "?".
    std::setlocale(LC_CTYPE, "C.UTF-8");
    const int status = run({words + 1, words + count});
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        std::perror("console-status: output");
        return 1;
    }
    return status;
}
