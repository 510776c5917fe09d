#include "desktop/reports/timeline_scale.h"

#include <algorithm>
#include <cmath>

#include "desktop/reports/wall_clock.h"

namespace tessum {
namespace {

constexpr double kHour = 3600;
constexpr double kShortestPlot = 4 * kHour;

}  // namespace

TimelineScale::TimelineScale(const DayHistory& history)
    : start_(history.day.end), end_(history.day.start) {
  for (const Activity& session : history.sessions) {
    include(history, session.startTime, session.endTime.value_or(history.now));
  }
  for (const Annotation& note : history.notes) {
    // Only a note's start counts: a note can last for days.
    include(history, note.startedAt, note.startedAt);
  }
  if (start_.secondsSince1970 > end_.secondsSince1970) {
    start_ = movedBy(history.day.start, 9 * kHour);
    end_ = movedBy(history.day.start, 17 * kHour);
  }
  const WallTime begin = wallTime(start_);
  start_ = movedBy(start_, -(begin.minute * 60.0 + begin.second));
  const double hours = std::ceil(secondsBetween(start_, end_) / kHour);
  end_ = movedBy(start_, std::max(hours * kHour, kShortestPlot));
}

double TimelineScale::x(Date date) const {
  const double share = secondsBetween(start_, date) / secondsBetween(start_, end_);
  return kPlotLeft + std::clamp(share, 0.0, 1.0) * (kPlotRight - kPlotLeft);
}

bool TimelineScale::contains(Date date) const {
  return date.secondsSince1970 >= start_.secondsSince1970 &&
         date.secondsSince1970 <= end_.secondsSince1970;
}

std::vector<Date> TimelineScale::hours() const {
  std::vector<Date> hours;
  for (Date hour = start_; contains(hour); hour = movedBy(hour, kHour)) hours.push_back(hour);
  return hours;
}

void TimelineScale::include(const DayHistory& history, Date start, Date end) {
  const double first = history.day.start.secondsSince1970;
  const double last = history.day.end.secondsSince1970;
  start_.secondsSince1970 =
      std::min(start_.secondsSince1970, std::clamp(start.secondsSince1970, first, last));
  end_.secondsSince1970 =
      std::max(end_.secondsSince1970, std::clamp(end.secondsSince1970, first, last));
}

}  // namespace tessum
