#include <algorithm>
#include <array>
#include <cstdio>
#include <map>

#include "desktop/periods/calendar_dates.h"
#include "desktop/periods/wall_clock.h"
#include "desktop/timeline/colours.h"
#include "desktop/timeline/markup.h"
#include "desktop/timeline/pictures.h"
#include "desktop/timeline/spans.h"

namespace tessum {
namespace {

// Dimensions of the drawing, in its own units.
constexpr double kLeft = 48;
constexpr double kTop = 34;
constexpr double kHourHeight = 20;
constexpr double kLeastHeight = 0.8;
constexpr double kWidestGap = 8;

// Up to so many days each session has a span of its own that shows its title. Of more days the
// spans of one colour are one path for each day, or a browser would have too much to lay out.
constexpr std::size_t kMostDaysWithTitles = 7;

// Up to so many days each has its name; more have their number.
constexpr std::size_t kMostNamedDays = 16;
constexpr std::size_t kMostNumberedDays = 62;

std::string monthText(int month) {
  constexpr std::array<const char*, 12> kNames{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                               "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  return kNames[static_cast<std::size_t>(month) - 1];
}

class StripsDrawing {
 public:
  explicit StripsDrawing(const TimelineHistory& history) : history_(history) {
    double longest = 0;
    for (const TimelineDay& day : history.days) longest = std::max(longest, lengthOf(day));
    bottom_ = kTop + longest / kSecondsPerHour * kHourHeight;
    pitch_ = (kPictureWidth - kLeft) / static_cast<double>(history.days.size());
    width_ = pitch_ - std::min(kWidestGap, pitch_ * 0.18);
  }

  [[nodiscard]] std::string text() {
    drawHours();
    for (std::size_t i = 0; i < history_.days.size(); ++i) drawName(i);
    out_ += "<g class=\"strips\">\n";
    for (std::size_t i = 0; i < history_.days.size(); ++i) drawStrip(i);
    return "<svg viewBox=\"0 0 " + decimal(kPictureWidth) + " " + decimal(bottom_ + 8) +
           "\" role=\"img\" aria-label=\"A strip for each day, with its hours from the top "
           "down\">\n" +
           out_ + "</g>\n</svg>\n";
  }

 private:
  static double lengthOf(const TimelineDay& day) {
    return secondsBetween(day.range.start, day.range.end);
  }

  [[nodiscard]] double x(std::size_t day) const {
    return kLeft + pitch_ * static_cast<double>(day);
  }

  [[nodiscard]] static double y(const TimelineDay& day, Date date) {
    const double seconds = std::clamp(secondsBetween(day.range.start, date), 0.0, lengthOf(day));
    return kTop + seconds / kSecondsPerHour * kHourHeight;
  }

  // The hours are those of a day without a change of the clock.
  void drawHours() {
    const int first = wallTime(history_.days.front().range.start).hour;
    constexpr int kStep = 3;
    for (int hour = 0; kTop + hour * kHourHeight <= bottom_; hour += kStep) {
      const double at = kTop + hour * kHourHeight;
      char text[16];
      std::snprintf(text, sizeof text, "%02d:00", (first + hour) % 24);
      out_ += line("grid", kLeft, at, kPictureWidth, at) + label(kLeft - 10, at, "edge", text);
    }
  }

  void drawName(std::size_t index) {
    const CalendarDate& date = history_.days[index].date;
    const std::size_t count = history_.days.size();
    const double middle = x(index) + width_ / 2;
    std::string text;
    if (count <= kMostNamedDays) {
      text = std::string(weekdayName(weekdayFromMonday(date))).substr(0, 3) + " " +
             std::to_string(date.day);
    } else if (count <= kMostNumberedDays) {
      text = std::to_string(date.day);
    }
    if (!text.empty()) out_ += label(middle, 22, "hour", text);
    if (date.day == 1 || index == 0) {
      // The next month's name needs its room.
      const bool hasRoom = date.day <= 20 || count <= kMostNamedDays;
      if (hasRoom) out_ += label(x(index), text.empty() ? 22 : 6, "month", monthText(date.month));
    }
  }

  void drawStrip(std::size_t index) {
    const TimelineDay& day = history_.days[index];
    out_ += "<rect class=\"lane\" rx=\"" + decimal(std::min(4.0, width_ / 4)) + "\"" +
            box(x(index), kTop, width_, y(day, day.range.end) - kTop) + "/>\n";
    const auto spans = joined(spansOf(day), kLeastSpan);
    if (history_.days.size() <= kMostDaysWithTitles) {
      for (const Span& span : spans) drawSpan(index, span);
    } else {
      drawPaths(index, spans);
    }
  }

  // Those of the day; sessions come in their order, so each day goes on where the last one ended.
  std::vector<Span> spansOf(const TimelineDay& day) {
    std::vector<Span> spans;
    const auto add = [&](std::size_t i) {
      const TimelineSession& session = history_.sessions[i];
      const double top = y(day, session.start);
      const double end = std::max(top, y(day, session.end));
      spans.push_back({.start = top, .end = end, .session = i, .longest = end - top});
    };
    std::vector<std::size_t> later;
    for (const std::size_t i : reachingOver_) {
      add(i);
      if (secondsBetween(day.range.end, history_.sessions[i].end) > 0) later.push_back(i);
    }
    for (; next_ < history_.sessions.size(); ++next_) {
      const TimelineSession& session = history_.sessions[next_];
      if (secondsBetween(session.start, day.range.end) <= 0) break;
      add(next_);
      if (secondsBetween(day.range.end, session.end) > 0) later.push_back(next_);
    }
    reachingOver_ = later;
    return spans;
  }

  [[nodiscard]] std::string styleOf(const Span& span) const {
    const std::size_t subject = history_.sessions[span.session].subject;
    return colourStyle(history_.apps[history_.subjects[subject].app]);
  }

  void drawSpan(std::size_t index, const Span& span) {
    const TimelineSession& session = history_.sessions[span.session];
    out_ += "<rect class=\"session " + styleOf(span) + "\"" +
            box(x(index), span.start, width_, std::max(span.end - span.start, kLeastHeight)) +
            "><title>" + escapedLines(tipText(history_, session, span.count - 1)) +
            "</title></rect>\n";
  }

  void drawPaths(std::size_t index, const std::vector<Span>& spans) {
    std::map<std::string, std::string> paths;
    for (const Span& span : spans) {
      paths[styleOf(span)] +=
          "M" + decimal(x(index)) + " " + decimal(span.start) + "h" + decimal(width_) + "v" +
          decimal(std::max(span.end - span.start, kLeastHeight)) + "h" + decimal(-width_) + "z";
    }
    for (const auto& [style, path] : paths) {
      out_ += "<path class=\"" + style + "\" d=\"" + path + "\"/>\n";
    }
  }

  const TimelineHistory& history_;
  double bottom_ = 0;
  double pitch_ = 0;  // from one strip to the next
  double width_ = 0;  // of a strip
  std::size_t next_ = 0;
  std::vector<std::size_t> reachingOver_;  // sessions of the days before that go on
  std::string out_;
};

}  // namespace

std::string stripsPicture(const TimelineHistory& history) {
  return StripsDrawing(history).text();
}

}  // namespace tessum
