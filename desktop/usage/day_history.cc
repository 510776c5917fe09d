#include "desktop/usage/day_history.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>

#include "desktop/periods/calendar_dates.h"

namespace tessum {
namespace {

// Shorter ones are switches from one application to the next.
constexpr double kShortestAway = 60;

// The sessions come in the order of their beginning, and may overlap.
std::vector<DayRange> timesBetween(std::span<const Activity> sessions, Date now) {
  std::vector<DayRange> times;
  std::optional<Date> end;  // of all sessions so far
  for (const Activity& session : sessions) {
    if (end && secondsBetween(*end, session.startTime) >= kShortestAway) {
      times.push_back({*end, session.startTime});
    }
    const Date next = session.endTime.value_or(now);
    if (!end || secondsBetween(*end, next) > 0) end = next;
  }
  return times;
}

}  // namespace

DayHistory readDay(History& history, const ReportDays& days, const CalendarDate& date, Date now) {
  DayHistory content{
      .date = date, .day = days.rangeOf({date, date}), .sessions = {}, .notes = {}, .now = now};
  history.visitSessionsIn(content.day, now, [&](const Activity& session) {
    content.sessions.push_back(cutTo(content.day, session, now));
  });
  content.away = timesBetween(content.sessions, now);
  content.notes = history.notesIn(content.day);
  return content;
}

Period recordedDays(History& history, const Period& period, const ReportDays& days, Date now) {
  const auto range = history.beginnings().value_or(DayRange{now, now});
  const CalendarDate first = days.dayOf(range.start);
  const CalendarDate last = days.dayOf(secondsBetween(now, range.end) > 0 ? range.end : now);
  Period recorded = period;
  if (daysBetween(recorded.first, first) > 0) recorded.first = first;
  if (daysBetween(last, recorded.last) > 0) recorded.last = last;
  return dayCount(recorded) > 0 ? recorded : Period{period.first, period.first};
}

Activity cutTo(const DayRange& range, const Activity& session, Date now) {
  Activity part = session;
  if (secondsBetween(part.startTime, range.start) > 0) part.startTime = range.start;
  if (secondsBetween(range.end, part.endTime.value_or(now)) > 0) part.endTime = range.end;
  return part;
}

double secondsUntil(Date now, Date start, const std::optional<Date>& end) {
  return std::max(0.0, secondsBetween(start, end.value_or(now)));
}

double secondsUntil(Date now, const Activity& session) {
  return secondsUntil(now, session.startTime, session.endTime);
}

std::vector<AppUsageSummary> usageOf(std::span<const Activity> sessions, Date now) {
  std::map<std::pair<std::string, std::optional<std::string>>, AppUsageSummary> byApplication;
  for (const Activity& session : sessions) {
    auto& summary = byApplication[{session.appName, session.bundleID}];
    summary.appName = session.appName;
    summary.bundleID = session.bundleID;
    summary.totalDuration += secondsUntil(now, session);
    summary.sessionCount += 1;
    if (session.title && !session.title->empty()) summary.latestTitle = session.title;
  }
  std::vector<AppUsageSummary> summaries;
  for (auto& entry : byApplication) summaries.push_back(std::move(entry.second));
  std::stable_sort(summaries.begin(), summaries.end(),
                   [](const AppUsageSummary& a, const AppUsageSummary& b) {
                     return a.totalDuration > b.totalDuration;
                   });
  return summaries;
}

}  // namespace tessum
