#include "desktop/timeline/tables.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "desktop/periods/wall_clock.h"
#include "desktop/text/text_layout.h"
#include "desktop/timeline/app_rows.h"
#include "desktop/timeline/colours.h"
#include "desktop/timeline/markup.h"
#include "desktop/usage/day_history.h"

namespace tessum {
namespace {

constexpr std::size_t kMostApps = 20;
constexpr std::size_t kMostTitles = 40;
constexpr std::size_t kMostNotes = 200;

std::string cell(const char* style, const std::string& markup) {
  return "<td class=\"" + std::string(style) + "\">" + markup + "</td>";
}

std::string lengthCell(double seconds) {
  return cell("number", shortDuration(seconds));
}

std::string shareCell(double seconds, double total) {
  const double share = total > 0 ? std::clamp(seconds / total, 0.0, 1.0) : 0;
  return cell("number share", std::to_string(static_cast<int>(std::lround(share * 100))) + "%");
}

std::string table(const std::string& heading, const std::string& rows) {
  return "<section>\n<h2>" + heading + "</h2>\n<table>\n" + rows + "</table>\n</section>\n";
}

std::string row(const std::string& cells) {
  return "<tr>" + cells + "</tr>\n";
}

// Such as "2025-03-04 09:15–10:00"; an end on another day with its date.
std::string timesOf(const Annotation& note) {
  const std::string begin = dateText(note.startedAt) + " " + clockText(note.startedAt) + "–";
  if (!note.endedAt) return begin + "now";
  const bool isSameDay = dateText(*note.endedAt) == dateText(note.startedAt);
  return begin + (isSameDay ? "" : dateText(*note.endedAt) + " ") + clockText(*note.endedAt);
}

}  // namespace

std::string appTable(const TimelineHistory& history) {
  const double total = totalSeconds(history);
  std::string rows;
  for (const AppRow& app : appRows(history, kMostApps)) {
    const std::string style = app.apps.size() > 1 ? "other" : colourStyle(app.name);
    rows +=
        row(cell("name", "<svg class=\"swatch\" viewBox=\"0 0 10 10\"><rect class=\"" + style +
                             "\" rx=\"3\" width=\"10\" height=\"10\"/></svg>" + escaped(app.name)) +
            lengthCell(app.seconds) + shareCell(app.seconds, total));
  }
  return table("Applications", rows);
}

std::string noteTable(const TimelineHistory& history) {
  if (history.notes.empty()) return "";
  std::string rows;
  for (std::size_t i = 0; i < std::min(history.notes.size(), kMostNotes); ++i) {
    const Annotation& note = history.notes[i];
    rows += row(cell("name", escaped(note.text) + "<small>" + timesOf(note) + "</small>") +
                lengthCell(secondsUntil(history.now, note.startedAt, note.endedAt)));
  }
  if (history.notes.size() > kMostNotes) {
    rows += row(cell("name", "and " + counted(history.notes.size() - kMostNotes, "other")));
  }
  return table("Notes", rows);
}

std::string titleTable(const TimelineHistory& history) {
  const std::size_t count = history.titles.size();
  std::vector<double> seconds(count + 1);  // the last one is that without a title
  for (const TimelineSession& session : history.sessions) {
    seconds[history.subjects[session.subject].title.value_or(count)] += secondsOf(session);
  }
  std::vector<std::size_t> order(count + 1);
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t a, std::size_t b) { return seconds[a] > seconds[b]; });
  const double total = totalSeconds(history);
  std::string rows;
  double others = 0;
  std::size_t otherCount = 0;
  for (std::size_t i = 0; i < order.size(); ++i) {
    const std::size_t title = order[i];
    if (seconds[title] <= 0) break;
    if (i >= kMostTitles) {
      others += seconds[title];
      ++otherCount;
      continue;
    }
    rows += row(
        cell("name", title == count ? "<i>Without a title</i>" : escaped(history.titles[title])) +
        lengthCell(seconds[title]) + shareCell(seconds[title], total));
  }
  if (otherCount > 0) {
    rows += row(cell("name", "<i>" + counted(otherCount, "other") + "</i>") + lengthCell(others) +
                shareCell(others, total));
  }
  return table("Titles", rows);
}

}  // namespace tessum
