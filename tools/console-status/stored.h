// What is stored: the values of settings and of nodes, and nodes without a value.
#pragma once

#include <map>

#include "setting.h"

using Stored = std::map<Place, Json>;  // null for a node without a value

// Throws std::runtime_error if something can't be read.
Stored readStored();

// Returns a discarded value if nothing is stored.
Json valueAt(const Stored& stored, const Place& place);

// "HomeScreenIcon 'map': - -> /m".
std::string changeText(const Place& place, const Json& before, const Json& after);

// Reads what is stored again. Returns the changes, one a line.
std::string readChanges(Stored& stored, bool asJson);
