// Where each moment of a day lies in the drawing of its timeline.

#pragma once

#include <vector>

#include "core/base/date.h"
#include "desktop/reports/day_report.h"

namespace tessum {

// The left and right edge of the part of the drawing that shows time, in the drawing's own units.
inline constexpr double kPlotLeft = 172;
inline constexpr double kPlotRight = 1050;

// The part of the day that is drawn. Hours are as long as they took: on a day when the clock is
// changed one is missing or drawn twice.
class TimelineScale {
 public:
  // From the full hour before what happened first to the one after what happened last, and at least
  // four hours; working hours where nothing happened.
  explicit TimelineScale(const DayHistory& history);

  // Between kPlotLeft and kPlotRight; a date before or after the part that is drawn lies on its
  // edge.
  [[nodiscard]] double x(Date date) const;

  [[nodiscard]] bool contains(Date date) const;

  // The full hours from the left to the right edge.
  [[nodiscard]] std::vector<Date> hours() const;

 private:
  void include(const DayHistory& history, Date start, Date end);

  Date start_;
  Date end_;
};

}  // namespace tessum
