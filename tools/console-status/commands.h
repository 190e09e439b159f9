// What the program does: a command each, with its exit status.
#pragma once

#include <span>
#include <string>

#include "arguments.h"
#include "report.h"

constexpr int kDone = 0;
constexpr int kFailed = 1;      // or a part of it
constexpr int kUsageError = 2;  // an argument can't be understood

struct Command {
    const char* name;       // null for what is done without a command
    const char* arguments;  // "NAME [NODE] VALUE": one in brackets may be left out
    const char* options;    // the letters of those that it takes
    const char* help;       // in a line
    int (*run)(const Arguments& arguments);
};
std::span<const Command> commands();

// Does what the arguments say.
int run(const Arguments& arguments);

// Writes to standard output; JSON in several lines.
void print(const std::string& text);
void printJson(const Json& json);

// A message on stderr; gives the status.
int fail(const std::string& message, int status = kFailed);

int reportSections(const Arguments& arguments);
int getSetting(const Arguments& arguments);
int setSetting(const Arguments& arguments);
int resetSetting(const Arguments& arguments);
int showList(const Arguments& arguments);
int removeNode(const Arguments& arguments);
int clearList(const Arguments& arguments);
int resetAll(const Arguments& arguments);
int scanWifi(const Arguments& arguments);
int pingHost(const Arguments& arguments);

// Prints what can stand in place of the last of these words of a command line, a line each.
int complete(const std::vector<std::string>& words);
