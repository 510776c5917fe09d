#include "desktop/reports/day_report.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <utility>

#include "desktop/reports/calendar_dates.h"
#include "desktop/reports/wall_clock.h"

namespace tessum {
namespace {

using enum Table::Alignment;

std::string totalText(std::span<const Activity> sessions, Date now) {
  double seconds = 0;
  for (const Activity& session : sessions) seconds += secondsUntil(now, session);
  return shortDuration(seconds) + " in " + counted(sessions.size(), "session");
}

std::string endText(const std::optional<Date>& end) {
  return end ? clockText(*end) : "now";
}

std::string usageTable(std::span<const Activity> sessions, Date now, const Paper& paper) {
  const auto summaries = usageOf(sessions, now);
  double total = 0;
  for (const auto& summary : summaries) total += std::max(summary.totalDuration, 0.0);
  const double longest = summaries.empty() ? 0 : summaries.front().totalDuration;
  Table table({left, right, right, right, left}, {3});
  for (const auto& summary : summaries) {
    const double share = total > 0 ? summary.totalDuration / total : 0;
    const auto percent = static_cast<int>(std::clamp(share, 0.0, 1.0) * 100 + 0.5);
    table.addRow({{summary.appName, Tone::strong},
                  {summary.formattedDuration()},
                  {std::to_string(percent) + "%"},
                  {counted(summary.sessionCount, "session"), Tone::faint},
                  Table::barCell(longest > 0 ? summary.totalDuration / longest : 0, Tone::accent)});
  }
  return table.text(paper);
}

// A moment that does not lie in `day` is written with its date.
std::string notesTable(std::span<const Annotation> notes, const std::optional<DayRange>& day,
                       Date now, const Paper& paper) {
  const auto momentText = [&](Date date) {
    const bool isInDay =
        day && secondsBetween(day->start, date) >= 0 && secondsBetween(date, day->end) > 0;
    return isInDay ? clockText(date) : dateText(date) + " " + clockText(date);
  };
  Table table({right, right, right, right, left});
  for (const Annotation& note : notes) {
    const double seconds = secondsUntil(now, note.startedAt, note.endedAt);
    table.addRow({{std::to_string(note.id.value_or(0)), Tone::faint},
                  {momentText(note.startedAt), Tone::faint},
                  {note.endedAt ? momentText(*note.endedAt) : "now", Tone::faint},
                  {durationText(seconds, DurationForm::longForm)},
                  {note.text, Tone::strong}});
  }
  return table.text(paper);
}

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

// The sessions of a day in their order, with the times away between them.
std::string sessionTable(const DayHistory& history, const Paper& paper) {
  Table table({right, right, right, left, left});
  const auto add = [&](Date start, const std::optional<Date>& end, Table::Cell name,
                       const std::string& title) {
    table.addRow({{clockText(start), Tone::faint},
                  {endText(end), Tone::faint},
                  {durationText(secondsUntil(history.now, start, end), DurationForm::longForm)},
                  std::move(name),
                  {title}});
  };
  auto away = history.away.begin();
  for (const Activity& session : history.sessions) {
    for (; away != history.away.end() && away->end == session.startTime; ++away) {
      add(away->start, away->end, {"away", Tone::faint}, "");
    }
    add(session.startTime, session.endTime, {session.appName, Tone::strong},
        session.title.value_or(""));
  }
  return table.text(paper);
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

std::string nothingRecordedText(bool leavesOutSome, int dayCount) {
  return std::string(leavesOutSome ? "No such session" : "Nothing") + " was recorded on " +
         (dayCount == 1 ? "this day." : "these days.");
}

std::string dayReport(const DayHistory& history, const Paper& paper) {
  const bool isEmpty = history.sessions.empty();
  std::string text = heading(longDateText(history.date),
                             isEmpty ? "" : totalText(history.sessions, history.now), paper);
  if (!history.notes.empty()) {
    text += "\n" + toned("Notes", Tone::strong, paper) + "\n" +
            notesTable(history.notes, history.day, history.now, paper);
  }
  if (isEmpty) {
    return text + "\n" + paragraph(nothingRecordedText(history.leavesOutSome, 1), paper);
  }

  text += "\n" + toned("Applications", Tone::strong, paper) + "\n" +
          usageTable(history.sessions, history.now, paper);
  return text + "\n" + toned("Sessions", Tone::strong, paper) + "\n" + sessionTable(history, paper);
}

std::string notesReport(const Period& period, const DayRange& range,
                        std::span<const Annotation> notes, Date now, const Paper& paper) {
  const bool isOneDay = dayCount(period) == 1;
  const std::string text = heading(longPeriodText(period), "", paper) + "\n";
  if (notes.empty()) {
    return text +
           paragraph("There are no notes for " + std::string(isOneDay ? "this day" : "these days") +
                         ". \"Tessum note TEXT\" makes one.",
                     paper);
  }
  return text + notesTable(notes, isOneDay ? std::optional(range) : std::nullopt, now, paper);
}

}  // namespace tessum
