// The table of the bench: each exported function beside its floor, the bare work that it can't do
// without.
#pragma once

#include <functional>
#include <string>

using Work = std::function<void()>;

struct Subject {
    std::string function;  // as exported; "one + another" for those that are timed together
    Work call;
    Work floor = {};  // none for a function that asks nothing of the system
    // What has to be done before each call, and isn't timed.
    Work beforeCall = {};
    Work beforeFloor = {};
    // For functions that differ in nothing but the setting: the name that their common row has, and
    // the setting.
    std::string row = {};
    std::string setting = {};
};

// Begins a part of the table.
void beginSubsystem(const std::string& name);

// Times call and floor and enters them into the table.
void measure(const Subject& subject);

// Ends the program if what is measured doesn't work: its time would say nothing.
void require(bool works, const char* what);

void measureSettings();
void measureNetwork();
void measureDevice();
void measureDisplay();  // the settings that device.h offers as well
void measureWifi();
