#include <console-manager/settings.h>
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

int showValue(const Target& target, bool asJson) {
    const Json told = readSetting(target.setting, true, target.node);
    if (told.front().is_null()) {
        return resultOf("read", target, false);
    }
    if (asJson) {
        Json named = {{"name", target.setting.name},
                      {"node", target.node != nullptr ? Json(target.node) : Json()}};
        named.update(told);
        print(jsonText(named));
    } else if (!told.contains("nodes")) {
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

// Whether a terminal's user agrees.
bool isAgreed() {
    if (isatty(STDIN_FILENO) != 1) {
        throw UsageError("factory-reset needs --yes where it can't ask");
    }
    std::fputs("Remove all values of all settings and lists? [y/N] ", stderr);
    const int answer = std::getchar();
    return answer == 'y' || answer == 'Y';
}

// Whether a setting, or a list, has a value after all.
bool holdsValues(const Setting& setting) {
    return setting.isList() ? nodesOf(setting) != Json::array() : setting.isPresent(nullptr) != 0;
}

}  // namespace

int useSetting(const Arguments& arguments) {
    const std::string& what = arguments.words[0];
    const Setting& setting = *find<Setting>(kSettings, arguments.words[1], "setting or list");
    const std::string& name = setting.name;
    const bool ofWhole = what == "list" || what == "clear";
    const bool hasNode = arguments.words.size() == (what == "set" ? 4 : 3);
    if (!setting.isList() && (hasNode || ofWhole)) {
        throw UsageError(name + " is no list");
    }
    if (setting.isList() && !hasNode && !ofWhole) {
        throw UsageError(name + " is a list: name one of its nodes, too");
    }
    if (const Json trouble = troubleOf(*setting.database); !trouble.is_null()) {
        return fail(trouble);
    }
    const char* const node = hasNode ? arguments.words[2].c_str() : nullptr;
    const Target target{setting, node, hasNode ? name + " " + quoted(node) : name};
    if (what == "set") {  // makes the node
        const Json value = valueOf(setting, arguments.words.back());
        return resultOf(what, target, setting.set(node, value) == 0);
    }
    if (hasNode && setting.nodes.isPresent(node) == 0) {
        return fail("there is no " + target.name + suggestion(node, take(setting.nodes.list())));
    }
    if (what == "get" || what == "list") {
        return showValue(target, arguments.has('j'));
    }
    return resultOf(what, target,
                    (what == "reset"    ? setting.reset(node)
                     : what == "remove" ? setting.nodes.remove(node)
                                        : setting.nodes.clear()) == 0);
}

int resetAll(const Arguments& arguments) {
    if (!arguments.has('y') && !isAgreed()) {
        return fail("nothing is changed");
    }
    {
        const Quiet quiet;
        DAL_CML_deleteAll();
    }
    // The library clears what it can open, and doesn't tell whether that went well.
    int status = kDone;
    for (const Database* database : {&kPersistent, &kVolatile}) {
        const Json trouble = troubleOf(*database);
        status = trouble.is_null() ? status : fail(trouble);
    }
    if (status != kDone) {
        return status;
    }
    const auto left = std::ranges::find_if(kSettings, holdsValues);
    return left == kSettings.end() ? kDone : fail("can't reset " + left->name);
}
