// Calls of the exported functions, in surroundings that make their results known.
#pragma once

#include <functional>

#include "support/sandbox.h"

// A file with another content, or a program with another script, and the result with it.
struct Situation {
    std::string file;
    std::string content;
    std::string result;
};

struct Call {
    std::string name;
    std::string good;                  // result
    Texts failed;                      // what may come out if something that it calls fails
    std::function<std::string()> run;  // only the function itself is called within()
    std::vector<Situation> situations = {};

    // What comes out, be it an exception.
    std::string result() const;
};

// The calls of one exported function, or of one setting.
struct Subject {
    std::string name;
    std::string owner;  // of the state that it shares with other calls; empty if it has none
    std::vector<Call> calls;

    Subject(const std::string& sharing, const Call& call)
        : name(call.name), owner(sharing), calls{call} {}
    friend void PrintTo(const Subject& subject, std::ostream* out) { *out << subject.name; }
    explicit Subject(const std::string& setting) : name(setting), owner(setting) {}
};

std::vector<Subject> functionSubjects();
std::vector<Subject> settingSubjects(size_t stride = 1);

// Files, ports, programs and a Wi-Fi kernel from which every call gets its good result.
class Calls : public Sandbox {
  protected:
    void prepare() override;

    static void replace(const std::string& file, const std::string& content);
};
