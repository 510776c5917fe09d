#include "core/store/records.h"

#include <charconv>
#include <utility>

#include "core/base/check.h"
#include "core/json/field.h"

namespace tessum {
namespace {

using json::Field;
using json::Value;

template <typename T>
void addIfPresent(Value::Object& object, const char* key, const std::optional<T>& member) {
  if (member) object.emplace(key, *member);
}

void addIfPresent(Value::Object& object, const char* key, const std::optional<Date>& member) {
  if (member) object.emplace(key, internetDateTime(*member));
}

Date dateOf(const Field& field) {
  const auto date = parseInternetDateTime(field.text());
  if (!date) field.fail("a date such as 2025-03-04T09:15:00Z");
  return *date;
}

// The member `key`, read by `read`, where it is present.
template <typename Read>
auto optionalMember(const Field& record, const char* key, Read read)
    -> std::optional<decltype(read(record))> {
  const auto field = record.optional(key);
  if (!field) return std::nullopt;
  return read(*field);
}

void appendCount(std::string& out, std::int64_t count, char unit) {
  char digits[20];
  out.append(digits, std::to_chars(digits, digits + sizeof digits, count).ptr);
  out += unit;
}

constexpr auto kText = [](const Field& field) { return field.text(); };
constexpr auto kInteger = [](const Field& field) { return field.integer(); };

}  // namespace

std::optional<double> Activity::duration() const {
  if (!endTime) return std::nullopt;
  return secondsBetween(startTime, *endTime);
}

std::string Activity::formattedDuration() const {
  const auto seconds = duration();
  return seconds ? durationText(*seconds, DurationForm::longForm) : "ongoing";
}

std::optional<double> Annotation::duration() const {
  if (!endedAt) return std::nullopt;
  return secondsBetween(startedAt, *endedAt);
}

std::string Annotation::formattedDuration(const Clock& clock) const {
  const Date end = endedAt ? *endedAt : clock.now();
  return durationText(secondsBetween(startedAt, end), DurationForm::longForm);
}

std::string AppUsageSummary::formattedDuration() const {
  return durationText(totalDuration, DurationForm::shortForm);
}

std::string durationText(double seconds, DurationForm form) {
  constexpr double kTwoTo63 = 9223372036854775808.0;
  TESSUM_CHECK(seconds >= -kTwoTo63 && seconds < kTwoTo63, "a duration that cannot be written");
  const auto whole = static_cast<std::int64_t>(seconds);
  std::string text;
  if (whole < 60) {
    appendCount(text, whole, 's');
  } else if (whole < 3600) {
    appendCount(text, whole / 60, 'm');
    if (form == DurationForm::longForm) appendCount(text += ' ', whole % 60, 's');
  } else {
    appendCount(text, whole / 3600, 'h');
    appendCount(text += ' ', whole / 60 % 60, 'm');
  }
  return text;
}

Value toJson(const Activity& activity) {
  Value::Object object;
  addIfPresent(object, "id", activity.id);
  object.emplace("appName", activity.appName);
  addIfPresent(object, "bundleID", activity.bundleID);
  addIfPresent(object, "title", activity.title);
  object.emplace("startTime", internetDateTime(activity.startTime));
  addIfPresent(object, "endTime", activity.endTime);
  return object;
}

Value toJson(const Annotation& annotation) {
  Value::Object object;
  addIfPresent(object, "id", annotation.id);
  object.emplace("text", annotation.text);
  object.emplace("startedAt", internetDateTime(annotation.startedAt));
  addIfPresent(object, "endedAt", annotation.endedAt);
  return object;
}

Value toJson(const AppUsageSummary& summary) {
  Value::Object object;
  object.emplace("appName", summary.appName);
  addIfPresent(object, "bundleID", summary.bundleID);
  object.emplace("totalDuration", Value::real(summary.totalDuration));
  object.emplace("sessionCount", summary.sessionCount);
  addIfPresent(object, "latestTitle", summary.latestTitle);
  return object;
}

Activity activityFromJson(const Value& value) {
  const Field record(value);
  return {.id = optionalMember(record, "id", kInteger),
          .appName = record.required("appName").text(),
          .bundleID = optionalMember(record, "bundleID", kText),
          .title = optionalMember(record, "title", kText),
          .startTime = dateOf(record.required("startTime")),
          .endTime = optionalMember(record, "endTime", dateOf)};
}

Annotation annotationFromJson(const Value& value) {
  const Field record(value);
  return {.id = optionalMember(record, "id", kInteger),
          .text = record.required("text").text(),
          .startedAt = dateOf(record.required("startedAt")),
          .endedAt = optionalMember(record, "endedAt", dateOf)};
}

AppUsageSummary appUsageSummaryFromJson(const Value& value) {
  const Field record(value);
  return {.appName = record.required("appName").text(),
          .bundleID = optionalMember(record, "bundleID", kText),
          .totalDuration = record.required("totalDuration").real(),
          .sessionCount = record.required("sessionCount").integer(),
          .latestTitle = optionalMember(record, "latestTitle", kText)};
}

}  // namespace tessum
