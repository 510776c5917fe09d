// What keeps the screen on, of several that list it.

#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "core/presence/presence_source.h"

namespace tessum {

// What one service lists, each time that it may have changed.
using AwakeReasonsHandler = std::function<void(std::vector<AwakeReason> reasons)>;

// Main thread only.
class AwakeReasons {
 public:
  // As many reasons are told, of so many bytes for each text.
  static constexpr std::size_t kMost = 32;
  static constexpr std::size_t kLongestText = 200;

  // Tells all reasons whenever they change. There are none at first.
  explicit AwakeReasons(std::function<void(const std::vector<AwakeReason>&)> onChange);

  // What `source` lists now. Several sources may list the same.
  void set(const std::string& source, std::vector<AwakeReason> reasons);

 private:
  const std::function<void(const std::vector<AwakeReason>&)> onChange_;
  std::map<std::string, std::vector<AwakeReason>> listed_;
  std::vector<AwakeReason> told_;
};

}  // namespace tessum
