#include <console-manager/settings.h>
#include <unistd.h>

#include <cstdio>

#include "commands.h"
#include "messages.h"
#include "stored.h"
#include "table.h"

namespace {

int showValue(const Place& place, const Arguments& arguments) {
    const Json entry = readSetting(place, true);
    if (entry.front().is_null()) {
        return fail(failureOf("read", place));
    }
    if (arguments.has('j')) {
        Json named = {{"name", place.setting->name},
                      {"node", place.node ? Json(*place.node) : Json()}};
        named.update(entry);
        print(jsonText(named, arguments.indent()));
    } else if (!entry.contains("nodes")) {
        const Json& shown = shownOf(entry);
        // A terminal would obey control characters; a pipe gets the stored text.
        const bool isRaw = shown.is_string() && !isTerminal();
        print((isRaw ? shown.get<std::string>() : Cell(shown).text) + "\n");
    } else {
        std::vector<Row> rows;
        for (const Json& node : entry["nodes"]) {
            rows.push_back({Cell(node["node"]), Cell(node["value"])});
        }
        print(tableOf({"Node", "Value"}, rows));
    }
    return kDone;
}

int change(const std::string& what, const Place& place, const Json& value) {
    const Setting& setting = *place.setting;
    const char* const node = place.id();
    const auto succeeds = [&] {
        const Quiet quiet;
        // A data access library may refuse to delete an absent item.
        return what == "set"     ? setting.set(node, value) == 0
               : what == "reset" ? setting.isPresent(node) == 0 || setting.reset(node) == 0
               : what == "clear" ? setting.clear() == 0
                                 : setting.remove(node) == 0;
    };
    return succeeds() ? kDone : fail(failureOf(what, place));
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

}  // namespace

int useSetting(const Arguments& arguments) {
    const std::string& what = arguments.words[0];
    if (arguments.words.size() == 1) {
        return showStored(arguments);  // of all lists
    }
    const Setting& setting = *find<Setting>(kSettings, arguments.words[1], "setting or list");
    const bool ofWhole = what == "list" || what == "clear";
    const bool hasNode = arguments.words.size() == (what == "set" ? 4 : 3);
    if (setting.isList() != (hasNode || ofWhole)) {
        throw UsageError(setting.name + (setting.isList() ? " is a list: name one of its nodes, too"
                                                          : " is no list"));
    }
    if (const Json trouble = troubleOf(*setting.database); !trouble.is_null()) {
        return fail(trouble);
    }
    const Place place = {&setting, hasNode ? std::optional(arguments.words[2]) : std::nullopt};
    if (what == "set") {  // makes the node
        return change(what, place, parseValue(setting, arguments.words.back()));
    }
    if (hasNode && setting.isNode(place.id()) == 0) {
        return fail("there is no " + nameOf(place) + suggestion(place.id(), take(setting.list())));
    }
    return what == "get" || what == "list" ? showValue(place, arguments)
                                           : change(what, place, nullptr);
}

int resetAll(const Arguments& arguments) {
    if (!arguments.has('y') && !isAgreed()) {
        return fail("nothing is changed");
    }
    const Stored left = [] {
        const Quiet quiet;
        DAL_CML_deleteAll();  // the result doesn't show a failed removal
        return readStored();
    }();
    return left.empty() ? kDone : fail(failureOf("reset", left.begin()->first));
}
