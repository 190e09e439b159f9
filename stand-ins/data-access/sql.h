// The SQL of items and nodes.
#pragma once

#include <string>

#include "stand-ins/data-access/item_address.h"

enum class Verb { kGet, kSet, kDelete, kDeleteInAllProfiles, kIsPresent, kAddNode, kListNodes };

// Numbers of the parameters in every statement; a statement uses those that it needs.
enum Parameter { kNode = 1, kKey, kProfile, kValue };

// The statement that does verb on rows of this shape in the list's tables; empty if there is none.
std::string sqlOf(Verb verb, Shape shape, std::string_view list);
