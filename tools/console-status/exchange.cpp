// Carries what is stored to another console, in a file of JSON:
//
//     {"settings": {NAME: VALUE...}, "lists": {NAME: [{"node": NODE, "value": VALUE}...]...}}
//
// A number that has a word is written as that word, a text that isn't UTF-8 as {"bytes": [255...]}.
// A node that has no value of its own lacks "value".
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <set>

#include "commands.h"
#include "stored.h"
#include "table.h"

namespace {

Json encodedText(const std::string& text) {
    const bool isUtf8 = Json::parse(jsonText(text)) == text;
    return isUtf8 ? Json(text) : Json{{"bytes", std::vector<uint8_t>(text.begin(), text.end())}};
}

Json encodedValue(const Setting& setting, const Json& value) {
    const Json word = wordOf(setting, value);
    const bool isTruth = setting.kind == Kind::Truth;
    return value.is_string() ? encodedText(value)
           : word.is_null()  ? value
           : isTruth         ? Json(value == 1)
                             : word;
}

// Returns what is given, if it is of that kind.
const Json& require(Json::value_t kind, const std::string& name, const Json& given) {
    if (given.type() != kind) {
        throw UsageError(name + " takes an " + Json(kind).type_name() + ", not " +
                         quoted(given.dump()));
    }
    return given;
}

std::string decodedText(const std::string& name, const Json& given) {
    const bool isBytes = given.contains("bytes") && given.size() == 1;
    std::string text(given.is_string() || isBytes ? 0 : 1, '\0');
    text += given.is_string() ? given.get<std::string>() : "";
    for (const Json& byte :
         isBytes ? require(Json::value_t::array, name, given["bytes"]) : Json()) {
        const bool isByte = byte.is_number_unsigned() && byte < 256;
        text += static_cast<char>(isByte ? byte.get<int>() : 0);
    }
    if (text.find('\0') != std::string::npos) {
        throw UsageError(name + " takes a text without zeros, not " + quoted(given.dump()));
    }
    return text;
}

Json decodedValue(const Place& place, const Json& given) {
    const Setting& setting = *place.first;
    if (setting.kind == Kind::Text) {
        return decodedText(nameOf(place), given);
    }
    const bool isWord = given.is_string() && !numberOf(given);
    return parseValue(setting, isWord ? given.get<std::string>() : given.dump());
}

void addNode(Stored& stored, const Setting& list, const Json& given) {
    const bool hasValue = given.contains("value");
    if (!given.contains("node") || given.size() != (hasValue ? 2 : 1)) {
        throw UsageError(list.name + R"( takes {"node": NODE, "value": VALUE}, not )" +
                         quoted(given.dump()));
    }
    const Place place = {&list, decodedText("a node of " + list.name, given["node"])};
    if (!stored.emplace(place, hasValue ? decodedValue(place, given["value"]) : Json()).second) {
        throw UsageError(nameOf(place) + " is given twice");
    }
}

// What a file wants to be stored. Throws UsageError if a console can't store that.
Stored wantedBy(const Json& file) {
    Stored stored;
    for (const auto& [part, entries] : require(Json::value_t::object, "a file", file).items()) {
        for (const auto& [name, given] : require(Json::value_t::object, part, entries).items()) {
            const Setting& setting = *find<Setting>(kSettings, name, "setting or list");
            if (part != (setting.isList() ? "lists" : "settings")) {
                throw UsageError(name + " doesn't belong into " + quoted(part));
            }
            if (!setting.isList()) {
                stored[{&setting, ""}] = decodedValue({&setting, ""}, given);
            }
            for (const Json& node :
                 setting.isList() ? require(Json::value_t::array, name, given) : Json()) {
                addNode(stored, setting, node);
            }
        }
    }
    return stored;
}

// The file of that name, or standard input.
Stored readFile(const std::string& path) {
    std::ifstream file(path == "-" ? "/dev/null" : path);
    if (file.peek(); file.bad() || !file.is_open()) {
        throw std::runtime_error("cannot read " + path + ": " + std::strerror(errno));
    }
    try {
        return wantedBy(Json::parse(path == "-" ? std::cin : file));
    } catch (const Json::parse_error& error) {
        const std::string what = error.what();
        throw UsageError(path + ": " + what.substr(what.find("] ") + 2));
    }
}

bool store(const Place& place, const Json& before, const Json& value) {
    const auto& [setting, node] = place;
    const char* const id = node.c_str();
    if (!value.is_null()) {
        return setting->set(id, value) == 0;
    }
    // A node comes with a value.
    return (!before.is_discarded() || setting->set(id, setting->fallback) == 0) &&
           setting->reset(id) == 0 && setting->nodes.isPresent(id) != 0;
}

}  // namespace

int exportSettings(const Arguments& arguments) {
    Json file = {{"settings", Json::object()}, {"lists", Json::object()}};
    for (const auto& [place, value] : readStored()) {
        const auto& [setting, node] = place;
        if (!setting->isList()) {
            file["settings"][setting->name] = encodedValue(*setting, value);
            continue;
        }
        Json entry = {{"node", encodedText(node)}};
        if (!value.is_null()) {
            entry["value"] = encodedValue(*setting, value);
        }
        file["lists"][setting->name].push_back(entry);
    }
    writeOutput(arguments, jsonText(file, arguments.indent()));
    return kDone;
}

int importSettings(const Arguments& arguments) {
    const Stored wanted = readFile(arguments.words.size() > 1 ? arguments.words[1] : "-");
    const Stored stored = readStored();
    int status = kDone;
    std::set<const Database*> unusable;  // a locked one lets each set wait
    for (const auto& [place, value] : wanted) {
        const Database* const database = place.first->database;
        const Json before = valueAt(stored, place);
        if (before == value || unusable.contains(database)) {
            continue;
        }
        if (arguments.has('n')) {
            print(changeText(place, before, value));
        } else if (!store(place, before, value)) {
            status = fail("can't set " + nameOf(place) + " " + whyFailed(*database));
            if (!seenFromOutside(*database).empty()) {
                unusable.insert(database);
                fail(std::string("the rest of the ") + database->name + " database isn't tried");
            }
        }
    }
    return status;
}
