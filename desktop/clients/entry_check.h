// Whether an entry in an assistant application's configuration would work now.

#pragma once

#include <cstdint>
#include <string>

#include "core/json/value.h"

namespace tessum {

// Our entry as a file has it.
struct EntryReport {
  std::string form;     // "stdio", "HTTP" or "unknown"
  std::string problem;  // why it would not work now; empty where nothing is known to be wrong
};

// Looks at an entry: at the program that it starts, or at the endpoint that it names. May wait a
// few seconds for an answer from the endpoint, which is asked only when it is our own.
[[nodiscard]] EntryReport checkEntry(const json::Value& entry);

}  // namespace tessum
