#include "desktop/reports/timeline.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <filesystem>
#include <string_view>

#include "desktop/reports/calendar_dates.h"
#include "desktop/reports/timeline_scale.h"
#include "desktop/reports/wall_clock.h"

namespace tessum {
namespace {

// The policy forbids all loading, even if a title were to get through as markup.
constexpr char kHead[] = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'">
<meta name="viewport" content="width=device-width, initial-scale=1">
<meta name="color-scheme" content="light dark">
<style>
:root {
  --paper: #f6f7f9; --card: #ffffff; --ink: #1d2530; --faint: #6a7482; --line: #e4e8ee;
  --lane: #f1f3f7; --note: #fdf0cf; --note-edge: #e6bf55; --note-ink: #5c4306; --other: #a6aeb9;
}
@media (prefers-color-scheme: dark) {
  :root {
    --paper: #101317; --card: #181c22; --ink: #e8ecf2; --faint: #98a2b0; --line: #2a3039;
    --lane: #20252d; --note: #3a3116; --note-edge: #a5842c; --note-ink: #f6e2a9; --other: #6b7480;
  }
}
* { box-sizing: border-box; }
body {
  margin: 0; padding: 32px 24px; background: var(--paper); color: var(--ink);
  font: 15px/1.5 system-ui, "Segoe UI", "Helvetica Neue", "Noto Sans", "DejaVu Sans", sans-serif;
}
main { max-width: 1240px; margin: 0 auto; }
h1 { margin: 0; font-size: 26px; font-weight: 650; letter-spacing: -0.01em; }
p { margin: 4px 0 20px; color: var(--faint); }
.card {
  background: var(--card); border: 1px solid var(--line); border-radius: 14px;
  padding: 18px 20px; overflow-x: auto;
}
svg { display: block; width: 100%; min-width: 860px; height: auto; font-size: 13px; }
svg svg { min-width: 0; }
text { fill: var(--ink); dominant-baseline: central; }
.faint { fill: var(--faint); }
.hour { font-size: 12px; fill: var(--faint); text-anchor: middle; }
.total { font-weight: 600; text-anchor: end; }
.share { fill: var(--faint); font-size: 12px; text-anchor: end; }
.grid { stroke: var(--line); stroke-width: 1; }
.now { stroke: #d64545; stroke-width: 1.5; }
.lane { fill: var(--lane); }
.note { fill: var(--note); stroke: var(--note-edge); stroke-width: 1; }
.note-text { fill: var(--note-ink); font-size: 12px; font-weight: 550; }
.session:hover, .note:hover { stroke: var(--ink); stroke-width: 1.5; }
.a0 { fill: #4a7bdc; } .a1 { fill: #ea8438; } .a2 { fill: #2ea57e; } .a3 { fill: #cf559f; }
.a4 { fill: #8b66d6; } .a5 { fill: #d8a31a; } .a6 { fill: #1aa3bd; } .a7 { fill: #d64f4f; }
.a8 { fill: #7e9c34; } .a9 { fill: #b27c52; } .other { fill: var(--other); }
footer { margin-top: 14px; color: var(--faint); font-size: 13px; }
</style>
)";

constexpr std::size_t kColours = 10;

// Dimensions of the drawing, in its own units.
constexpr double kWidth = 1200;
constexpr double kTotalsRight = 1154;
constexpr double kAxisHeight = 26;
constexpr double kNoteHeight = 26;
constexpr double kAllHeight = 46;
constexpr double kRowHeight = 30;
constexpr double kBarHeight = 18;
constexpr double kGap = 12;
constexpr double kLeastSpan = 0.8;   // a shorter span would be invisible
constexpr double kNoteColumn = 7.6;  // the width of an average character of a note

std::string escaped(std::string_view text) {
  std::string out;
  for (const char c : printable(text)) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\'':
        out += "&#39;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

// `value` with one decimal.
std::string number(double value) {
  const auto tenths = static_cast<long>(std::lround(value * 10));
  std::string text = std::to_string(tenths / 10);
  if (tenths % 10 != 0) text += "." + std::to_string(std::abs(tenths % 10));
  return text;
}

// An attribute with a measure, such as ` x="12.5"`.
std::string measure(const char* name, double value) {
  return " " + std::string(name) + "=\"" + number(value) + "\"";
}

std::string box(double x, double y, double width, double height) {
  return measure("x", x) + measure("y", y) + measure("width", width) + measure("height", height);
}

std::string label(double x, double y, const char* style, const std::string& content) {
  return "<text class=\"" + std::string(style) + "\"" + measure("x", x) + measure("y", y) + ">" +
         escaped(content) + "</text>\n";
}

std::string spanText(Date start, const std::optional<Date>& end, Date now) {
  const double seconds = secondsUntil(now, start, end);
  return clockText(start) + "–" + (end ? clockText(*end) : "now") + ", " +
         durationText(seconds, DurationForm::longForm);
}

// The applications of a day, ordered by total. Those beyond the last colour share a row.
class Rows {
 public:
  explicit Rows(const DayHistory& history) : summaries_(usageOf(history.sessions, history.now)) {}

  [[nodiscard]] std::size_t count() const { return std::min(summaries_.size(), kColours + 1); }

  [[nodiscard]] std::size_t rowOf(const Activity& session) const {
    const auto fits = [&](const AppUsageSummary& summary) {
      return summary.appName == session.appName && summary.bundleID == session.bundleID;
    };
    const auto found = std::find_if(summaries_.begin(), summaries_.end(), fits);
    return std::min(static_cast<std::size_t>(found - summaries_.begin()), kColours);
  }

  [[nodiscard]] std::string styleOf(std::size_t row) const {
    return row < kColours ? "a" + std::to_string(row) : "other";
  }

  [[nodiscard]] std::string nameOf(std::size_t row) const {
    const bool isShared = row == kColours && summaries_.size() > kColours + 1;
    return isShared ? std::to_string(summaries_.size() - kColours) + " others"
                    : summaries_[row].appName;
  }

  [[nodiscard]] double secondsOf(std::size_t row) const {
    if (row < kColours) return summaries_[row].totalDuration;
    double seconds = 0;
    for (std::size_t i = row; i < summaries_.size(); ++i) seconds += summaries_[i].totalDuration;
    return seconds;
  }

  [[nodiscard]] double totalSeconds() const {
    double seconds = 0;
    for (const auto& summary : summaries_) seconds += summary.totalDuration;
    return seconds;
  }

 private:
  std::vector<AppUsageSummary> summaries_;
};

// Draws from the top down and collects the markup.
class Drawing {
 public:
  explicit Drawing(const DayHistory& history)
      : history_(history), scale_(history), rows_(history) {}

  [[nodiscard]] std::string text() {
    const bool hasNotes = !history_.notes.empty();
    const double noteTop = kAxisHeight;
    const double allTop = noteTop + (hasNotes ? kNoteHeight + kGap : 0);
    const double rowTop = allTop + kAllHeight + kGap;
    const double bottom = rowTop + kRowHeight * static_cast<double>(rows_.count());
    drawHours(bottom);
    if (hasNotes) drawNotes(noteTop);
    drawAll(allTop);
    drawRows(rowTop);
    drawNow(bottom);
    return "<svg viewBox=\"0 0 " + number(kWidth) + " " + number(bottom + 2) +
           "\" role=\"img\" aria-label=\"Applications and notes over the hours of the day\">\n" +
           out_ + "</svg>\n";
  }

 private:
  void drawHours(double bottom) {
    const auto hours = scale_.hours();
    const std::size_t step = hours.size() > 19 ? 2 : 1;
    for (std::size_t i = 0; i < hours.size(); ++i) {
      const double x = scale_.x(hours[i]);
      out_ += "<line class=\"grid\"" + measure("x1", x) + measure("x2", x) +
              measure("y1", kAxisHeight - 6) + measure("y2", bottom) + "/>\n";
      if (i % step == 0) out_ += label(x, 8, "hour", clockText(hours[i]));
    }
  }

  void drawNotes(double top) {
    out_ += label(0, top + kNoteHeight / 2, "faint", "Notes");
    for (const Annotation& note : history_.notes) {
      const double left = scale_.x(note.startedAt);
      const double width = scale_.x(note.endedAt.value_or(history_.now)) - left;
      const std::string tip =
          escaped(note.text) + "\n" + spanText(note.startedAt, note.endedAt, history_.now);
      out_ += "<rect class=\"note\" rx=\"6\"" +
              box(left + 1, top, std::max(width - 2, kLeastSpan), kNoteHeight) + "><title>" + tip +
              "</title></rect>\n";
      if (width < 24) continue;
      // The nested drawing clips text that is still too wide.
      const auto columns = static_cast<std::size_t>((width - 14) / kNoteColumn);
      out_ += "<svg pointer-events=\"none\"" + box(left + 8, top, width - 14, kNoteHeight) + ">" +
              "<text class=\"note-text\" x=\"0\"" + measure("y", kNoteHeight / 2) + ">" +
              escaped(shortened(printable(note.text), columns)) + "</text></svg>\n";
    }
  }

  void drawAll(double top) {
    out_ += label(0, top + kAllHeight / 2, "faint", "All applications");
    drawLane(top, kAllHeight);
    for (const Activity& session : history_.sessions) {
      drawSession(session, rows_.rowOf(session), top, kAllHeight);
    }
    out_ += label(kTotalsRight, top + kAllHeight / 2, "total",
                  durationText(rows_.totalSeconds(), DurationForm::shortForm));
  }

  void drawRows(double top) {
    const double total = rows_.totalSeconds();
    for (std::size_t row = 0; row < rows_.count(); ++row) {
      const double y = top + kRowHeight * static_cast<double>(row);
      const double middle = y + kRowHeight / 2;
      const double barTop = middle - kBarHeight / 2;
      out_ += "<rect class=\"" + rows_.styleOf(row) + "\" rx=\"3\"" + box(0, middle - 5, 10, 10) +
              "/>\n" + label(18, middle, "name", shortened(printable(rows_.nameOf(row)), 20));
      drawLane(barTop, kBarHeight);
      for (const Activity& session : history_.sessions) {
        if (rows_.rowOf(session) == row) drawSession(session, row, barTop, kBarHeight);
      }
      const double seconds = rows_.secondsOf(row);
      const double share = total > 0 ? std::clamp(seconds / total, 0.0, 1.0) : 0;
      out_ += label(kTotalsRight, middle, "total", durationText(seconds, DurationForm::shortForm)) +
              label(kWidth, middle, "share",
                    std::to_string(static_cast<int>(std::lround(share * 100))) + "%");
    }
  }

  void drawLane(double top, double height) {
    out_ += "<rect class=\"lane\" rx=\"4\"" + box(kPlotLeft, top, kPlotRight - kPlotLeft, height) +
            "/>\n";
  }

  void drawSession(const Activity& session, std::size_t row, double top, double height) {
    const double left = scale_.x(session.startTime);
    const double width = scale_.x(session.endTime.value_or(history_.now)) - left;
    const std::string title =
        session.title && !session.title->empty() ? "\n" + escaped(*session.title) : "";
    out_ += "<rect class=\"session " + rows_.styleOf(row) + "\"" +
            box(left, top, std::max(width, kLeastSpan), height) + "><title>" +
            escaped(session.appName) + title + "\n" +
            spanText(session.startTime, session.endTime, history_.now) + "</title></rect>\n";
  }

  void drawNow(double bottom) {
    if (!scale_.contains(history_.now)) return;
    const double x = scale_.x(history_.now);
    out_ += "<line class=\"now\"" + measure("x1", x) + measure("x2", x) +
            measure("y1", kAxisHeight - 6) + measure("y2", bottom) + "><title>Now</title></line>\n";
  }

  const DayHistory& history_;
  const TimelineScale scale_;
  const Rows rows_;
  std::string out_;
};

std::string summary(const DayHistory& history) {
  if (history.sessions.empty()) return "Nothing was recorded on this day.";
  const Rows rows(history);
  std::string text = durationText(rows.totalSeconds(), DurationForm::shortForm) + " in " +
                     counted(history.sessions.size(), "session");
  if (!history.notes.empty()) text += " · " + counted(history.notes.size(), "note");
  return text;
}

}  // namespace

std::string timelinePage(const DayHistory& history) {
  const std::string date = longDateText(history.date);
  return kHead + ("<title>" + date + "</title>\n</head>\n<body>\n<main>\n<h1>") + date +
         "</h1>\n<p>" + summary(history) + "</p>\n<div class=\"card\">\n" +
         Drawing(history).text() +
         "</div>\n<footer>Point at a span for its title. Tessum made this page on your own "
         "computer; it loads nothing from elsewhere.</footer>\n</main>\n</body>\n</html>\n";
}

std::string timelinePath(const Locations& locations) {
  return locations.dataFolder() + "/timeline.html";
}

void removeTimeline(const Locations& locations) {
  std::filesystem::remove(timelinePath(locations));
}

}  // namespace tessum
