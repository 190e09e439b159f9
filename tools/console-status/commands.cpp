// console-status: shows what the console manager library reports, and changes settings.
#include "commands.h"

#include <algorithm>
#include <cstdio>
#include <exception>

#include "table.h"

namespace {

int help(const Arguments& arguments);

constexpr Command kCommands[] = {
    {"settings", "", "jsw", "all settings and lists", reportSections},
    {"device", "", "jw", "software, load, memory and storage", reportSections},
    {"ports", "[PORT]...", "jw", "the network ports", reportSections},
    {"wifi", "", "jw", "the links of the wireless ports", reportSections},
    {"get", "NAME [NODE]", "j", "print a value", useSetting},
    {"set", "NAME [NODE] VALUE", "", "store a value; makes the node", useSetting},
    {"reset", "NAME [NODE]", "", "remove a value, so that the default holds", useSetting},
    {"list", "[LIST]", "j", "print the nodes of a list, or of all", useSetting},
    {"remove", "LIST NODE", "", "remove a node with its value", useSetting},
    {"clear", "LIST", "", "remove all nodes of a list", useSetting},
    {"describe", "[NAME]", "j", "print what a setting means, or all", describeSettings},
    {"export", "", "o", "print all that is stored, as JSON", showStored},
    {"import", "[FILE]", "n", "store what export has printed", importSettings},
    {"factory-reset", "", "y", "remove all values of settings and lists", resetAll},
    {"scan", "PORT", "j", "print the Wi-Fi networks in range", scanWifi},
    {"ping", "HOST", "jpt", "check whether a host answers", pingHost},
    {"metrics", "", "o", "print figures for Prometheus", printMetrics},
    {"help", "[COMMAND]", "", "show help", help},
};
constexpr Command kReport = {"the report", "", "jw", "", reportSections};

constexpr const char* kSynopsis = R"(usage: console-status [OPTION]... [COMMAND [ARGUMENT]...]

Without a command, prints a report of all that the library knows.

)";
constexpr const char* kNotes = R"(
NAME is a setting, or a list followed by one of its NODEs; "describe" shows all
names. VALUE is a word or a number where there are words: set Theme dark.
Without a command --watch shows the device, the ports and Wi-Fi.

Exit status: 0 success; 1 failure or incomplete report; 2 invalid arguments.
See console-status(1).
)";

const Command& commandOf(const std::string& name) {
    return *find<Command>(kCommands, name, "command");
}

bool takes(const Command& command, const Option& option) {
    return std::string(command.options).find(option.letter) != std::string::npos;
}

std::string helpLine(std::string left, const std::string& argument, const char* right) {
    left += (argument.empty() ? "" : " ") + argument;
    return "  " + left + std::string(23 - left.size(), ' ') + right + "\n";
}

// Shows help about all commands, or about the one that is named.
int help(const Arguments& arguments) {
    const bool isAll = arguments.words.size() < 2;
    const Command* const one = isAll ? nullptr : &commandOf(arguments.words[1]);
    print(isAll
              ? kSynopsis
              : std::string("usage: console-status ") + one->name + " " + one->arguments + "\n\n");
    for (const Command& command : kCommands) {
        const bool shown = isAll || one == &command;
        print(shown ? helpLine(command.name, command.arguments, command.help) : "");
    }
    print(isAll || *one->options != '\0' ? "\n" : "");
    for (const Option& option : options()) {
        const std::string name = std::string("-") + option.letter + ", --" + option.name;
        const bool shown = isAll || takes(*one, option);
        print(shown ? helpLine(name, option.argument, option.help) : "");
    }
    print(isAll ? kNotes : "");
    return kDone;
}

// Throws UsageError unless the arguments are those of the command.
void check(const Command& command, const Arguments& arguments) {
    const std::string name = command.name;
    for (const Option& option : options()) {
        if (arguments.has(option.letter) && !takes(command, option)) {
            throw UsageError(name + " takes no --" + option.name);
        }
    }
    const std::string wanted = command.arguments;
    const auto most = std::ranges::count(wanted, ' ') + (wanted.empty() ? 0 : 1);
    const auto least = most - std::ranges::count(wanted, '[');
    const auto given = std::max<std::ptrdiff_t>(std::ssize(arguments.words) - 1, 0);
    if (given < least || (given > most && !wanted.ends_with("..."))) {
        throw UsageError(name + " takes " + (most == 0 ? "no arguments" : wanted));
    }
}

int run(int count, char** words) {
    Arguments arguments = parse(count, words);
    if (arguments.has('V')) {
        print("console-status " CONSOLE_STATUS_VERSION "\n");
        return kDone;
    }
    if (arguments.has('h')) {
        arguments.words.insert(arguments.words.begin(), "help");
        return help(arguments);
    }
    const Command& command = arguments.words.empty() ? kReport : commandOf(arguments.words[0]);
    check(command, arguments);
    return command.run(arguments);
}

}  // namespace

int fail(const std::string& message) {
    std::fprintf(stderr, "console-status: %s\n", Cell(message).text.c_str());
    return kFailed;
}

std::string quoted(const std::string& text) {
    return "'" + text + "'";
}

void print(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

int main(int count, char** words) {
    setUpTerminal();
    int status = kUsageError;
    try {
        status = run(count, words);
    } catch (const UsageError& error) {
        fail(error.what());
    } catch (const std::exception& error) {
        status = fail(error.what());
    }
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        std::perror("console-status: output");
        return kFailed;
    }
    return status;
}
