// What the program does: a command each, with its arguments and its exit status.
#pragma once

#include <map>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

constexpr int kDone = 0;
constexpr int kFailed = 1;      // or a part of it
constexpr int kUsageError = 2;  // an argument can't be understood

// Ends the program with its message and kUsageError; any other exception with kFailed.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Option {
    char letter;
    const char* name;
    const char* argument;  // what it takes, or nothing
    const char* help;
};
std::span<const Option> options();

struct Arguments {
    std::vector<std::string> words;       // the command and what follows it, without options
    std::map<char, std::string> options;  // by letter, with their values

    bool has(char letter) const { return options.contains(letter); }
    std::string value(char letter, const char* otherwise) const {
        return has(letter) ? options.at(letter) : otherwise;
    }
    // A whole number from 1.
    int seconds(char letter, const char* otherwise) const;
};

// Options may stand anywhere; a negative number is none, and "--" ends them.
Arguments parse(int count, char** words);

struct Command {
    const char* name;
    const char* arguments;  // "NAME [NODE] VALUE": one in brackets may be left out
    const char* options;    // the letters of those that it takes
    const char* help;       // in a line
    int (*run)(const Arguments& arguments);
};

void print(const std::string& text);

// Prints a message on stderr, with "?" for what a terminal would obey. Returns kFailed.
int fail(const std::string& message);

// Between single quotes.
std::string quoted(const std::string& text);

// "; did you mean ...?" with the one of the names that comes closest, or nothing.
std::string suggestion(const std::string& given, const std::vector<std::string>& names);

// The row of that name, never null.
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

// The whole number that a text is.
std::optional<int> numberOf(const std::string& text);

// All settings and lists with their values, for "help settings": no database is needed for it.
std::string settingsHelp();

int reportSections(const Arguments& arguments);
int useSetting(const Arguments& arguments);
int resetAll(const Arguments& arguments);
int scanWifi(const Arguments& arguments);
int pingHost(const Arguments& arguments);
