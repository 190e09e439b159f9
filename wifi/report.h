// Everything that Wi-Fi prints on stderr, apart from faulty attributes. Most failures then end the
// process.
#pragma once

struct nlmsghdr;

// Prints one line: the common prefix, text and the meaning of errno. errno stays as it is.
void wifi_report_errno(const char* text);

// Prints the same line and calls exit(1), so exit handlers and static destructors run.
[[noreturn]] void wifi_fatal_errno(const char* text);

// Prints the common prefix and text, and calls exit(1).
[[noreturn]] void wifi_fatal_text(const char* text);

// Prints a line about a message that its callback ignores. What is "command" or "command type".
void wifi_report_ignored(const char* what, const nlmsghdr* message);
