#include "core/store/records.h"

#include <gtest/gtest.h>

#include <limits>

#include "core/json/reader.h"
#include "core/json/writer.h"
#include "tests/support/fakes/fake_clock.h"

namespace tessum {
namespace {

constexpr Date kTen{1741082400};  // 2025-03-04 10:00:00 UTC

Activity lasting(double seconds) {
  return {.id = {},
          .appName = "Editor",
          .bundleID = {},
          .title = {},
          .startTime = kTen,
          .endTime = movedBy(kTen, seconds)};
}

struct DurationCase {
  double seconds;
  const char* longForm;
  const char* shortForm;
};

class DurationText : public testing::TestWithParam<DurationCase> {};

TEST_P(DurationText, HasALongAndAShortForm) {
  const auto& [seconds, longForm, shortForm] = GetParam();
  EXPECT_EQ(lasting(seconds).formattedDuration(), longForm);
  const Annotation annotation{
      .id = {}, .text = "x", .startedAt = kTen, .endedAt = movedBy(kTen, seconds)};
  EXPECT_EQ(annotation.formattedDuration(FakeClock()), longForm);
  const AppUsageSummary summary{.appName = "Editor",
                                .bundleID = {},
                                .totalDuration = seconds,
                                .sessionCount = 1,
                                .latestTitle = {}};
  EXPECT_EQ(summary.formattedDuration(), shortForm);
}

INSTANTIATE_TEST_SUITE_P(
    Seconds, DurationText,
    testing::Values(DurationCase{0, "0s", "0s"}, DurationCase{42, "42s", "42s"},
                    DurationCase{-3, "-3s", "-3s"}, DurationCase{-0.9, "0s", "0s"},
                    DurationCase{-5000, "-5000s", "-5000s"}, DurationCase{59.9, "59s", "59s"},
                    DurationCase{60, "1m 0s", "1m"}, DurationCase{303, "5m 3s", "5m"},
                    DurationCase{3599, "59m 59s", "59m"}, DurationCase{3599.75, "59m 59s", "59m"},
                    DurationCase{3600, "1h 0m", "1h 0m"}, DurationCase{7500, "2h 5m", "2h 5m"},
                    DurationCase{7559, "2h 5m", "2h 5m"}, DurationCase{90061, "25h 1m", "25h 1m"},
                    DurationCase{97200, "27h 0m", "27h 0m"}));

TEST(DurationText, GoesUpToTheLastIntegers) {
  EXPECT_EQ(durationText(-9223372036854775808.0, DurationForm::longForm), "-9223372036854775808s");
  EXPECT_EQ(durationText(9223372036854774784.0, DurationForm::shortForm), "2562047788015215h 13m");
}

TEST(DurationTextDeathTest, StopsTheProcessForWhatIsNoDuration) {
  using Limits = std::numeric_limits<double>;
  for (const double seconds : {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(),
                               9223372036854775808.0, -1e19}) {
    EXPECT_DEATH(static_cast<void>(durationText(seconds, DurationForm::longForm)),
                 "a duration that cannot be written");
  }
}

TEST(Activity, IsOngoingWithoutADurationWhileOpen) {
  Activity open = lasting(0);
  open.endTime.reset();
  EXPECT_EQ(open.formattedDuration(), "ongoing");
  EXPECT_FALSE(open.duration().has_value());
}

TEST(Activity, MayEndBeforeItStarted) {
  EXPECT_EQ(lasting(-5).duration(), -5.0);
  EXPECT_EQ(lasting(-5).formattedDuration(), "-5s");
}

TEST(Annotation, CountsUpToNowWhileCurrent) {
  FakeClock clock(movedBy(kTen, 61));
  const Annotation current{.id = 1, .text = "x", .startedAt = kTen, .endedAt = {}};
  EXPECT_FALSE(current.duration().has_value());
  EXPECT_EQ(current.formattedDuration(clock), "1m 1s");
  clock.advance(1);
  EXPECT_EQ(current.formattedDuration(clock), "1m 2s");
}

TEST(Records, AreEqualWhenEveryFieldIs) {
  const Activity activity = lasting(5);
  EXPECT_EQ(activity, lasting(5));
  Activity other = activity;
  other.title = "";
  EXPECT_NE(activity, other);
  other = activity;
  other.id = 1;
  EXPECT_NE(activity, other);
}

TEST(ActivityJson, LeavesAbsentMembersOut) {
  Activity activity = lasting(0);
  activity.endTime.reset();
  EXPECT_EQ(json::compact(toJson(activity)),
            R"({"appName":"Editor","startTime":"2025-03-04T10:00:00Z"})");
  activity.id = 7;
  EXPECT_EQ(json::compact(toJson(activity)),
            R"({"appName":"Editor","id":7,"startTime":"2025-03-04T10:00:00Z"})");
}

TEST(ActivityJson, ReadsBackWhatItWrote) {
  const Activity activity{.id = 7,
                          .appName = "Editor",
                          .bundleID = "org.editor",
                          .title = "",
                          .startTime = kTen,
                          .endTime = movedBy(kTen, 60)};
  EXPECT_EQ(activityFromJson(toJson(activity)), activity);
  const Activity least{
      .id = {}, .appName = "", .bundleID = {}, .title = {}, .startTime = kTen, .endTime = {}};
  EXPECT_EQ(activityFromJson(toJson(least)), least);
}

TEST(AnnotationJson, ReadsBackWhatItWrote) {
  const Annotation annotation{
      .id = 7, .text = "Review", .startedAt = kTen, .endedAt = movedBy(kTen, 60)};
  EXPECT_EQ(json::compact(toJson(annotation)),
            R"({"endedAt":"2025-03-04T10:01:00Z","id":7,"startedAt":"2025-03-04T10:00:00Z",)"
            R"("text":"Review"})");
  EXPECT_EQ(annotationFromJson(toJson(annotation)), annotation);
}

TEST(AppUsageSummaryJson, ReadsBackWhatItWrote) {
  const AppUsageSummary summary{.appName = "Editor",
                                .bundleID = {},
                                .totalDuration = 3599.9,
                                .sessionCount = 3,
                                .latestTitle = "a/b"};
  EXPECT_EQ(json::compact(toJson(summary)),
            R"({"appName":"Editor","latestTitle":"a\/b","sessionCount":3,"totalDuration":3599.9})");
  EXPECT_EQ(appUsageSummaryFromJson(toJson(summary)), summary);
}

TEST(RecordsFromJson, TakeNullForAbsentAndIgnoreUnknownKeys) {
  const Activity activity = activityFromJson(
      json::parse(R"({"appName":"A","startTime":"2025-03-04T10:00:00Z","title":null,"more":[1]})"));
  EXPECT_FALSE(activity.title.has_value());
  EXPECT_FALSE(activity.id.has_value());
}

TEST(RecordsFromJson, RefuseWhatIsMissingOrOfAnotherKind) {
  for (const char* text :
       {R"({"startTime":"2025-03-04T10:00:00Z"})", R"({"appName":"A"})",
        R"({"appName":null,"startTime":"2025-03-04T10:00:00Z"})",
        R"({"appName":"A","startTime":1741082400})", R"({"appName":"A","startTime":"today"})",
        R"({"appName":"A","startTime":"2025-03-04T10:00:00Z","id":1.5})", "[]"}) {
    EXPECT_THROW(static_cast<void>(activityFromJson(json::parse(text))), json::DecodingError)
        << text;
  }
  EXPECT_THROW(static_cast<void>(annotationFromJson(json::parse(R"({"text":"x"})"))),
               json::DecodingError);
  EXPECT_THROW(static_cast<void>(appUsageSummaryFromJson(
                   json::parse(R"({"appName":"x","totalDuration":"1","sessionCount":1})"))),
               json::DecodingError);
}

}  // namespace
}  // namespace tessum
