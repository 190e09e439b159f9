#include <strings.h>

#include <algorithm>

#include "commands.h"
#include "setting.h"

namespace {

using Words = std::vector<std::string>;

const Setting* settingOf(const std::string& name) {
    const auto found = std::ranges::find_if(
        settings(), [&](const Setting& setting) { return name == setting.name; });
    return found == settings().end() ? nullptr : &*found;
}

Words commandNames() {
    Words names;
    for (const Command& command : commands()) {
        names.emplace_back(command.name);
    }
    return names;
}

Words settingNames(bool listsAlone) {
    Words names;
    for (const Setting& setting : settings()) {
        if (setting.isList() || !listsAlone) {
            names.emplace_back(setting.name);
        }
    }
    return names;
}

Words nodesOf(const Setting& list) {
    const Json told = readList(list, !troubleOf(*list.database));
    Words names;
    for (const Json& node : told["nodes"]) {
        names.push_back(node["node"]);
    }
    return names;
}

// What stands behind the name of a setting or list: a node, or a value.
Words behind(const std::string& name, bool takesValue) {
    const Setting* const setting = settingOf(name);
    if (setting == nullptr || setting->isList()) {
        return setting != nullptr ? nodesOf(*setting) : Words();
    }
    Words words;
    for (const Word& word : setting->words) {
        words.emplace_back(word.word);
    }
    return takesValue ? words : Words();
}

Words optionNames(const std::string& letters) {
    Words names;
    for (const Option& option : options()) {
        if (option.letter == 'h' || letters.find(option.letter) != std::string::npos) {
            names.push_back(std::string("--") + option.name);
        }
    }
    return names;
}

// Of a command's argument number `place`, whose name the table tells.
Words argumentsOf(const Command& command, const Words& words, size_t place) {
    const std::string all = command.arguments;
    if (place > 1) {
        const bool takesNode = all.find("NODE") != std::string::npos;
        return place == 2 && takesNode ? behind(words[1], all.ends_with("VALUE")) : Words();
    }
    return all.starts_with("NAME")        ? settingNames(false)
           : all.starts_with("LIST")      ? settingNames(true)
           : all.starts_with("PORT")      ? portNames().value_or(Words())
           : all.starts_with("[COMMAND]") ? commandNames()
                                          : Words();
}

Words candidates(const Words& line) {
    const std::string& last = line.back();
    if (line.size() > 1 && line[line.size() - 2] == "--port") {
        return portNames().value_or(Words());
    }
    Words words;
    std::ranges::copy_if(line, std::back_inserter(words),
                         [](const std::string& word) { return !word.starts_with('-'); });
    const auto command = std::ranges::find_if(
        commands(), [&](const Command& each) { return !words.empty() && words[0] == each.name; });
    const bool isCommand = command != commands().end() && (words.size() > 1 || last != words[0]);
    if (last.starts_with('-')) {
        return optionNames(isCommand ? command->options : "jwV");
    }
    return isCommand ? argumentsOf(*command, words, words.size() - 1) : commandNames();
}

}  // namespace

int complete(const Words& words) {
    const Words line = words.empty() ? Words{""} : words;
    const std::string& begun = line.back();
    for (const std::string& candidate : candidates(line)) {
        if (strncasecmp(candidate.c_str(), begun.c_str(), begun.size()) == 0) {
            print(candidate + "\n");
        }
    }
    return kDone;
}
