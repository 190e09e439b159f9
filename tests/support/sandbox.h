// Own namespaces for a test, so that nothing of the machine is touched.
#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <string_view>
#include <vector>

// A fixture whose tests run in their own mount and network namespaces, with an empty tmpfs where
// the library writes ("/mnt", "/tmp/m7") and where the tests may ("/mnt/test"), and with the
// loopback port up. Tests of one process share them. Where the system refuses namespaces the test
// is skipped.
class Sandbox : public testing::Test {
  protected:
    void SetUp() override;

    // Prepares what the tests of a fixture need in addition. Not called for skipped tests.
    virtual void prepare() {}

    // Gives an existing file another content for this process and its children. A second call
    // replaces the content of the first.
    static void bindFile(const std::string& target, std::string_view content);

    // Makes ports: wire with an address of each kind and a link to peer; lone without a link, since
    // its other end, end, is down.
    static void addPorts();

    // Runs a shell command and returns its output. A failing command fails the test.
    static std::string run(const std::string& command);
};

// Returns the parts as text with a blank between them.
template <typename... Part>
std::string joined(const Part&... parts) {
    std::ostringstream words;
    words.imbue(std::locale::classic());
    words.precision(10);
    ((words << parts << ' '), ...);
    std::string text = words.str();
    text.pop_back();
    return text;
}

using Texts = std::vector<std::string>;

// Returns the texts of a list from the library, and frees it.
Texts take(char** list);

// Counts the open descriptors, with the one that counting takes. Equal counts show that none was
// left open.
int openDescriptors();

void writeFile(const std::string& path, std::string_view content);
std::string readFile(const std::string& path);
