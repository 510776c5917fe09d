#include "desktop/reports/day_report.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "desktop/periods/calendar_dates.h"
#include "desktop/periods/wall_clock.h"

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
