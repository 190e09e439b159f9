#include "commands.h"

#include <algorithm>
#include <cstdio>
#include <sstream>
#include <vector>

#include "table.h"

namespace {

int help(const Arguments& arguments);

constexpr Command kCommands[] = {
    {"settings", "", "jw", "all settings and lists", reportSections},
    {"device", "", "jw", "software, load, memory and storage", reportSections},
    {"ports", "", "jw", "the network ports", reportSections},
    {"wifi", "", "jw", "the links of the wireless ports", reportSections},
    {"get", "NAME [NODE]", "j", "print a value", getSetting},
    {"set", "NAME [NODE] VALUE", "", "store a value; makes the node", setSetting},
    {"reset", "NAME [NODE]", "", "remove a value: the default holds", resetSetting},
    {"list", "LIST", "j", "print the nodes of a list", showList},
    {"remove", "LIST NODE", "", "remove a node with its value", removeNode},
    {"clear", "LIST", "", "remove all nodes of a list", clearList},
    {"factory-reset", "", "y", "remove all values of settings and lists", resetAll},
    {"scan", "PORT", "j", "print the Wi-Fi networks around", scanWifi},
    {"ping", "HOST", "jpt", "tell whether a host answers", pingHost},
    {"help", "[COMMAND]", "", "tell more", help},
};
// Without a command.
constexpr Command kReport = {nullptr, "", "jw", "report all", reportSections};

constexpr const char* kNotes = R"(
NAME is a setting, or a list with one of its NODEs. A VALUE that has a word can
be given as word or number: set Theme dark. Names are as "settings" prints them.
--watch shows what changes (device, ports, Wi-Fi) or the section that is named.

Exit status: 0 done; 1 failed, or the report lacks something; 2 arguments not
understood. console-status(1) tells more.
)";

const Command* find(const std::string& name) {
    std::vector<std::string> names;
    for (const Command& command : kCommands) {
        if (name == command.name) {
            return &command;
        }
        names.emplace_back(command.name);
    }
    fail("there is no command '" + Cell(name).text + "'" + suggestion(name, names));
    return nullptr;
}

std::string usageOf(const Command& command) {
    const std::string arguments = command.arguments;
    return command.name + (arguments.empty() ? "" : " " + arguments);
}

std::string helpOf(const Option& option) {
    const std::string name = std::string("-") + option.letter + ", --" + option.name;
    const std::string usage = option.argument == nullptr ? name : name + " " + option.argument;
    return "  " + usage + std::string(23 - usage.size(), ' ') + option.help + "\n";
}

std::string helpOf(const Command& command) {
    std::string text =
        "usage: console-status " + usageOf(command) + "\n\n  " + command.help + "\n\n";
    for (const Option& option : options()) {
        if (std::string(command.options).find(option.letter) != std::string::npos) {
            text += helpOf(option);
        }
    }
    return text;
}

std::string helpOfAll() {
    std::string text =
        "usage: console-status [OPTION]... [COMMAND [ARGUMENT]...]\n\n"
        "Without a command: a report of all that the console manager library knows.\n\n";
    for (const Command& command : kCommands) {
        const std::string usage = usageOf(command);
        text += "  " + usage + std::string(23 - usage.size(), ' ') + command.help + "\n";
    }
    text += "\n";
    for (const Option& option : options()) {
        text += helpOf(option);
    }
    return text + kNotes;
}

int helpWith(const std::string& name) {
    const Command* const command = find(name);
    if (command == nullptr) {
        return kUsageError;
    }
    print(helpOf(*command));
    return kDone;
}

int help(const Arguments& arguments) {
    if (arguments.words.size() > 1) {
        return helpWith(arguments.words[1]);
    }
    print(helpOfAll());
    return kDone;
}

// Nothing, or what is wrong with the arguments for a command.
std::string mistake(const Command& command, const Arguments& arguments) {
    const std::string name = command.name == nullptr ? "the report" : command.name;
    for (const Option& option : options()) {
        if (arguments.has(option.letter) &&
            std::string(command.options).find(option.letter) == std::string::npos) {
            return name + " takes no --" + option.name;
        }
    }
    std::istringstream each(command.arguments);
    size_t least = 0;
    size_t most = 0;
    for (std::string argument; each >> argument; ++most) {
        least += argument.starts_with('[') ? 0U : 1U;
    }
    const size_t given = arguments.words.empty() ? 0 : arguments.words.size() - 1;
    if (given < least || given > most) {
        return name + " takes " + (most == 0 ? "no arguments" : command.arguments);
    }
    return "";
}

}  // namespace

std::span<const Command> commands() {
    return kCommands;
}

int run(const Arguments& arguments) {
    const bool named = !arguments.words.empty();
    if (arguments.has('V')) {
        print("console-status " CONSOLE_STATUS_VERSION "\n");
        return kDone;
    }
    if (arguments.has('h')) {
        return named ? helpWith(arguments.words[0]) : help(arguments);
    }
    const Command* const command = named ? find(arguments.words[0]) : &kReport;
    if (command == nullptr) {
        return kUsageError;
    }
    const std::string wrong = mistake(*command, arguments);
    return wrong.empty() ? command->run(arguments) : fail(wrong, kUsageError);
}

void print(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

void printJson(const Json& json) {
    print(json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n");
}

int fail(const std::string& message, int status) {
    std::fprintf(stderr, "console-status: %s\n", message.c_str());
    return status;
}
