// What the timeline shows: the sessions and notes of a period, with each text just once.

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/base/date.h"
#include "core/store/history.h"
#include "core/store/records.h"
#include "desktop/periods/period.h"
#include "desktop/periods/report_days.h"
#include "desktop/settings/rules.h"

namespace tessum {

struct TimelineDay {
  CalendarDate date;
  DayRange range;
};

struct TimelineCategory {
  std::string name;
  std::optional<std::string> colour;  // as #rrggbb; absent when the settings give none
};

// What many sessions have in common. The members are indices of the history's lists.
struct TimelineSubject {
  std::size_t app = 0;
  std::optional<std::size_t> title = {};     // absent where there is none, or an empty one
  std::optional<std::size_t> category = {};  // absent where no rule takes it

  friend bool operator==(const TimelineSubject&, const TimelineSubject&) = default;
};

// Cut at the edges of the period.
struct TimelineSession {
  Date start;
  Date end;  // that of an open session is the present
  std::size_t subject = 0;
  bool isOpen = false;
};

struct TimelineHistory {
  Period period;                  // as it was asked for
  std::vector<TimelineDay> days;  // those on which something can have been recorded, at least one
  Date now;                       // open sessions and notes count up to here
  std::vector<std::string> apps = {};
  std::vector<std::string> titles = {};
  std::vector<TimelineCategory> categories = {};
  std::vector<TimelineSubject> subjects = {};
  std::vector<TimelineSession> sessions = {};  // oldest first
  std::string narrowing = {};                  // such as "of Editor"; empty when nothing narrows
  std::size_t leftOut = 0;                     // sessions of the days that are not meant
  std::vector<Annotation> notes = {};          // that overlap the days, whole, oldest first
  std::optional<DayRange> beginnings = {};     // of all that was ever recorded

  [[nodiscard]] DayRange range() const { return {days.front().range.start, days.back().range.end}; }
};

// The days of `period` that a timeline has: not before the first record, and not after today.
[[nodiscard]] Period timelinePeriod(History& history, const Period& period, const ReportDays& days,
                                    Date now);

// An empty `isMeant` lets all sessions pass.
[[nodiscard]] TimelineHistory readTimeline(History& history, const ReportDays& days,
                                           const Rules& rules, const Period& period, Date now,
                                           const SessionTest& isMeant);

}  // namespace tessum
