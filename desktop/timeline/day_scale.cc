#include "desktop/timeline/day_scale.h"

#include <algorithm>
#include <cmath>

#include "desktop/periods/wall_clock.h"

namespace tessum {
namespace {

constexpr double kShortestPlot = 4 * kSecondsPerHour;

}  // namespace

DayScale::DayScale(const TimelineHistory& history)
    : start_(history.range().end), end_(history.range().start) {
  const DayRange day = history.range();
  for (const TimelineSession& session : history.sessions) include(day, session.start, session.end);
  for (const Annotation& note : history.notes) {
    // Only a note's start counts: a note can last for days.
    include(day, note.startedAt, note.startedAt);
  }
  start_.secondsSince1970 = std::floor(start_.secondsSince1970);
  const WallTime begin = wallTime(start_);
  start_ = movedBy(start_, -(begin.minute * 60.0 + begin.second));
  const double hours = std::ceil(secondsBetween(start_, end_) / kSecondsPerHour);
  end_ = movedBy(start_, std::max(hours * kSecondsPerHour, kShortestPlot));
}

double DayScale::x(Date date) const {
  const double share = secondsBetween(start_, date) / secondsBetween(start_, end_);
  return kPlotLeft + std::clamp(share, 0.0, 1.0) * (kPlotRight - kPlotLeft);
}

bool DayScale::contains(Date date) const {
  return date.secondsSince1970 >= start_.secondsSince1970 &&
         date.secondsSince1970 <= end_.secondsSince1970;
}

std::vector<Date> DayScale::hours() const {
  std::vector<Date> hours;
  for (Date hour = start_; contains(hour); hour = endOfHour(hour)) hours.push_back(hour);
  return hours;
}

void DayScale::include(const DayRange& day, Date start, Date end) {
  const double first = day.start.secondsSince1970;
  const double last = day.end.secondsSince1970;
  start_.secondsSince1970 =
      std::min(start_.secondsSince1970, std::clamp(start.secondsSince1970, first, last));
  end_.secondsSince1970 =
      std::max(end_.secondsSince1970, std::clamp(end.secondsSince1970, first, last));
}

}  // namespace tessum
