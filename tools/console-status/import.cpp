// Stores what "export" has printed, on this or another console.
#include <cerrno>
#include <fstream>
#include <iostream>
#include <system_error>

#include "commands.h"
#include "stored.h"

namespace {

std::string decodedText(const std::string& name, const Json& given) {
    const bool isBytes = given.contains("bytes") && given.size() == 1 && given["bytes"].is_array();
    std::string text = given.is_string() ? given.get<std::string>() : "";
    for (const Json& byte : isBytes ? given["bytes"] : Json()) {
        const bool isByte = byte.is_number_unsigned() && byte < 256;
        text += static_cast<char>(isByte ? byte.get<int>() : 0);
    }
    if (!(given.is_string() || isBytes) || text.find('\0') != std::string::npos) {
        throw UsageError(name + " takes a text without zeros, not " + quoted(given.dump()));
    }
    return text;
}

Json decodedValue(const Place& place, const Json& given) {
    const Setting& setting = *place.setting;
    if (setting.kind == Kind::Text) {
        return decodedText(nameOf(place), given);
    }
    const bool isWord = given.is_string() && !numberOf(given);
    return parseValue(setting, isWord ? given.get<std::string>() : given.dump());
}

void addEntry(Stored& wanted, const Json& entry) {
    const bool hasNode = entry.contains("node");
    const bool hasValue = entry.contains("value");
    if (!entry.contains("name") || entry.size() != 1U + (hasNode ? 1 : 0) + (hasValue ? 1 : 0)) {
        throw UsageError("an entry has a name, a node if it is of a list, and a value, not " +
                         quoted(entry.dump().substr(0, 60)));
    }
    const std::string name = decodedText("name", entry["name"]);
    const Setting& setting = *find<Setting>(kSettings, name, "setting or list");
    if (setting.isList() != hasNode || (!hasNode && !hasValue)) {
        throw UsageError(name +
                         (setting.isList() ? " needs a node" : " needs a value and no node"));
    }
    const Place place = {&setting, hasNode
                                       ? std::optional(decodedText(name + " node", entry["node"]))
                                       : std::nullopt};
    if (!wanted.emplace(place, hasValue ? decodedValue(place, entry["value"]) : Json()).second) {
        throw UsageError(nameOf(place) + " is given twice");
    }
}

// Reads the file, or standard input. Throws UsageError if a console can't store what it has.
Stored readFile(const std::string& path) {
    std::ifstream file(path == "-" ? "/dev/null" : path);
    if (file.peek(); file.bad() || !file.is_open()) {
        throw std::system_error(errno, std::generic_category(), "cannot read " + path);
    }
    Stored wanted;
    try {
        const Json entries = Json::parse(path == "-" ? std::cin : file);
        for (const Json& entry : entries.is_array() ? entries : Json{entries}) {
            addEntry(wanted, entry);
        }
    } catch (const Json::parse_error& error) {
        const std::string what = error.what();
        throw UsageError(path + ": " + what.substr(what.find("] ") + 2));
    }
    return wanted;
}

bool store(const Place& place, const Json& before, const Json& value) {
    const Setting* const setting = place.setting;
    const char* const id = place.id();
    if (!value.is_null()) {
        return setting->set(id, value) == 0;
    }
    // A node comes with a value.
    return (!before.is_discarded() || setting->set(id, setting->fallback) == 0) &&
           setting->reset(id) == 0 && setting->isNode(id) != 0;
}

}  // namespace

int importSettings(const Arguments& arguments) {
    const Stored wanted = readFile(arguments.words.size() > 1 ? arguments.words[1] : "-");
    const Stored stored = readStored();
    int status = kDone;
    for (const auto& [place, value] : wanted) {
        const Json before = valueAt(stored, place);
        if (before == value) {
            continue;
        }
        if (arguments.has('n')) {
            print(changeText(place, before, value));
        } else if (!store(place, before, value)) {
            status = fail(failureOf("set", place));
            if (!seenFromOutside(*place.setting->database).empty()) {
                return fail("the rest is not tried");  // each set would wait for a lock
            }
        }
    }
    return status;
}
