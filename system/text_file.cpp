#include "system/text_file.h"

#include <fcntl.h>
#include <unistd.h>

#include "system/descriptor.h"

std::string readText(const char* path) {
    const Descriptor file(open(path, O_RDONLY | O_CLOEXEC));
    return file.isOpen() ? readText(file.get()) : std::string();
}

std::string readText(int descriptor) {
    std::string text;
    char piece[4096];
    for (ssize_t count; (count = TEMP_FAILURE_RETRY(read(descriptor, piece, sizeof piece))) > 0;) {
        text.append(piece, static_cast<size_t>(count));
    }
    return text;
}
