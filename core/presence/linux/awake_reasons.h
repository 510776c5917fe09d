// Merges the lists of several services that know what keeps the screen on.

#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "core/presence/presence_source.h"

namespace tessum {

// Receives one service's list each time it may have changed.
using AwakeReasonsHandler = std::function<void(std::vector<AwakeReason> reasons)>;

// Main thread only.
class AwakeReasons {
 public:
  // The most reasons that are reported, and the most bytes of each text.
  static constexpr std::size_t kMost = 32;
  static constexpr std::size_t kLongestText = 200;

  // Reports all reasons whenever they change. There are none at first.
  explicit AwakeReasons(std::function<void(const std::vector<AwakeReason>&)> onChange);

  // Sets the list of `source`. Several sources may list the same reason.
  void set(const std::string& source, std::vector<AwakeReason> reasons);

 private:
  const std::function<void(const std::vector<AwakeReason>&)> onChange_;
  std::map<std::string, std::vector<AwakeReason>> listed_;
  std::vector<AwakeReason> told_;
};

}  // namespace tessum
