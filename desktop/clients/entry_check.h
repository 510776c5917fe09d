// Whether an entry in an assistant application's configuration would work now.

#pragma once

#include <cstdint>
#include <string>

#include "core/json/value.h"

namespace tessum {

// The state of our entry in a file.
struct EntryReport {
  std::string form;     // "stdio", "HTTP" or "unknown"
  std::string problem;  // why it would not work now; empty when no problem is known
};

// Checks the program that the entry starts, or the endpoint that it names. May wait a few seconds
// for the endpoint, to which it connects only if it is our own.
[[nodiscard]] EntryReport checkEntry(const json::Value& entry);

}  // namespace tessum
