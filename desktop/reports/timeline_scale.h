// Maps moments of a day to positions in the timeline's drawing.

#pragma once

#include <vector>

#include "core/base/date.h"
#include "desktop/reports/day_report.h"

namespace tessum {

// The left and right edges of the plot, in the drawing's own units.
inline constexpr double kPlotLeft = 172;
inline constexpr double kPlotRight = 1050;

// The part of the day that is drawn. On a day with a clock change, one hour is missing or drawn
// twice.
class TimelineScale {
 public:
  // From the full hour before the first event to the full hour after the last one, at least four
  // hours; working hours when there are no events.
  explicit TimelineScale(const DayHistory& history);

  // Between kPlotLeft and kPlotRight; a date outside the drawn part lies on its edge.
  [[nodiscard]] double x(Date date) const;

  [[nodiscard]] bool contains(Date date) const;

  // The full hours, from left to right.
  [[nodiscard]] std::vector<Date> hours() const;

 private:
  void include(const DayHistory& history, Date start, Date end);

  Date start_;
  Date end_;
};

}  // namespace tessum
