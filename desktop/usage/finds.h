// What a search found, by application and title.

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/store/records.h"
#include "desktop/usage/usage_tally.h"

namespace tessum {

// The sessions of one application under one title.
struct Find {
  std::string appName;
  std::optional<std::string> bundleID;
  std::optional<std::string> title;
  Date last;  // at which the newest of them began
  Total total;
};

// Takes sessions one by one, each cut at the edges of what is searched. Not thread-safe.
class Finds {
 public:
  // An open session ends at `now`.
  void add(const Activity& session, Date now);

  [[nodiscard]] const Total& total() const { return total_; }

  // All of them, the newest first.
  [[nodiscard]] std::vector<Find> newestFirst() const;

 private:
  std::unordered_map<std::string, Find> finds_;
  Total total_;
};

}  // namespace tessum
