#include "desktop/reports/day_report.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <utility>

#include "desktop/reports/wall_clock.h"

namespace tessum {
namespace {

using enum Table::Alignment;

constexpr std::size_t kBarColumns = 24;

std::string totalText(std::span<const Activity> sessions, Date now) {
  double seconds = 0;
  for (const Activity& session : sessions) seconds += secondsUntil(now, session);
  return durationText(seconds, DurationForm::shortForm) + " in " +
         counted(sessions.size(), "session");
}

std::string heading(const DayHistory& history, const Paper& paper) {
  std::string text = toned(longDateText(history.day.start), Tone::strong, paper);
  if (!history.sessions.empty()) text += "  " + totalText(history.sessions, history.now);
  return text + "\n";
}

std::string endText(const std::optional<Date>& end) {
  return end ? clockText(*end) : "now";
}

std::string usageTable(std::span<const Activity> sessions, Date now, const Paper& paper) {
  const auto summaries = usageOf(sessions, now);
  double total = 0;
  for (const auto& summary : summaries) total += std::max(summary.totalDuration, 0.0);
  Table table({left, right, right, right, left});
  for (const auto& summary : summaries) {
    const double share = total > 0 ? summary.totalDuration / total : 0;
    const auto percent = static_cast<int>(std::clamp(share, 0.0, 1.0) * 100 + 0.5);
    table.addRow({{summary.appName, Tone::strong},
                  {summary.formattedDuration()},
                  {std::to_string(percent) + "%"},
                  {counted(summary.sessionCount, "session"), Tone::faint},
                  {bar(share, kBarColumns), Tone::accent}});
  }
  return table.text(paper);
}

std::string notesTable(const DayHistory& history, const Paper& paper) {
  const auto momentText = [&](Date date) {
    const bool isToday = date.secondsSince1970 >= history.day.start.secondsSince1970 &&
                         date.secondsSince1970 < history.day.end.secondsSince1970;
    return isToday ? clockText(date) : dateText(date) + " " + clockText(date);
  };
  Table table({right, right, right, left});
  for (const Annotation& note : history.notes) {
    const double seconds = secondsUntil(history.now, note.startedAt, note.endedAt);
    table.addRow({{momentText(note.startedAt), Tone::faint},
                  {note.endedAt ? momentText(*note.endedAt) : "now", Tone::faint},
                  {durationText(seconds, DurationForm::longForm)},
                  {note.text, Tone::strong}});
  }
  return table.text(paper);
}

}  // namespace

DayHistory readDay(History& history, const Host& host, Date day) {
  const DayRange range = host.calendar.dayOf(day);
  return {.day = range,
          .sessions = history.sessionsBegunIn(range),
          .notes = history.notesIn(range),
          .now = host.clock.now()};
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

std::string dayReport(const DayHistory& history, const Paper& paper) {
  std::string text = heading(history, paper);
  if (!history.notes.empty()) {
    text += "\n" + toned("Notes", Tone::strong, paper) + "\n" + notesTable(history, paper);
  }
  if (history.sessions.empty()) return text + "\nNothing was recorded on this day.\n";

  text += "\n" + toned("Applications", Tone::strong, paper) + "\n" +
          usageTable(history.sessions, history.now, paper);
  Table table({right, right, right, left, left});
  for (const Activity& session : history.sessions) {
    const double seconds = secondsUntil(history.now, session);
    table.addRow({{clockText(session.startTime), Tone::faint},
                  {endText(session.endTime), Tone::faint},
                  {durationText(seconds, DurationForm::longForm)},
                  {session.appName, Tone::strong},
                  {session.title.value_or("")}});
  }
  return text + "\n" + toned("Sessions", Tone::strong, paper) + "\n" + table.text(paper);
}

std::string usageReport(const DayHistory& history, const Paper& paper) {
  const std::string text = heading(history, paper) + "\n";
  if (history.sessions.empty()) return text + "Nothing was recorded on this day.\n";
  return text + usageTable(history.sessions, history.now, paper);
}

std::string notesReport(const DayHistory& history, const Paper& paper) {
  const std::string text = toned(longDateText(history.day.start), Tone::strong, paper) + "\n\n";
  if (history.notes.empty()) {
    return text + "There are no notes for this day. \"Tessum note TEXT\" makes one.\n";
  }
  return text + notesTable(history, paper);
}

std::string searchReport(std::span<const Activity> sessions, Date now, const Paper& paper) {
  if (sessions.empty()) return "Nothing was found.\n";
  Table table({left, right, right, right, left, left});
  for (const Activity& session : sessions) {
    const double seconds = secondsUntil(now, session);
    table.addRow({{dateText(session.startTime), Tone::faint},
                  {clockText(session.startTime), Tone::faint},
                  {endText(session.endTime), Tone::faint},
                  {durationText(seconds, DurationForm::longForm)},
                  {session.appName, Tone::strong},
                  {session.title.value_or("")}});
  }
  return toned("Found", Tone::strong, paper) + "  " + totalText(sessions, now) + "\n\n" +
         usageTable(sessions, now, paper) + "\n" + table.text(paper);
}

}  // namespace tessum
