#include "core/mcp/reports.h"

#include <utility>

namespace tessum {
namespace {

constexpr char kBullet[] = "\n\u2022 ";
constexpr char kDash[] = " \u2013 ";
constexpr char kArrow[] = " \u2192 ";

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

void ActivityReport::add(const Activity& activity) {
  count_ += 1;
  lines_ += kBullet;
  lines_ += activity.appName;
  if (activity.title) {
    lines_ += kDash;
    lines_ += *activity.title;
  }
  appendSpan(lines_, activity.startTime, activity.endTime);
  lines_ += activity.formattedDuration();
  lines_ += ')';
}

std::string ActivityReport::finish() && {
  if (count_ == 0) return "No activities found.";
  lines_.insert(0, "Activities (" + std::to_string(count_) + " sessions):");
  return std::move(lines_);
}

std::string formatActivities(std::span<const Activity> activities) {
  ActivityReport report;
  for (const Activity& activity : activities) report.add(activity);
  return std::move(report).finish();
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
