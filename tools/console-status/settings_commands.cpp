#include <console-manager/settings.h>
#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "commands.h"
#include "quiet.h"
#include "setting.h"
#include "table.h"

namespace {

// What a command works on: a setting, a list, or a node of a list.
struct Target {
    const Setting& setting;
    const char* node;  // null for none
    std::string name;
};

int resultOf(const std::string& what, const Target& target, bool isDone) {
    return isDone ? kDone
                  : fail("can't " + what + " " + target.name + ": " +
                         whyUnusable(*target.setting.database));
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
    const auto number = numberOf(text);
    const bool fits = number && (setting.words.empty() || !wordOf(setting, *number).is_null());
    return fits ? Json(*number) : Json();
}

int refuseValue(const Setting& setting, const std::string& text) {
    std::string takes = setting.words.empty() ? "a whole number of 32 bits, " : "";
    Names words;
    for (const Word& word : setting.words) {
        takes += words.emplace_back(word.word) + " (" + std::to_string(word.number) + "), ";
    }
    return fail(
        setting.name + (" takes " + takes) + "not " + quoted(text) + suggestion(text, words),
        kUsageError);
}

int set(const Target& target, const std::string& text) {
    const Json value = valueOf(target.setting, text);
    return value.is_null() ? refuseValue(target.setting, text)
                           : resultOf("set", target, target.setting.set(target.node, value) == 0);
}

int show(const Target& target, bool asJson) {
    const Json told = readSetting(target.setting, true, target.node);
    if (told.front().is_null()) {
        return resultOf("read", target, false);
    }
    const bool isList = told.contains("nodes");
    if (asJson) {
        Json named = {{"name", target.setting.name}};
        if (!isList) {
            named["node"] = target.node != nullptr ? Json(target.node) : Json();
        }
        named.update(told);
        print(jsonText(named));
    } else if (!isList) {
        // A terminal would obey control characters; a script gets what is stored.
        print((isTerminal() ? Cell(textOf(told)).text : textOf(told)) + "\n");
    } else {
        std::vector<Row> rows;
        for (const Json& node : told["nodes"]) {
            rows.push_back({Cell(node["node"]), Cell(node["value"])});
        }
        print(tableOf({"Node", "Value"}, rows));
    }
    return kDone;
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

// Whether a setting, or a list, has a value after all.
bool holdsValues(const Setting& setting) {
    return setting.isList() ? nodesOf(setting) != Json::array() : setting.isPresent(nullptr) == 1;
}

}  // namespace

int useSetting(const Arguments& arguments) {
    const std::string& what = arguments.words[0];
    const auto* const setting = find<Setting>(kSettings, arguments.words[1], "setting or list");
    if (setting == nullptr) {
        return kUsageError;
    }
    const std::string name = setting->name;
    const bool ofWhole = what == "list" || what == "clear";
    const bool hasNode = arguments.words.size() == (what == "set" ? 4 : 3);
    if (!setting->isList() && (hasNode || ofWhole)) {
        return fail(name + " is no list", kUsageError);
    }
    if (setting->isList() && !hasNode && !ofWhole) {
        return fail(name + " is a list: name one of its nodes, too", kUsageError);
    }
    if (const auto trouble = troubleOf(*setting->database)) {
        return fail(*trouble);
    }
    const char* const node = hasNode ? arguments.words[2].c_str() : nullptr;
    const Target target{*setting, node, hasNode ? name + " " + quoted(node) : name};
    if (what == "set") {  // makes the node
        return set(target, arguments.words.back());
    }
    if (hasNode && setting->nodes->isPresent(node) != 1) {
        return fail("there is no " + target.name);
    }
    if (what == "get" || what == "list") {
        return show(target, arguments.has('j'));
    }
    return resultOf(what, target,
                    (what == "reset"    ? setting->reset(node)
                     : what == "remove" ? setting->nodes->remove(node)
                                        : setting->nodes->clear()) == 0);
}

int resetAll(const Arguments& arguments) {
    int status = agreement(arguments);
    if (status != kDone) {
        return status;
    }
    for (const Database* database : {&kPersistent, &kVolatile}) {
        const auto trouble = troubleOf(*database);
        status = trouble ? fail(*trouble) : status;
    }
    {
        const Quiet quiet;
        DAL_CML_deleteAll();
    }
    // The library clears what it can open, and doesn't tell whether that went well.
    const auto left = std::ranges::find_if(kSettings, holdsValues);
    return status == kDone && left != kSettings.end()
               ? fail(std::string("can't reset ") + left->name)
               : status;
}
