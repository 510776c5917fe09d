// Maps moments of a day to positions in the timeline's drawing.

#pragma once

#include <vector>

#include "core/base/date.h"
#include "desktop/timeline/timeline_history.h"

namespace tessum {

// The left and right edges of the plot, in the drawing's own units.
inline constexpr double kPlotLeft = 172;
inline constexpr double kPlotRight = 1050;

// The part of the day that is drawn. On a day with a clock change, one hour is missing or drawn
// twice.
class DayScale {
 public:
  // From the full hour before the first event to the full hour after the last one, at least four
  // hours; working hours when there are no events.
  explicit DayScale(const TimelineHistory& history);

  [[nodiscard]] DayRange range() const { return {start_, end_}; }

  // Between kPlotLeft and kPlotRight; a date outside the drawn part lies on its edge.
  [[nodiscard]] double x(Date date) const;

  [[nodiscard]] bool contains(Date date) const;

  // The moments at which the wall shows a full hour, from left to right.
  [[nodiscard]] std::vector<Date> hours() const;

 private:
  void include(const DayRange& day, Date start, Date end);

  Date start_;
  Date end_;
};

}  // namespace tessum
