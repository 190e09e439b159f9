#include <console-manager/network.h>
#include <sys/wait.h>

#include <algorithm>
#include <cctype>

#include "commands.h"
#include "table.h"

namespace {

// The library hands names to a shell. These characters mean nothing to it, and make up all names
// and addresses of hosts and the usual names of ports.
bool isPlain(const std::string& name) {
    constexpr size_t kLongest = 253;
    return !name.empty() && name.size() <= kLongest && name[0] != '-' &&
           std::ranges::all_of(name, [](unsigned char c) {
               return c < 0x80 && (std::isalnum(c) != 0 || c == '.' || c == ':' || c == '-' ||
                                   c == '_' || c == '%');
           });
}

// By what system() gives.
std::string outcomeOf(int32_t status) {
    constexpr int kNoCommand = 127;
    constexpr int kNoAnswer = 1;
    if (status == 0) {
        return "answers";
    }
    if (status == -1 || !WIFEXITED(status) || WEXITSTATUS(status) == kNoCommand) {
        return "can't be asked: the ping command can't be run";
    }
    return WEXITSTATUS(status) == kNoAnswer ? "doesn't answer"
                                            : "can't be reached, or there is no such name";
}

}  // namespace

int pingHost(const Arguments& arguments) {
    constexpr int kUsualTimeout = 2;
    const std::string& host = arguments.words[1];
    for (const auto& name : {host, arguments.has('p') ? arguments.port : host}) {
        if (!isPlain(name)) {
            return fail("'" + Cell(name).text + "' is no name or address", kUsageError);
        }
    }
    const auto timeout =
        arguments.has('t') ? numberOf(arguments.timeout, "--timeout", 1) : kUsualTimeout;
    if (!timeout) {
        return kUsageError;
    }
    const int32_t status = CML_getHostAvailable(host.c_str(), *timeout, arguments.port.c_str());
    if (arguments.has('j')) {
        printJson(Json{{"host", host}, {"available", status == 0}});
    } else {
        print(host + " " + outcomeOf(status) + "\n");
    }
    return status == 0 ? kDone : kFailed;
}
