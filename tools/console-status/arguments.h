// The command line.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

struct Option {
    char letter;
    const char* name;
    const char* argument;  // what it takes; null if nothing
    const char* help;
};
std::span<const Option> options();

struct Arguments {
    std::vector<std::string> words;  // the command and what follows it, without options
    std::string given;               // the letters of all options
    std::string seconds;             // of --watch
    std::string port;
    std::string timeout;

    bool has(char letter) const { return given.find(letter) != std::string::npos; }
};

// Nothing, after a message on stderr, if an option is wrong. Options may stand anywhere; a negative
// number is none, and "--" ends them.
std::optional<Arguments> parse(int count, char** words);

// The whole number of an argument; nothing, after a message on stderr, if it is none from the least
// on. name tells whose it is.
std::optional<int> numberOf(const std::string& text, const char* name, int least);

// "; did you mean ...?" with the one of the names that comes closest, or nothing.
std::string suggestion(const std::string& given, const std::vector<std::string>& names);
