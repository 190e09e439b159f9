// Calls of the exported functions, in an environment in which their results are known.
#pragma once

#include <functional>

#include "support/sandbox.h"

// A change and the result after it. `what` is the path of a file that gets this content, the name
// of a program that gets it as its script, or empty if the content is a shell command to run.
struct Situation {
    std::string what;
    std::string content;
    std::string result;
};

struct Call {
    std::string owner;  // the same for all calls that share state; empty without such state
    std::string name;
    std::string good;                  // result
    Texts failed;                      // allowed results when a function that it calls fails
    std::function<std::string()> run;  // only the function itself is called within()
    std::vector<Situation> situations = {};

    // The text of an exception, up to a colon, counts as a result.
    std::string result() const;
    friend void PrintTo(const Call& call, std::ostream* out) { *out << call.name; }
};

std::vector<Call> functionCalls();

// Files, ports, programs and a Wi-Fi kernel with which every call has its good result.
class Calls : public Sandbox {
  protected:
    void prepare() override;

    static void change(const std::string& what, const std::string& content);
};
