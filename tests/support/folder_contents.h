// The contents of a folder.

#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace tessum {

// The sorted names in the folder at `path`, hidden ones included.
[[nodiscard]] inline std::vector<std::string> namesIn(const std::string& path) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(path)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace tessum
