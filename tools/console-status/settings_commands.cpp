#include <console-manager/settings.h>
#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdio>

#include "commands.h"
#include "quiet.h"
#include "setting.h"
#include "table.h"
#include "terminal.h"

namespace {

// What a command works on: a setting, or a node of a list.
struct Target {
    const Setting& setting;
    const char* node = "";
    std::string name;
};

std::string quoted(const std::string& text) {
    return "'" + Cell(text).text + "'";
}

const Setting* find(const std::string& name, bool listsAlone = false) {
    std::vector<std::string> names;
    for (const Setting& setting : settings()) {
        if (name == setting.name && (setting.isList() || !listsAlone)) {
            return &setting;
        }
        if (setting.isList() || !listsAlone) {
            names.emplace_back(setting.name);
        }
    }
    fail((listsAlone ? "there is no list " : "there is no setting ") + quoted(name) +
         suggestion(name, names));
    return nullptr;
}

std::vector<std::string> nodesOf(const Setting& list) {
    const Json told = readList(list, true);
    std::vector<std::string> names;
    for (const Json& node : told["nodes"]) {
        names.push_back(node["node"]);
    }
    return names;
}

// Whether there is such a node, which a setting doesn't need.
bool isThere(const Target& target) {
    if (!target.setting.isList() || target.setting.nodes->isPresent(target.node) == 1) {
        return true;
    }
    fail("there is no " + target.name + suggestion(target.node, nodesOf(target.setting)));
    return false;
}

int resultOf(const char* what, const std::string& name, int32_t result) {
    return result == 0 ? kDone
                       : fail(std::string("can't ") + what + " " + name + ": " + meaningOf(result));
}

// Null if the setting can't have such a value.
Json valueOf(const Setting& setting, const std::string& text) {
    if (setting.fallback.is_string()) {
        return text;
    }
    for (const Word& word : setting.words) {
        if (strcasecmp(text.c_str(), word.word) == 0) {
            return word.number;
        }
    }
    int32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end) {
        return nullptr;
    }
    return setting.words.empty() || !wordOf(setting, number).is_null() ? Json(number) : Json();
}

int refuseValue(const Setting& setting, const std::string& text) {
    std::string takes = "a whole number of 32 bits";
    std::vector<std::string> words;
    for (const Word& word : setting.words) {
        if (words.empty()) {
            takes.clear();
        } else {
            takes += ", ";
        }
        takes += word.word;
        words.emplace_back(word.word);
    }
    if (!words.empty()) {
        takes += " or 0 to " + std::to_string(words.size() - 1);
    }
    return fail(
        setting.name + (" takes " + takes) + ", not " + quoted(text) + suggestion(text, words),
        kUsageError);
}

// Whether --yes was given or a terminal's user agrees: kDone, or another status after a message.
int agreement(const Arguments& arguments) {
    if (arguments.has('y')) {
        return kDone;
    }
    if (isatty(STDIN_FILENO) != 1) {
        return fail("factory-reset needs --yes where it can't ask", kUsageError);
    }
    std::fputs("Remove all values of all settings and lists? [y/N] ", stderr);
    const int answer = std::getchar();
    return answer == 'y' || answer == 'Y' ? kDone : fail("nothing is changed");
}

// Does the work of a command whose arguments name a setting, or a list and one of its nodes, and
// then so many values.
int onTarget(const Arguments& arguments, size_t values, bool mustBeThere,
             int (*work)(const Target& target, const Arguments& arguments)) {
    const Setting* const setting = find(arguments.words[1]);
    if (setting == nullptr) {
        return kUsageError;
    }
    const std::string name = setting->name;
    const bool hasNode = arguments.words.size() == 3 + values;
    if (hasNode != setting->isList()) {
        return fail(name + (hasNode ? " has no nodes: it is no list"
                                    : " is a list: name one of its nodes, too"),
                    kUsageError);
    }
    if (const auto trouble = troubleOf(*setting->database)) {
        return fail(*trouble);
    }
    const std::string node = hasNode ? arguments.words[2] : "";
    const Target target{*setting, node.c_str(), hasNode ? name + " " + quoted(node) : name};
    return mustBeThere && !isThere(target) ? kFailed : work(target, arguments);
}

// The same for a list as a whole.
int onList(const Arguments& arguments,
           int (*work)(const Setting& list, const Arguments& arguments)) {
    const Setting* const list = find(arguments.words[1], true);
    if (list == nullptr) {
        return kUsageError;
    }
    const auto trouble = troubleOf(*list->database);
    return trouble ? fail(*trouble) : work(*list, arguments);
}

int printValue(const Target& target, const Arguments& arguments) {
    const Setting& setting = target.setting;
    const Json told = readSetting(setting, true, target.node);
    if (told["value"].is_null()) {
        return fail("can't read " + target.name);
    }
    if (arguments.has('j')) {
        Json named = {{"name", setting.name},
                      {"node", setting.isList() ? Json(target.node) : Json()}};
        named.update(told);
        printJson(named);
        return kDone;
    }
    // A terminal would obey control characters; a script gets what is stored.
    const std::string text = textOf(setting, told["value"]);
    print((isTerminal() ? Cell(text).text : text) + "\n");
    return kDone;
}

int storeValue(const Target& target, const Arguments& arguments) {
    const std::string& text = arguments.words.back();
    const Json value = valueOf(target.setting, text);
    return value.is_null() ? refuseValue(target.setting, text)
                           : resultOf("set", target.name, target.setting.set(target.node, value));
}

int printNodes(const Setting& list, const Arguments& arguments) {
    const Json told = readList(list, true);
    if (told["nodes"].is_null()) {
        return fail(std::string("can't read ") + list.name);
    }
    if (arguments.has('j')) {
        Json named = {{"name", list.name}};
        named.update(told);
        printJson(named);
    } else {
        print(showNodes(list, told["nodes"]));
    }
    return kDone;
}

// Whether a setting, or a list, has a value after all.
bool holdsValues(const Setting& setting) {
    return setting.isList() ? readList(setting, true)["nodes"] != Json::array()
                            : setting.isPresent("") == 1;
}

}  // namespace

int getSetting(const Arguments& arguments) {
    return onTarget(arguments, 0, true, printValue);
}

int setSetting(const Arguments& arguments) {
    return onTarget(arguments, 1, false, storeValue);
}

int resetSetting(const Arguments& arguments) {
    return onTarget(arguments, 0, true, [](const Target& target, const Arguments&) {
        return resultOf("reset", target.name, target.setting.reset(target.node));
    });
}

int removeNode(const Arguments& arguments) {
    return onTarget(arguments, 0, true, [](const Target& target, const Arguments&) {
        return resultOf("remove", target.name, target.setting.nodes->remove(target.node));
    });
}

int showList(const Arguments& arguments) {
    return onList(arguments, printNodes);
}

int clearList(const Arguments& arguments) {
    return onList(arguments, [](const Setting& list, const Arguments&) {
        return resultOf("clear", list.name, list.nodes->clear());
    });
}

int resetAll(const Arguments& arguments) {
    int status = agreement(arguments);
    if (status != kDone) {
        return status;
    }
    for (const Database* database : {&kPersistent, &kVolatile}) {
        if (const auto trouble = troubleOf(*database)) {
            status = fail(*trouble);
        }
    }
    {
        const Quiet quiet;
        DAL_CML_deleteAll();
    }
    // The library clears what it can open, and doesn't tell whether that went well.
    const auto left = std::ranges::find_if(settings(), holdsValues);
    if (status == kDone && left != settings().end()) {
        status = fail(std::string("can't reset ") + left->name);
    }
    return status;
}
