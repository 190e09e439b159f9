#include <getopt.h>
#include <strings.h>

#include <algorithm>
#include <charconv>
#include <numeric>

#include "commands.h"

namespace {

constexpr Option kOptions[] = {
    {'j', "json", "", "write JSON; --json=compact in one line"},
    {'w', "watch", "SECONDS", "repeat every SECONDS until interrupted"},
    {'p', "port", "PORT", "the port to send from"},
    {'t', "timeout", "SECONDS", "time limit, 2 by default"},
    {'o', "output", "FILE", "write into FILE, replaced as a whole"},
    {'s', "stored", "", "only what is stored"},
    {'n', "dry-run", "", "print what would change"},
    {'y', "yes", "", "do not ask for confirmation"},
    {'h', "help", "", "show help"},
    {'V', "version", "", "show the version"},
};

// Returns how many characters have to be inserted, removed or changed; case is ignored.
size_t distance(const std::string& a, const std::string& b) {
    std::vector<size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (const char each : a) {
        size_t diagonal = row[0]++;
        for (size_t j = 0; j < b.size(); ++j) {
            const size_t changed = diagonal + (strncasecmp(&each, &b[j], 1) == 0 ? 0U : 1U);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, diagonal + 1, row[j] + 1});
        }
    }
    return row.back();
}

// Throws the error of an option for which getopt returned '?', or ':' for a missing value.
void refuse(int wrong, const std::string& word) {
    const bool isLong = word.starts_with("--");
    const std::string name =
        isLong ? word.substr(2, word.find('=') - 2) : std::string(1, static_cast<char>(optopt));
    if (wrong == ':' || (isLong && optopt != 0)) {
        throw UsageError((isLong ? "--" : "-") + name +
                         (wrong == ':' ? " needs a value" : " takes no value"));
    }
    find<Option>(kOptions, name, "option");  // throws
}

}  // namespace

std::span<const Option> options() {
    return kOptions;
}

Arguments parse(int count, char** words) {
    std::string letters = "+:";  // stop at each word; return ':' for a missing value
    std::vector<option> names;
    for (const Option& each : kOptions) {
        const int takes = *each.argument != '\0' ? required_argument : no_argument;
        letters += each.letter + std::string(takes == required_argument ? ":" : "");
        const bool isJson = each.letter == 'j';  // --json=compact
        names.push_back({each.name, isJson ? optional_argument : takes, nullptr, each.letter});
    }
    names.push_back({});
    Arguments arguments;
    opterr = 0;
    while (optind < count) {
        const int next = optind;
        const char* const word = words[next];
        const bool isNegative = word[0] == '-' && word[1] >= '0' && word[1] <= '9';
        const int letter =
            isNegative ? -1 : getopt_long(count, words, letters.c_str(), names.data(), nullptr);
        if (letter == '?' || letter == ':') {
            refuse(letter, word);
        }
        if (letter == 'j' && optarg != nullptr && optarg != std::string("compact")) {
            throw UsageError("--json takes compact or nothing, not " + quoted(optarg));
        }
        if (letter != -1) {
            arguments.options[static_cast<char>(letter)] = optarg != nullptr ? optarg : "";
        } else if (optind == next) {
            arguments.words.emplace_back(words[optind++]);
        } else {  // "--"
            arguments.words.insert(arguments.words.end(), words + optind, words + count);
            optind = count;
        }
    }
    return arguments;
}

int Arguments::seconds(char letter, const char* otherwise) const {
    const std::string text = value(letter, otherwise);
    const int number = numberOf(text).value_or(0);
    if (number > 0) {
        return number;
    }
    const std::string name = std::ranges::find(kOptions, letter, &Option::letter)->name;
    throw UsageError("--" + name + " takes a whole number from 1, not " + quoted(text));
}

std::optional<int> numberOf(const std::string& text) {
    int number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

std::string suggestion(const std::string& given, const std::vector<std::string>& names) {
    const auto far = [&](const std::string& name) { return distance(given, name); };
    const auto closest = std::ranges::min_element(names, {}, far);
    const size_t most = (given.size() + 1) / 2;  // half of it may be wrong
    return closest == names.end() || far(*closest) > most ? "" : "; did you mean " + *closest + "?";
}
