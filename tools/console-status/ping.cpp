#include <console-manager/network.h>
#include <sys/wait.h>

#include <cstdio>

#include "commands.h"
#include "messages.h"
#include "report.h"

namespace {

// The library passes names to a shell. These characters have no meaning there; host names,
// addresses and common port names need no others.
bool isPlain(const std::string& name) {
    constexpr const char* kPlain =
        "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ.:%_-";
    return !name.empty() && name.size() <= 253 && name[0] != '-' &&
           name.find_first_not_of(kPlain) == std::string::npos;
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
    const int seconds = arguments.seconds('t', "2");
    // In a child process, because the library ignores SIGINT while it waits. The library returns
    // the wait status of a shell, or -1.
    const std::string said = saidByChild([&] {
        std::fprintf(stderr, "%d", CML_getHostAvailable(host.c_str(), seconds, port.c_str()));
    });
    const int status = numberOf(said).value_or(-1);
    const int ofPing = WIFEXITED(status) ? WEXITSTATUS(status) : 127;
    const Json result = {{"host", host}, {"available", ofPing > 1 ? Json() : Json(ofPing == 0)}};
    print(arguments.has('j') ? jsonText(result, arguments.indent())
                             : host + " " + outcomeOf(ofPing) + "\n");
    return ofPing == 0 ? kDone : kFailed;
}
