// The parts of console-status: one section of the report or one command each.
#pragma once

#include <string>

void reportSettings();
void reportPorts();
void reportDevice();
void reportWifi();

// The commands give the exit status of the program: 0, or after a message on stderr 1 for a failure
// and kUsageError for an argument that makes no sense.
constexpr int kUsageError = 2;
int getSetting(const std::string& name);
int setSetting(const std::string& name, const std::string& value);
int resetSetting(const std::string& name);
int printList(const std::string& name);
int scanWifi(const std::string& port);
