#include "core/mcp/reports.h"

#include <cstddef>

namespace tessum {
namespace {

constexpr char kBullet[] = "\n\u2022 ";
constexpr char kDash[] = " \u2013 ";
constexpr char kArrow[] = " \u2192 ";

// The room that a line needs besides its texts; more only costs a moment's memory.
constexpr std::size_t kRestOfLine = 80;

void appendSpan(std::string& out, Date start, const std::optional<Date>& end) {
  out += "  [";
  appendTimeStamp(out, start);
  out += kArrow;
  if (end) {
    appendTimeStamp(out, *end);
  } else {
    out += "ongoing";
  }
  out += "]  (";
}

}  // namespace

std::string formatActivities(std::span<const Activity> activities) {
  if (activities.empty()) return "No activities found.";
  std::string out = "Activities (" + std::to_string(activities.size()) + " sessions):";
  std::size_t room = out.size();
  for (const Activity& activity : activities) {
    room += kRestOfLine + activity.appName.size() + (activity.title ? activity.title->size() : 0);
  }
  out.reserve(room);
  for (const Activity& activity : activities) {
    out += kBullet;
    out += activity.appName;
    if (activity.title) {
      out += kDash;
      out += *activity.title;
    }
    appendSpan(out, activity.startTime, activity.endTime);
    out += activity.formattedDuration();
    out += ')';
  }
  return out;
}

std::string formatAnnotations(std::span<const Annotation> annotations, const Clock& clock) {
  if (annotations.empty()) return "No annotations found.";
  std::string out = "Annotations (" + std::to_string(annotations.size()) + "):";
  for (const Annotation& annotation : annotations) {
    out += kBullet;
    out += annotation.text;
    appendSpan(out, annotation.startedAt, annotation.endedAt);
    out += annotation.formattedDuration(clock);
    out += ')';
  }
  return out;
}

std::string formatUsage(std::span<const AppUsageSummary> summaries) {
  if (summaries.empty()) return "No usage data found.";
  std::string out = "App usage summary (" + std::to_string(summaries.size()) + " apps):";
  for (const AppUsageSummary& summary : summaries) {
    out += kBullet;
    out += summary.appName;
    out += ": ";
    out += summary.formattedDuration();
    out += " across ";
    out += std::to_string(summary.sessionCount);
    out += " session(s)";
  }
  return out;
}

}  // namespace tessum
