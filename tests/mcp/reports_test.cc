#include "core/mcp/reports.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/environment.h"
#include "tests/support/fakes/fake_clock.h"

namespace tessum {
namespace {

constexpr Date kStart{1741079700};  // 2025-03-04 09:15:00 UTC

Activity session(const char* app, std::optional<std::string> title, std::optional<double> seconds) {
  return {.id = 1,
          .appName = app,
          .bundleID = "org.app",
          .title = std::move(title),
          .startTime = kStart,
          .endTime = seconds ? std::optional(movedBy(kStart, *seconds)) : std::nullopt};
}

std::string report(std::vector<Activity> activities) {
  return formatActivities(activities);
}

TEST(FormatActivities, SaysWhenThereAreNone) {
  EXPECT_EQ(report({}), "No activities found.");
}

TEST(FormatActivities, KeepsThePluralForOne) {
  EXPECT_EQ(report({session("Safari", "Pull request 42", 1930)}),
            "Activities (1 sessions):\n"
            "• Safari – Pull request 42  [2025-03-04T09:15:00 → 2025-03-04T09:47:10]  (32m 10s)");
}

TEST(FormatActivities, PrintsAnOpenSessionAsOngoing) {
  EXPECT_EQ(report({session("Mail", {}, {})}),
            "Activities (1 sessions):\n• Mail  [2025-03-04T09:15:00 → ongoing]  (ongoing)");
}

TEST(FormatActivities, TellsAnAbsentTitleFromAnEmptyOne) {
  EXPECT_EQ(report({session("Terminal", {}, 1), session("Terminal", "", 1)}),
            "Activities (2 sessions):\n"
            "• Terminal  [2025-03-04T09:15:00 → 2025-03-04T09:15:01]  (1s)\n"
            "• Terminal –   [2025-03-04T09:15:00 → 2025-03-04T09:15:01]  (1s)");
}

TEST(FormatActivities, KeepsTheOrderItIsGiven) {
  EXPECT_EQ(report({session("b", {}, 1), session("a", {}, 1), session("c", {}, 1)}),
            "Activities (3 sessions):\n"
            "• b  [2025-03-04T09:15:00 → 2025-03-04T09:15:01]  (1s)\n"
            "• a  [2025-03-04T09:15:00 → 2025-03-04T09:15:01]  (1s)\n"
            "• c  [2025-03-04T09:15:00 → 2025-03-04T09:15:01]  (1s)");
}

TEST(FormatActivities, StampsAreUtcInEveryZone) {
  const ScopedVariable zone("TZ", "Asia/Tokyo");
  // 23:30 on 5 March in Tokyo.
  Activity late = session("Night", {}, {});
  late.startTime = {1741185000};
  EXPECT_EQ(report({late}),
            "Activities (1 sessions):\n• Night  [2025-03-05T14:30:00 → ongoing]  (ongoing)");
}

TEST(FormatActivities, DropsFractionsOfSeconds) {
  Activity precise = session("Editor", {}, 0.9);
  precise.startTime = movedBy(kStart, 0.95);
  EXPECT_EQ(report({precise}),
            "Activities (1 sessions):\n"
            "• Editor  [2025-03-04T09:15:00 → 2025-03-04T09:15:00]  (0s)");
}

TEST(FormatAnnotations, PrintsEachWithItsSpan) {
  const FakeClock clock(movedBy(kStart, 3725));
  EXPECT_EQ(formatAnnotations({}, clock), "No annotations found.");
  const std::vector<Annotation> annotations{
      {.id = 2, .text = "Fixing bug", .startedAt = kStart, .endedAt = {}},
      {.id = 1, .text = "Review", .startedAt = movedBy(kStart, -60), .endedAt = kStart}};
  EXPECT_EQ(formatAnnotations(annotations, clock),
            "Annotations (2):\n"
            "• Fixing bug  [2025-03-04T09:15:00 → ongoing]  (1h 2m)\n"
            "• Review  [2025-03-04T09:14:00 → 2025-03-04T09:15:00]  (1m 0s)");
}

TEST(FormatUsage, PrintsEachApplication) {
  EXPECT_EQ(formatUsage({}), "No usage data found.");
  const std::vector<AppUsageSummary> summaries{{.appName = "Editor",
                                                .bundleID = "x",
                                                .totalDuration = 3599.9,
                                                .sessionCount = 1,
                                                .latestTitle = "t"},
                                               {.appName = "Mail",
                                                .bundleID = {},
                                                .totalDuration = 90061,
                                                .sessionCount = 1200,
                                                .latestTitle = {}}};
  EXPECT_EQ(formatUsage(summaries),
            "App usage summary (2 apps):\n"
            "• Editor: 59m across 1 session(s)\n"
            "• Mail: 25h 1m across 1200 session(s)");
}

}  // namespace
}  // namespace tessum
