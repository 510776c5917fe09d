#include <algorithm>
#include <cmath>
#include <cstddef>

#include "desktop/periods/wall_clock.h"
#include "desktop/text/text_layout.h"
#include "desktop/timeline/app_rows.h"
#include "desktop/timeline/colours.h"
#include "desktop/timeline/day_scale.h"
#include "desktop/timeline/markup.h"
#include "desktop/timeline/pictures.h"
#include "desktop/timeline/spans.h"
#include "desktop/usage/day_history.h"

namespace tessum {
namespace {

constexpr std::size_t kMostRows = 12;

// Dimensions of the drawing, in its own units.
constexpr double kTotalsRight = 1154;
constexpr double kAxisHeight = 26;
constexpr double kNoteHeight = 26;
constexpr double kAllHeight = 46;
constexpr double kRowHeight = 30;
constexpr double kBarHeight = 18;
constexpr double kGap = 12;
constexpr double kLeastWidth = 0.8;  // of a span that has none
constexpr double kNoteColumn = 7.6;  // the width of an average character of a note

// Draws from the top down and collects the markup.
class DayDrawing {
 public:
  explicit DayDrawing(const TimelineHistory& history)
      : history_(history),
        scale_(history),
        rows_(appRows(history, kMostRows)),
        lanes_(lanesOf(history.notes, history.now)) {}

  [[nodiscard]] std::string text() {
    const double laneCount =
        lanes_.empty() ? 0
                       : static_cast<double>(*std::max_element(lanes_.begin(), lanes_.end())) + 1;
    const double noteTop = kAxisHeight;
    const double allTop = noteTop + laneCount * (kNoteHeight + 4) + (lanes_.empty() ? 0 : kGap - 4);
    const double rowTop = allTop + kAllHeight + kGap;
    const double bottom = rowTop + kRowHeight * static_cast<double>(rows_.size());
    drawHours(bottom);
    if (!lanes_.empty()) drawNotes(noteTop);
    drawAll(allTop);
    drawRows(rowTop);
    drawNow(bottom);
    return "<svg viewBox=\"0 0 " + decimal(kPictureWidth) + " " + decimal(bottom + 2) +
           "\" role=\"img\" aria-label=\"Applications and notes over the hours of the day\">\n" +
           out_ + "</svg>\n";
  }

 private:
  void drawHours(double bottom) {
    const auto hours = scale_.hours();
    const std::size_t step = hours.size() > 19 ? 2 : 1;
    for (std::size_t i = 0; i < hours.size(); ++i) {
      const double x = scale_.x(hours[i]);
      out_ += line("grid", x, kAxisHeight - 6, x, bottom);
      if (i % step == 0) out_ += label(x, 8, "hour", clockText(hours[i]));
    }
  }

  void drawNotes(double top) {
    out_ += label(0, top + kNoteHeight / 2, "faint", "Notes");
    for (std::size_t i = 0; i < history_.notes.size(); ++i) {
      drawNote(history_.notes[i], top + static_cast<double>(lanes_[i]) * (kNoteHeight + 4));
    }
  }

  void drawNote(const Annotation& note, double top) {
    const Date end = note.endedAt.value_or(history_.now);
    const double left = scale_.x(note.startedAt);
    const double width = scale_.x(end) - left;
    const std::string tip =
        escaped(note.text) + "\n" + spanText(note.startedAt, end, !note.endedAt);
    out_ += "<rect class=\"note\" rx=\"6\"" +
            box(left + 1, top, std::max(width - 2, kLeastWidth), kNoteHeight) + "><title>" + tip +
            "</title></rect>\n";
    if (width < 24) return;
    // The nested drawing clips text that is still too wide.
    const auto columns = static_cast<std::size_t>((width - 14) / kNoteColumn);
    out_ += "<svg pointer-events=\"none\"" + box(left + 8, top, width - 14, kNoteHeight) + ">" +
            "<text class=\"note-text\" x=\"0\"" + measure("y", kNoteHeight / 2) + ">" +
            escaped(shortened(printable(note.text), columns)) + "</text></svg>\n";
  }

  void drawAll(double top) {
    out_ += label(0, top + kAllHeight / 2, "faint", "All applications");
    drawLane(top, kAllHeight);
    std::vector<Span> spans;
    for (std::size_t i = 0; i < history_.sessions.size(); ++i) spans.push_back(spanOf(i));
    drawSpans(spans, top, kAllHeight);
    out_ +=
        label(kTotalsRight, top + kAllHeight / 2, "total", shortDuration(totalSeconds(history_)));
  }

  void drawRows(double top) {
    const double total = totalSeconds(history_);
    for (std::size_t i = 0; i < rows_.size(); ++i) {
      const AppRow& row = rows_[i];
      const double y = top + kRowHeight * static_cast<double>(i);
      const double middle = y + kRowHeight / 2;
      const double barTop = middle - kBarHeight / 2;
      const std::string style = row.apps.size() > 1 ? "other" : colourStyle(row.name);
      out_ += "<rect class=\"" + style + "\" rx=\"3\"" + box(0, middle - 5, 10, 10) + "/>\n" +
              label(18, middle, "name", shortened(printable(row.name), 20));
      drawLane(barTop, kBarHeight);
      drawSpans(spansOf(row), barTop, kBarHeight);
      const double share = total > 0 ? std::clamp(row.seconds / total, 0.0, 1.0) : 0;
      out_ += label(kTotalsRight, middle, "total", shortDuration(row.seconds)) +
              label(kPictureWidth, middle, "share",
                    std::to_string(static_cast<int>(std::lround(share * 100))) + "%");
    }
  }

  void drawLane(double top, double height) {
    out_ += "<rect class=\"lane\" rx=\"4\"" + box(kPlotLeft, top, kPlotRight - kPlotLeft, height) +
            "/>\n";
  }

  [[nodiscard]] Span spanOf(std::size_t index) const {
    const TimelineSession& session = history_.sessions[index];
    const double left = scale_.x(session.start);
    const double right = std::max(left, scale_.x(session.end));
    return {.start = left, .end = right, .session = index, .longest = right - left};
  }

  [[nodiscard]] std::vector<Span> spansOf(const AppRow& row) const {
    std::vector<bool> isOfRow(history_.apps.size());
    for (const std::size_t app : row.apps) isOfRow[app] = true;
    std::vector<Span> spans;
    for (std::size_t i = 0; i < history_.sessions.size(); ++i) {
      if (isOfRow[history_.subjects[history_.sessions[i].subject].app]) spans.push_back(spanOf(i));
    }
    return spans;
  }

  void drawSpans(const std::vector<Span>& spans, double top, double height) {
    for (const Span& span : joined(spans, kLeastSpan)) {
      const TimelineSession& session = history_.sessions[span.session];
      out_ += "<rect class=\"session " +
              colourStyle(history_.apps[history_.subjects[session.subject].app]) + "\"" +
              box(span.start, top, std::max(span.end - span.start, kLeastWidth), height) +
              "><title>" + escapedLines(tipText(history_, session, span.count - 1)) +
              "</title></rect>\n";
    }
  }

  void drawNow(double bottom) {
    if (!scale_.contains(history_.now)) return;
    const double x = scale_.x(history_.now);
    out_ += line("now", x, kAxisHeight - 6, x, bottom);
  }

  const TimelineHistory& history_;
  const DayScale scale_;
  const std::vector<AppRow> rows_;
  const std::vector<std::size_t> lanes_;
  std::string out_;
};

}  // namespace

std::string spanText(Date start, Date end, bool isOpen) {
  return clockText(start) + "–" + (isOpen ? "now" : clockText(end)) + ", " +
         durationText(secondsUntil(end, start, end), DurationForm::longForm);
}

std::string tipText(const TimelineHistory& history, const TimelineSession& session,
                    std::size_t others) {
  const TimelineSubject& subject = history.subjects[session.subject];
  std::string text = printable(history.apps[subject.app]) + "\n";
  if (subject.title) text += printable(history.titles[*subject.title]) + "\n";
  text += spanText(session.start, session.end, session.isOpen);
  if (others > 0) text += "\nand " + counted(others, "shorter one");
  return text;
}

std::string dayPicture(const TimelineHistory& history) {
  return DayDrawing(history).text();
}

}  // namespace tessum
