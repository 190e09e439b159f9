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
                  : fail("can't " + what + " " + target.name + " " +
                         whyFailed(*target.setting.database));
}

int showValue(const Target& target, const Arguments& arguments) {
    const Json entry = readSetting(target.setting, true, target.node);
    if (entry.front().is_null()) {
        return resultOf("read", target, false);
    }
    if (arguments.has('j')) {
        Json named = {{"name", target.setting.name},
                      {"node", target.node != nullptr ? Json(target.node) : Json()}};
        named.update(entry);
        print(jsonText(named, arguments.indent()));
    } else if (!entry.contains("nodes")) {
        // A terminal would obey control characters; a pipe gets the stored text.
        print((isTerminal() ? Cell(textOf(entry)).text : textOf(entry)) + "\n");
    } else {
        std::vector<Row> rows;
        for (const Json& node : entry["nodes"]) {
            rows.push_back({Cell(node["node"]), Cell(node["value"])});
        }
        print(tableOf({"Node", "Value"}, rows));
    }
    return kDone;
}

int change(const std::string& what, const Target& target, const Json& value) {
    const Setting& setting = target.setting;
    const char* const node = target.node;
    const auto succeeds = [&] {
        const Quiet quiet;
        // A data access library may refuse to delete an absent item.
        return what == "set"     ? setting.set(node, value) == 0
               : what == "reset" ? setting.isPresent(node) == 0 || setting.reset(node) == 0
               : what == "clear" ? setting.nodes.clear() == 0
                                 : setting.nodes.remove(node) == 0;
    };
    return resultOf(what, target, succeeds());
}

// Asks the user of a terminal for confirmation.
bool isAgreed() {
    if (isatty(STDIN_FILENO) != 1) {
        throw UsageError("factory-reset needs --yes where it can't ask");
    }
    std::fputs("Remove all values of all settings and lists? [y/N] ", stderr);
    const int answer = std::getchar();
    return answer == 'y' || answer == 'Y';
}

// Returns what a factory reset has left in a database, or why that is unknown; null if nothing.
Json remainderOf(const Database& database) {
    const Quiet quiet;
    // Begins with the lists: one that can't be read ends the search, so only one call waits for a
    // lock.
    const auto left = std::find_if(kSettings.rbegin(), kSettings.rend(), [&](const Setting& each) {
        return each.database == &database &&
               (each.isList() ? nodesOf(each) != Json::array() : each.isPresent(nullptr) != 0);
    });
    return left == kSettings.rend() ? troubleOf(database)
                                    : Json("can't reset " + left->name + " " + whyFailed(database));
}

}  // namespace

int useSetting(const Arguments& arguments) {
    const std::string& what = arguments.words[0];
    if (arguments.words.size() == 1) {
        return showStored(arguments);  // of all lists
    }
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
        return change(what, target, parseValue(setting, arguments.words.back()));
    }
    if (hasNode && setting.nodes.isPresent(node) == 0) {
        return fail("there is no " + target.name + suggestion(node, take(setting.nodes.list())));
    }
    return what == "get" || what == "list" ? showValue(target, arguments)
                                           : change(what, target, nullptr);
}

int resetAll(const Arguments& arguments) {
    if (!arguments.has('y') && !isAgreed()) {
        return fail("nothing is changed");
    }
    {
        const Quiet quiet;
        DAL_CML_deleteAll();
    }
    // The result of the library doesn't show a failed removal.
    int status = kDone;
    for (const Database* database : {&kPersistent, &kVolatile}) {
        const Json remainder = remainderOf(*database);
        status = remainder.is_null() ? status : fail(remainder);
    }
    return status;
}
