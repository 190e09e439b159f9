// A call of every exported function, in surroundings that make its result known.
#pragma once

#include <functional>

#include "support/sandbox.h"

struct Call {
    std::string function;
    std::string owner;   // of the state that it shares with other calls; empty if it has none
    std::string good;    // what comes out
    std::string failed;  // what may come out if something that it calls fails: a pattern of fnmatch
                         // with alternatives
    std::function<std::string()> run;  // only the function itself is called within()
};

inline bool startsProgram(const Call& call) {
    return call.function == "CML_getHostAvailable" || call.function == "CML_getStorageInfo";
}

// Files, ports, programs and a Wi-Fi kernel from which every call gets its good result. The
// databases are open.
class Calls : public Sandbox {
  protected:
    void prepare() override;

    std::vector<Call> calls;
};
