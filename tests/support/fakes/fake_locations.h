// Locations that a test chooses.

#pragma once

#include <optional>
#include <string>

#include "core/platform/locations.h"

namespace tessum {

struct FakeLocations final : Locations {
  std::string home = "/Users/ann";
  std::optional<std::string> executable;

  [[nodiscard]] std::string homeFolder() const override { return home; }
  [[nodiscard]] std::string dataFolder() const override { return home + "/Tessum"; }
  [[nodiscard]] std::string configFolder() const override { return home + "/.config"; }
  [[nodiscard]] std::optional<std::string> executablePath() const override { return executable; }
};

}  // namespace tessum
