// console-status: shows what the console manager library knows, and changes settings.
#include <cstdio>
#include <exception>

#include "commands.h"
#include "terminal.h"

namespace {

int runLine(int count, char** words) {
    try {
        // The words to complete can be anything.
        if (count > 1 && std::string(words[1]) == "complete") {
            return complete({words + 2, words + count});
        }
        const auto arguments = parse(count, words);
        return arguments ? run(*arguments) : kUsageError;
    } catch (const std::exception& error) {
        return fail(error.what());
    }
}

}  // namespace

int main(int count, char** words) {
    setUpTerminal();
    const int status = runLine(count, words);
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        std::perror("console-status: output");
        return kFailed;
    }
    return status;
}
