#include "desktop/host/own_program.h"

#include <stdexcept>
#include <utility>

namespace tessum {

std::string ownProgram(const Locations& locations) {
  if (auto path = locations.executablePath()) return std::move(*path);
  throw std::runtime_error("Tessum cannot find its own file.");
}

}  // namespace tessum
