// Output into a file, which is replaced as a whole: a reader finds the old contents or the new.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "commands.h"

namespace fs = std::filesystem;

void writeOutput(const Arguments& arguments, const std::string& text) {
    if (!arguments.has('o')) {
        return print(text);
    }
    const std::string path = fs::weakly_canonical(arguments.value('o', ""));  // a link stays one
    if (fs::exists(path) && !fs::is_regular_file(path)) {
        throw UsageError(quoted(path) + " is not a regular file");
    }
    // Programs that collect files by the end of their names must not find this one.
    const std::string temporary = path + "." + std::to_string(getpid());
    const int flags = O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC;
    const int file = open(temporary.c_str(), flags, DEFFILEMODE);
    errno = file >= 0 ? ENOSPC : errno;  // why a write ends early without an error
    const bool isDone = file >= 0 && write(file, text.data(), text.size()) == std::ssize(text) &&
                        fsync(file) == 0 && rename(temporary.c_str(), path.c_str()) == 0;
    const int error = errno;
    close(file);
    if (!isDone) {
        unlink(temporary.c_str());
        throw std::system_error(error, std::generic_category(), "cannot write " + quoted(path));
    }
}
