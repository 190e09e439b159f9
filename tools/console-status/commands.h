// The commands of the program, their arguments and exit statuses.
#pragma once

#include <map>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

constexpr int kDone = 0;
constexpr int kFailed = 1;      // or the report is incomplete
constexpr int kUsageError = 2;  // invalid arguments

// Ends the program with its message and kUsageError. Any other exception ends it with kFailed.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Option {
    char letter;
    const char* name;
    const char* argument;  // name of its value, or empty
    const char* help;
};
std::span<const Option> options();

struct Arguments {
    std::vector<std::string> words;       // the command and its arguments
    std::map<char, std::string> options;  // by letter, with their values

    bool has(char letter) const { return options.contains(letter); }
    std::string value(char letter, const char* otherwise) const {
        return has(letter) ? options.at(letter) : otherwise;
    }
    // A whole number, at least 1.
    int seconds(char letter, const char* otherwise) const;
    // Of JSON: -1 for one line.
    int indent() const { return value('j', "").empty() ? 2 : -1; }
};

// Options may stand anywhere. A negative number is no option, and "--" ends the options.
Arguments parse(int count, char** words);

struct Command {
    const char* name;
    const char* arguments;  // "NAME [NODE] VALUE"; those in brackets are optional
    const char* options;    // their letters
    const char* help;       // one line
    int (*run)(const Arguments& arguments);
};

void print(const std::string& text);

// The same, or into the file of --output.
void writeOutput(const Arguments& arguments, const std::string& text);

// Prints a message on stderr, with "?" for control characters. Returns kFailed.
int fail(const std::string& message);

// Between single quotes.
std::string quoted(const std::string& text);

// Returns "; did you mean NAME?" with the closest name, or nothing.
std::string suggestion(const std::string& given, const std::vector<std::string>& names);

// Returns the row of that name, never null; throws UsageError if there is none.
template <typename Row>
const Row* find(std::span<const Row> rows, const std::string& name, const std::string& thing) {
    std::vector<std::string> names;
    for (const Row& row : rows) {
        if (name == row.name) {
            return &row;
        }
        names.emplace_back(row.name);
    }
    throw UsageError("there is no " + thing + " " + quoted(name) + suggestion(name, names));
}

// Returns the number if the whole text is one.
std::optional<int> numberOf(const std::string& text);

int reportSections(const Arguments& arguments);
int useSetting(const Arguments& arguments);
int resetAll(const Arguments& arguments);
int describeSettings(const Arguments& arguments);
int showStored(const Arguments& arguments);
int importSettings(const Arguments& arguments);
int printMetrics(const Arguments& arguments);
int scanWifi(const Arguments& arguments);
int pingHost(const Arguments& arguments);
