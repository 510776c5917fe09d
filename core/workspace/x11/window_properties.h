// Reads the properties of an X11 window.

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/workspace/linux/front_window.h"
#include "core/workspace/x11/connection.h"

namespace tessum {

// Everything we query about an active window.
struct X11Window {
  WindowDescription description;
  std::optional<std::string> title;  // never empty, at most kLongestTitle bytes
};

// The names of the properties to ask for.
[[nodiscard]] std::vector<std::uint32_t> windowPropertyNames(const X11Atoms& atoms);

// Reads the properties of `window`, given in the order of windowPropertyNames(). Another program
// sets them and they may hold anything; what cannot be read is absent. Any thread.
[[nodiscard]] X11Window readWindowProperties(std::uint32_t window, const X11Properties& properties,
                                             const X11Atoms& atoms);

}  // namespace tessum
