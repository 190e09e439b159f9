#include <console-manager/network.h>
#include <sys/wait.h>

#include "commands.h"
#include "report.h"

namespace {

// The library hands names to a shell. These characters mean nothing to it, and make up the names
// and addresses of hosts and the usual names of ports.
bool isPlain(const std::string& name) {
    constexpr const char* kPlain =
        "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ.:%_-";
    return !name.empty() && name.size() <= 253 && name[0] != '-' &&
           name.find_first_not_of(kPlain) == std::string::npos;
}

// By what the library gives: the wait status of a shell, or -1.
std::string outcomeOf(int32_t status) {
    const int ofPing = WIFEXITED(status) ? WEXITSTATUS(status) : 127;
    return ofPing == 0     ? "answers"
           : ofPing == 1   ? "doesn't answer"
           : ofPing == 127 ? "can't be asked: the ping command can't be run"
                           : "can't be reached, or there is no such name";
}

}  // namespace

int pingHost(const Arguments& arguments) {
    const std::string& host = arguments.words[1];
    const std::string port = arguments.value('p', "");
    if (!isPlain(host) || (arguments.has('p') && !isPlain(port))) {
        throw UsageError(quoted(isPlain(host) ? port : host) + " is no name or address");
    }
    const int32_t status =
        CML_getHostAvailable(host.c_str(), arguments.seconds('t', "2"), port.c_str());
    const Json told = {{"host", host}, {"available", status == 0}};
    print(arguments.has('j') ? jsonText(told) : host + " " + outcomeOf(status) + "\n");
    return status == 0 ? kDone : kFailed;
}
