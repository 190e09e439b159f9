#pragma once

#include <string>
#include <vector>

// The device's network ports; none, after a message on stderr, if they can't be listed.
std::vector<std::string> portNames();
