#include "desktop/timeline/page_data.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "core/json/writer.h"
#include "desktop/periods/calendar_dates.h"
#include "desktop/periods/wall_clock.h"
#include "desktop/text/text_layout.h"
#include "desktop/timeline/colours.h"
#include "desktop/timeline/day_scale.h"

namespace tessum {
namespace {

constexpr std::size_t kMostTitleBytes = 8'000'000;  // of all titles together
constexpr std::size_t kLongestTitle = 2'000;        // columns

// Columns to which titles are cut so that all of them keep to the limit.
std::size_t titleColumns(const std::vector<std::string>& titles) {
  std::size_t columns = kLongestTitle;
  constexpr std::size_t kShortestTitle = 30;
  for (; columns > kShortestTitle; columns = columns * 3 / 4) {
    std::size_t bytes = 0;
    for (const std::string& title : titles) bytes += std::min(title.size(), columns);
    if (bytes <= kMostTitleBytes) break;
  }
  return columns;
}

// Writes values behind each other, with commas between them.
class List {
 public:
  explicit List(std::string& out) : out_(out) { out_ += '['; }

  std::string& next() {
    if (!isFirst_) out_ += ',';
    isFirst_ = false;
    return out_;
  }
  void number(std::int64_t value) { next() += std::to_string(value); }
  void text(std::string_view value) { json::appendString(next(), printable(value)); }
  void end() { out_ += ']'; }

 private:
  std::string& out_;
  bool isFirst_ = true;
};

class Writer {
 public:
  explicit Writer(const TimelineHistory& history) : history_(history) {}

  std::string text() {
    writeDays();
    writeOffsets();
    writeNames();
    writeSessions();
    writeNotes();
    object_.end();
    return withoutMarkup(out_);
  }

 private:
  // A script element ends at the first "</script", which can stand in a title.
  static std::string withoutMarkup(const std::string& json) {
    std::string out;
    out.reserve(json.size());
    for (const char c : json) {
      if (c == '<') {
        out += "\\u003c";
      } else {
        out += c;
      }
    }
    return out;
  }

  [[nodiscard]] std::int64_t milliseconds(Date date) const {
    return std::llround(secondsBetween(history_.range().start, date) * 1000);
  }

  void writeDays() {
    List days(object_.member("days"));
    for (const TimelineDay& day : history_.days) {
      List entry(days.next());
      entry.text(dateText(day.date));
      entry.number(milliseconds(day.range.start));
      entry.end();
    }
    days.end();
    object_.member("end") += std::to_string(milliseconds(history_.range().end));
    writeNow();
    if (history_.days.size() > 1) return;
    const DayRange used = DayScale(history_).range();
    List shown(object_.member("shown"));
    shown.number(milliseconds(used.start));
    shown.number(milliseconds(used.end));
    shown.end();
  }

  // A page of days gone by does not depend on when it is made.
  void writeNow() {
    const DayRange range = history_.range();
    const bool isInRange = secondsBetween(range.start, history_.now) >= 0 &&
                           secondsBetween(history_.now, range.end) >= 0;
    object_.member("now") += isInRange ? std::to_string(milliseconds(history_.now)) : "null";
  }

  // The moments from which the wall is so many seconds ahead of UTC.
  void writeOffsets() {
    const DayRange range = history_.range();
    List offsets(object_.member("offsets"));
    double last = std::nan("");
    const auto add = [&](Date date) {
      const double offset = secondsAheadOfUtc(date);
      if (offset == last) return;
      last = offset;
      List entry(offsets.next());
      entry.number(milliseconds(date));
      entry.number(std::llround(offset));
      entry.end();
    };
    for (const TimelineDay& day : history_.days) {
      add(day.range.start);
      if (secondsAheadOfUtc(day.range.end) == last) continue;
      for (Date at = day.range.start; secondsBetween(at, day.range.end) > 0; at = endOfHour(at)) {
        add(at);
      }
    }
    offsets.end();
    object_.member("start") += std::to_string(std::llround(range.start.secondsSince1970));
  }

  void writeNames() {
    List apps(object_.member("apps"));
    for (const std::string& app : history_.apps) {
      List entry(apps.next());
      entry.text(app);
      entry.number(static_cast<std::int64_t>(colourOf(app)));
      entry.end();
    }
    apps.end();
    const std::size_t columns = titleColumns(history_.titles);
    List titles(object_.member("titles"));
    for (const std::string& title : history_.titles) {
      titles.text(title.size() > columns ? shortened(printable(title), columns) : title);
    }
    titles.end();
    List categories(object_.member("categories"));
    for (const TimelineCategory& category : history_.categories) {
      List entry(categories.next());
      entry.text(category.name);
      entry.number(static_cast<std::int64_t>(colourOf(category.name)));
      if (category.colour) entry.text(*category.colour);
      entry.end();
    }
    categories.end();
    const auto index = [](const std::optional<std::size_t>& value) {
      return value ? static_cast<std::int64_t>(*value) : -1;
    };
    List subjects(object_.member("subjects"));
    for (const TimelineSubject& subject : history_.subjects) {
      subjects.number(static_cast<std::int64_t>(subject.app));
      subjects.number(index(subject.title));
      subjects.number(index(subject.category));
    }
    subjects.end();
  }

  void writeSessions() {
    List sessions(object_.member("sessions"));
    std::string open;
    List opens(open);
    std::int64_t last = 0;
    for (std::size_t i = 0; i < history_.sessions.size(); ++i) {
      const TimelineSession& session = history_.sessions[i];
      const std::int64_t start = milliseconds(session.start);
      const std::int64_t end = std::max(start, milliseconds(session.end));
      sessions.number(start - last);
      sessions.number(end - start);
      sessions.number(static_cast<std::int64_t>(session.subject));
      if (session.isOpen) opens.number(static_cast<std::int64_t>(i));
      last = end;
    }
    sessions.end();
    opens.end();
    object_.member("open") += open;
  }

  // Each is its beginning, its end and its text; true follows where it is open.
  void writeNotes() {
    List notes(object_.member("notes"));
    for (const Annotation& note : history_.notes) {
      List entry(notes.next());
      entry.number(milliseconds(note.startedAt));
      entry.number(milliseconds(note.endedAt.value_or(history_.now)));
      entry.text(note.text);
      if (!note.endedAt) entry.next() += "true";
      entry.end();
    }
    notes.end();
  }

  const TimelineHistory& history_;
  std::string out_;
  json::ObjectWriter object_{out_};
};

}  // namespace

std::string pageData(const TimelineHistory& history) {
  return Writer(history).text();
}

}  // namespace tessum
