#include "system/text_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>

#include "system/descriptor.h"

std::string readText(const char* path) {
    std::string text;
    const Descriptor file(open(path, O_RDONLY | O_CLOEXEC));
    if (!file.isOpen()) {
        return text;
    }
    char piece[4096];
    for (ssize_t count; (count = TEMP_FAILURE_RETRY(read(file.get(), piece, sizeof piece))) > 0;) {
        text.append(piece, static_cast<size_t>(count));
    }
    return text;
}

std::string_view takeLine(std::string_view& text) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    return line;
}

std::string_view takeWord(std::string_view& line) {
    const auto isBlank = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
    const char* const begin = std::find_if_not(line.begin(), line.end(), isBlank);
    const char* const end = std::find_if(begin, line.end(), isBlank);
    line.remove_prefix(static_cast<size_t>(end - line.data()));
    return {begin, end};
}
