// Namespaces of a test's own, so that nothing of the machine is touched.
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

    // What the tests of a fixture need beyond that; not called when they are skipped.
    virtual void prepare() {}

    // Makes `target` (an existing file) read as `content` for this process and its children.
    // Binding again replaces what was bound before.
    static void bindFile(const std::string& target, std::string_view content);

    // Puts an executable shell script in front of every other program of that name.
    static void putProgram(const std::string& name, std::string_view script);

    // Makes ports: wire with an address of each kind and a link to peer; lone without a link, as
    // its end is down.
    static void addPorts();

    // Runs a shell command and returns its standard output; a failing command fails the test.
    static std::string run(const std::string& command);
};

// With a blank between them.
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

// What a list from the library holds; frees it.
Texts take(char** list);

// Descriptors that the process has open, and one of the count's own; to show that none was left
// behind.
int openDescriptors();

void writeFile(const std::string& path, std::string_view content);
std::string readFile(const std::string& path);
