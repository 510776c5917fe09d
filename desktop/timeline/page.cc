#include "desktop/timeline/page.h"

#include <filesystem>

#include "core/store/records.h"
#include "desktop/periods/calendar_dates.h"
#include "desktop/periods/wall_clock.h"
#include "desktop/reports/day_report.h"
#include "desktop/text/text_layout.h"
#include "desktop/timeline/app_rows.h"
#include "desktop/timeline/markup.h"
#include "desktop/timeline/page_data.h"
#include "desktop/timeline/page_parts.h"
#include "desktop/timeline/pictures.h"
#include "desktop/timeline/tables.h"

namespace tessum {
namespace {

// Nothing may be loaded, even if a title were to get through as markup, and no script may run but
// the page's own.
std::string policy() {
  return "default-src 'none'; script-src '" + std::string(kPageScript.hash) + "'; style-src '" +
         std::string(kPageStyle.hash) + "'; base-uri 'none'; form-action 'none'";
}

std::string head(const std::string& title, bool hasScript) {
  std::string text =
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta http-equiv=\"Content-Security-Policy\" content=\"" +
      policy() +
      "\">\n<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      "<meta name=\"color-scheme\" content=\"light dark\">\n<title>" +
      escaped(title) + "</title>\n<style>" + std::string(kPageStyle.text) + "</style>\n";
  if (hasScript) text += "<script>" + std::string(kPageScript.text) + "</script>\n";
  return text + "</head>\n";
}

std::string summary(const TimelineHistory& history) {
  std::string text =
      shortDuration(totalSeconds(history)) + " in " + counted(history.sessions.size(), "session");
  if (!history.notes.empty()) text += " · " + counted(history.notes.size(), "note");
  return text;
}

// Which sessions the page is about, unless it is about all of them.
std::string narrowingLine(const TimelineHistory& history) {
  if (history.narrowing.empty()) return "";
  std::string text = "Only sessions " + escaped(history.narrowing);
  if (history.leftOut > 0) {
    text += "; " + counted(history.leftOut, "other is", "others are") + " left out";
  }
  return "<p class=\"narrowing\">" + text + ".</p>\n";
}

// What to do about a period without any record.
std::string advice(const TimelineHistory& history) {
  const std::string nothing = "<p class=\"advice\">" +
                              nothingRecordedText(history.leftOut > 0, dayCount(history.period)) +
                              "</p>\n";
  if (history.leftOut > 0) {
    return nothing +
           "<p>Without <code>--app</code>, <code>--title</code> and "
           "<code>--category</code> the page shows all of them. <code>Tessum search WORD</code> "
           "finds titles and applications of any day.</p>\n";
  }
  if (!history.beginnings) {
    return nothing +
           "<p><code>Tessum record</code> writes the history from now on; <code>Tessum "
           "doctor</code> "
           "finds out what keeps it from working.</p>\n";
  }
  const std::string first = dateText(history.beginnings->start);
  const std::string last = dateText(history.beginnings->end);
  return nothing + "<p>The history begins on " + first + " and reaches to " + last +
         ". Try <code>Tessum timeline " + last +
         "</code>, or <code>Tessum status</code> to see whether it is being recorded now.</p>\n";
}

std::string picture(const TimelineHistory& history) {
  if (history.days.size() == 1) return dayPicture(history);
  return stripsPicture(history);
}

std::string tables(const TimelineHistory& history) {
  std::string text;
  if (history.days.size() > 1) text += appTable(history) + noteTable(history);
  return text + titleTable(history);
}

std::string content(const TimelineHistory& history) {
  return "<p class=\"still\">" + summary(history) + "</p>\n" + std::string(kPageControls.text) +
         "<div class=\"still\">\n<div class=\"card\">\n" + picture(history) +
         "</div>\n<div class=\"tables\">\n" + tables(history) + "</div>\n</div>\n" +
         "<script type=\"application/json\" id=\"history\">" + pageData(history) + "</script>\n";
}

}  // namespace

std::string timelinePage(const TimelineHistory& history) {
  const std::string title = longPeriodText(history.period);
  const bool isEmpty = history.sessions.empty() && (history.notes.empty() || history.leftOut > 0);
  return head(title, !isEmpty) + "<body>\n<main>\n<h1>" + escaped(title) + "</h1>\n" +
         narrowingLine(history) + (isEmpty ? advice(history) : content(history)) +
         "<footer>Tessum made this page on your own computer; it loads nothing from "
         "elsewhere.</footer>\n</main>\n</body>\n</html>\n";
}

std::string timelinePath(const Locations& locations) {
  return locations.dataFolder() + "/timeline.html";
}

void removeTimeline(const Locations& locations) {
  std::filesystem::remove(timelinePath(locations));
}

}  // namespace tessum
