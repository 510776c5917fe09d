// Adds up the time of sessions by groups.

#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/platform/calendar.h"
#include "core/store/records.h"
#include "desktop/usage/dimension.h"

namespace tessum {

// Time, and in how many sessions it was spent. A session counts in each group that it reaches into.
struct Total {
  double seconds = 0;
  std::int64_t sessions = 0;

  friend bool operator==(const Total&, const Total&) = default;
};

struct UsageGroup {
  int number = 0;                   // of its dimension
  std::optional<std::string> name;  // absent for the time without one, such as that without a note
  Total total;
  std::vector<UsageGroup> groups = {};  // by the second dimension, if there is one

  friend bool operator==(const UsageGroup&, const UsageGroup&) = default;
};

// Takes sessions one by one, each cut at the edges of the range. Not thread-safe.
class UsageTally {
 public:
  // Without a second dimension the groups have no parts.
  explicit UsageTally(std::unique_ptr<Dimension> first,
                      std::unique_ptr<Dimension> second = nullptr);

  // Adds the time from `start` to `end`; none where the end is not behind the start.
  void add(const Activity& session, Date start, Date end);

  [[nodiscard]] const Total& total() const { return total_; }

  // The groups in the order of their numbers.
  [[nodiscard]] std::vector<UsageGroup> groups() const;

 private:
  struct Cell {
    Total total;
    std::int64_t lastSession = 0;  // the number of the last session in it

    void add(double seconds, std::int64_t session);
  };

  std::unique_ptr<Dimension> first_;
  std::unique_ptr<Dimension> second_;
  Total total_;
  std::vector<Cell> cells_;                           // of each group
  std::vector<std::unordered_map<int, Cell>> parts_;  // of each group by the second dimension
};

}  // namespace tessum
