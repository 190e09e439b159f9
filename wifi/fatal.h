// Words on stderr, and the end of the process: how Wi-Fi tells of nearly every failure.
#pragma once

// One line: the prefix of all lines, text, and what errno means. errno stays as it is.
void wifi_report_errno(const char* text);

// The same, and exit(1): exit handlers and static destructors run.
[[noreturn]] void wifi_fatal_errno(const char* text);

// One line, the prefix and text, and exit(1).
[[noreturn]] void wifi_fatal_text(const char* text);
