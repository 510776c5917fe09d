// Reports on rows with arbitrary bytes and times: valid UTF-8, with all rows.

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "core/base/check.h"
#include "core/base/text.h"
#include "core/mcp/reports.h"
#include "core/store/database.h"
#include "fuzz/input.h"
#include "tests/support/fakes/fake_clock.h"

namespace tessum {
namespace {

constexpr std::int64_t kAll = -1;
constexpr int kMostRecords = 8;

// Times within 10^15 seconds of 1970, some 30 million years: the calendar's years are 32-bit, and a
// duration that does not fit in 64 bits stops the process by design.
Date takeDate(FuzzInput& input) {
  const double seconds = input.takeDouble();
  return {std::isfinite(seconds) ? std::fmod(seconds, 1e15) : 0};
}

std::optional<Date> takeOptionalDate(FuzzInput& input) {
  if (!input.takeBool()) return std::nullopt;
  return takeDate(input);
}

std::optional<std::string> takeOptionalText(FuzzInput& input) {
  if (!input.takeBool()) return std::nullopt;
  return input.takeText();
}

void checkReport(const std::string& report, std::string_view header, std::size_t records) {
  TESSUM_CHECK(validUtf8(report) == report, "a report that is not UTF-8");
  TESSUM_CHECK(!report.ends_with('\n'), "a report with a line feed at its end");
  if (records == 0) return;
  TESSUM_CHECK(report.starts_with(std::string(header) + " (" + std::to_string(records)), report);
  std::size_t bullets = 0;
  for (auto at = report.find("\n\u2022 "); at != std::string::npos;
       at = report.find("\n\u2022 ", at + 1)) {
    ++bullets;
  }
  TESSUM_CHECK(bullets >= records, "a report without all its records");
}

}  // namespace
}  // namespace tessum

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tessum;

  FuzzInput input(data, size);
  const FakeClock clock(takeDate(input));
  const SystemCalendar calendar;
  Database database(":memory:", calendar);
  std::size_t activities = 0;
  std::optional<Date> day;
  for (; activities < kMostRecords && input.takeBool(); ++activities) {
    const Activity activity{.id = {},
                            .appName = input.takeText(),
                            .bundleID = takeOptionalText(input),
                            .title = takeOptionalText(input),
                            .startTime = takeDate(input),
                            .endTime = takeOptionalDate(input)};
    database.insert(activity);
    day = activity.startTime;
  }
  std::size_t annotations = 0;
  for (; annotations < kMostRecords && !input.isEmpty(); ++annotations) {
    const Annotation annotation{.id = {},
                                .text = input.takeText(),
                                .startedAt = takeDate(input),
                                .endedAt = takeOptionalDate(input)};
    database.insertAnnotation(annotation);
    if (!day) day = annotation.startedAt;
  }

  const auto found = database.searchActivities("", kAll);
  TESSUM_CHECK(found.size() == activities, "a search for everything that misses something");
  checkReport(formatActivities(found), "Activities", found.size());
  if (!day) return 0;
  const auto ofDay = database.fetchActivities(*day, kAll);
  checkReport(formatActivities(ofDay), "Activities", ofDay.size());
  const auto usage = database.appUsage(*day);
  checkReport(formatUsage(usage), "App usage summary", usage.size());
  const auto notes = database.fetchAnnotations(*day, kAll);
  checkReport(formatAnnotations(notes, clock), "Annotations", notes.size());
  if (activities > 0) TESSUM_CHECK(!ofDay.empty() && !usage.empty(), "a day misses its session");
  return 0;
}
