// The records of the history, their durations and their JSON form.
//
// In JSON the keys are the member names, absent members are left out, and dates are UTC text
// without a fraction, such as 2025-03-04T09:15:00Z. When reading, a missing or null key is absent
// and unknown keys are ignored; every xFromJson() throws json::DecodingError where a member that
// is never absent is missing or a value is of the wrong kind.

#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/base/date.h"
#include "core/json/value.h"
#include "core/platform/clock.h"

namespace tessum {

// One stretch of time during which one application was in front.
struct Activity {
  std::optional<std::int64_t> id;       // row id; absent while not stored
  std::string appName;                  // the application's display name
  std::optional<std::string> bundleID;  // the application's identifier
  std::optional<std::string> title;     // the focused window's title
  Date startTime;
  std::optional<Date> endTime;  // absent while the session is open

  // Seconds from start to end, negative when the end comes first; absent while open.
  [[nodiscard]] std::optional<double> duration() const;

  // The duration for people, "ongoing" while open: 42s, 5m 3s, 2h 5m.
  [[nodiscard]] std::string formattedDuration() const;

  friend bool operator==(const Activity&, const Activity&) = default;
};

// One note of what the user was working on, valid until the next one.
struct Annotation {
  std::optional<std::int64_t> id;  // row id; absent while not stored
  std::string text;
  Date startedAt;
  std::optional<Date> endedAt;  // absent for the current annotation

  // Seconds from start to end; absent while current.
  [[nodiscard]] std::optional<double> duration() const;

  // The duration for people, up to the present moment while current: 42s, 5m 3s, 2h 5m.
  [[nodiscard]] std::string formattedDuration(const Clock& clock) const;

  friend bool operator==(const Annotation&, const Annotation&) = default;
};

// One application's total of one day.
struct AppUsageSummary {
  std::string appName;
  std::optional<std::string> bundleID;
  double totalDuration = 0;                // seconds
  std::int64_t sessionCount = 0;           // sessions that began on the day
  std::optional<std::string> latestTitle;  // the newest title of the day that is not empty

  // The total for people, without the seconds from one minute on: 42s, 5m, 2h 5m.
  [[nodiscard]] std::string formattedDuration() const;

  friend bool operator==(const AppUsageSummary&, const AppUsageSummary&) = default;
};

// The duration text of `seconds`, their fraction dropped toward zero; hours are never turned into
// days. The short form leaves out the seconds from one minute on. A value that is not finite or
// does not fit 64 bits stops the process.
enum class DurationForm { longForm, shortForm };
[[nodiscard]] std::string durationText(double seconds, DurationForm form);

[[nodiscard]] json::Value toJson(const Activity& activity);
[[nodiscard]] json::Value toJson(const Annotation& annotation);
[[nodiscard]] json::Value toJson(const AppUsageSummary& summary);

[[nodiscard]] Activity activityFromJson(const json::Value& value);
[[nodiscard]] Annotation annotationFromJson(const json::Value& value);
[[nodiscard]] AppUsageSummary appUsageSummaryFromJson(const json::Value& value);

}  // namespace tessum
