#include "arguments.h"

#include <getopt.h>

#include <algorithm>
#include <cctype>
#include <charconv>

#include "commands.h"

namespace {

constexpr Option kOptions[] = {
    {'j', "json", nullptr, "write JSON"},
    {'w', "watch", "SECONDS", "again and again, until SIGINT"},
    {'p', "port", "PORT", "the port to send from"},
    {'t', "timeout", "SECONDS", "the longest to wait, 2 by default"},
    {'y', "yes", nullptr, "don't ask"},
    {'h', "help", nullptr, "tell more"},
    {'V', "version", nullptr, "tell the version"},
};

// What getopt_long takes: the letters behind "+:" (stop at each word, tell a value that's missing).
struct GetoptTables {
    std::string letters = "+:";
    std::vector<option> longNames;

    GetoptTables() {
        for (const Option& each : kOptions) {
            const bool takes = each.argument != nullptr;
            letters += each.letter + std::string(takes ? ":" : "");
            longNames.push_back(
                {each.name, takes ? required_argument : no_argument, nullptr, each.letter});
        }
        longNames.push_back({});
    }
};

std::vector<std::string> longNames() {
    std::vector<std::string> names;
    for (const Option& each : kOptions) {
        names.push_back(std::string("--") + each.name);
    }
    return names;
}

bool isNegativeNumber(const char* word) {
    return word[0] == '-' && std::isdigit(static_cast<unsigned char>(word[1])) != 0;
}

void refuse(int result, const std::string& word) {
    const std::string name = word.starts_with("--") ? word.substr(0, word.find('='))
                                                    : std::string("-") + static_cast<char>(optopt);
    if (result == ':') {
        fail(name + " needs a value");
    } else if (optopt != 0 && word.starts_with("--")) {
        fail(name + " takes no value");
    } else {
        fail("there is no option " + name + suggestion(name, longNames()));
    }
}

void keep(Arguments& arguments, int letter) {
    arguments.given += static_cast<char>(letter);
    if (letter == 'w') {
        arguments.seconds = optarg;
    } else if (letter == 'p') {
        arguments.port = optarg;
    } else if (letter == 't') {
        arguments.timeout = optarg;
    }
}

char lower(char character) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
}

// How many characters must be put in, left out, changed or exchanged with the next; the case of
// letters doesn't count.
size_t distance(const std::string& a, const std::string& b) {
    std::vector<std::vector<size_t>> far(a.size() + 1, std::vector<size_t>(b.size() + 1));
    for (size_t i = 0; i <= a.size(); ++i) {
        for (size_t j = 0; j <= b.size(); ++j) {
            far[i][j] = i == 0 ? j : i;
            if (i == 0 || j == 0) {
                continue;
            }
            const auto same = [&](size_t x, size_t y) {
                return lower(a[x - 1]) == lower(b[y - 1]);
            };
            far[i][j] = std::min(
                {far[i - 1][j] + 1, far[i][j - 1] + 1, far[i - 1][j - 1] + (same(i, j) ? 0U : 1U)});
            if (i > 1 && j > 1 && same(i, j - 1) && same(i - 1, j)) {
                far[i][j] = std::min(far[i][j], far[i - 2][j - 2] + 1);
            }
        }
    }
    return far.back().back();
}

}  // namespace

std::span<const Option> options() {
    return kOptions;
}

std::optional<Arguments> parse(int count, char** words) {
    static const GetoptTables kTables;
    Arguments arguments;
    opterr = 0;
    while (optind < count) {
        const int next = optind;
        const int result = isNegativeNumber(words[next])
                               ? -1
                               : getopt_long(count, words, kTables.letters.c_str(),
                                             kTables.longNames.data(), nullptr);
        if (result == '?' || result == ':') {
            refuse(result, words[next]);
            return std::nullopt;
        }
        if (result != -1) {
            keep(arguments, result);
        } else if (optind > next) {  // "--"
            arguments.words.insert(arguments.words.end(), words + optind, words + count);
            optind = count;
        } else {
            arguments.words.emplace_back(words[optind++]);
        }
    }
    return arguments;
}

std::optional<int> numberOf(const std::string& text, const char* name, int least) {
    int number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error == std::errc() && stop == end && number >= least) {
        return number;
    }
    fail(std::string(name) + " takes a whole number from " + std::to_string(least) + ", not '" +
         text + "'");
    return std::nullopt;
}

std::string suggestion(const std::string& given, const std::vector<std::string>& names) {
    // A third of the letters may be wrong.
    size_t least = given.size() / 3 + 1;
    std::string closest;
    for (const std::string& name : names) {
        if (const size_t far = distance(given, name); far < least) {
            least = far;
            closest = name;
        }
    }
    return closest.empty() ? "" : "; did you mean " + closest + "?";
}
