#include <console-manager/network.h>
#include <sys/wait.h>

#include <cstdio>

#include "child.h"
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

// The wait status of the shell that ran ping, or -1; none if there is no child process. In a child
// process, because the library ignores SIGINT while it waits.
std::optional<int> ping(const std::string& host, int seconds, const std::string& port) {
    return numberOf(saidByChild([&] {
        std::fputs(
            std::to_string(CML_getHostAvailable(host.c_str(), seconds, port.c_str())).c_str(),
            stderr);
    }));
}

std::string outcomeOf(int ofPing) {
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
    const int status = ping(host, arguments.seconds('t', "2"), port).value_or(-1);
    const int ofPing = WIFEXITED(status) ? WEXITSTATUS(status) : 127;
    const Json told = {{"host", host}, {"available", ofPing > 1 ? Json() : Json(ofPing == 0)}};
    print(arguments.has('j') ? jsonText(told) : host + " " + outcomeOf(ofPing) + "\n");
    return ofPing == 0 ? kDone : kFailed;
}
