// Usage of any period by any grouping, as a person sees it.

#include <gtest/gtest.h>

#include "tests/desktop/user.h"

namespace tessum {
namespace {

// Two weeks with a note, and rules for two categories.
class UsageCommand : public testing::Test {
 protected:
  UsageCommand() {
    user.writeSettings(
        "[[category]]\nname = 'Code'\napp = 'Editor|Terminal'\n"
        "[[category]]\nname = 'Mail'\ntitle = '(?i)inbox'\n");
    user.addSession("Editor", "main.cc", "2025-02-26T09:00:00Z", "2025-02-26T10:00:00Z");
    user.addSession("Editor", "main.cc", "2025-03-03T09:00:00Z", "2025-03-03T11:00:00Z");
    user.addSession("Browser", "Inbox (3)", "2025-03-03T11:00:00Z", "2025-03-03T11:30:00Z");
    user.addSession("Terminal", nullptr, "2025-03-03T23:30:00Z", "2025-03-04T00:30:00Z");
    user.addSession("Browser", "News", "2025-03-05T08:30:00Z", "2025-03-05T09:30:00Z");
    Database database = user.database();
    database.insertAnnotation(
        {.id = {}, .text = "Review", .startedAt = at("2025-03-03T10:00:00Z"), .endedAt = {}});
    database.endCurrentAnnotation(at("2025-03-03T11:15:00Z"));
  }

  // The report of a grouping of the first day or of the whole week, from its groups on.
  std::string groups(const std::vector<std::string>& arguments) {
    std::vector<std::string> all{"usage"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    const Outcome outcome = user.run(all);
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    const bool isOfDays = outcome.output.find(" before (") != std::string::npos;
    const auto before = outcome.output.find(isOfDays ? ").\n\n" : "\n\n");
    return outcome.output.substr(before + (isOfDays ? 4 : 2));
  }

  User user;
};

TEST_F(UsageCommand, OfSeveralDaysHasALineForEachTheirAverageAndTheChange) {
  EXPECT_EQ(user.run({"usage", "2025-W10"}).output,
            "Monday, 3 March 2025 to Sunday, 9 March 2025  4h 30m in 4 sessions\n"
            "\n"
            "  Mon  2025-03-03  3h 0m  ████████████████████████\n"
            "  Tue  2025-03-04    30m  ████\n"
            "  Wed  2025-03-05  1h 0m  ████████\n"
            "  Thu  2025-03-06      -\n"
            "  Fri  2025-03-07      -\n"
            "  Sat  2025-03-08      -\n"
            "  Sun  2025-03-09      -\n"
            "\n"
            "3 days with records, 1h 30m on average.\n"
            "3h 30m more than in the 7 days before (1h 0m).\n"
            "\n"
            "  Editor     2h 0m  44%   1 session  ████████████████████████\n"
            "  Browser   1h 30m  33%  2 sessions  ██████████████████\n"
            "  Terminal   1h 0m  22%   1 session  ████████████\n");
}

TEST_F(UsageCommand, IsByCategoryWithTheTitlesThatHaveNone) {
  EXPECT_EQ(groups({"2025-W10", "--by", "category"}),
            "  Code           3h 0m  67%  2 sessions  ████████████████████████\n"
            "  Uncategorised  1h 0m  22%   1 session  ████████\n"
            "  Mail             30m  11%   1 session  ████\n"
            "\n"
            "Uncategorised\n"
            "  1h 0m  1 session  News\n");
}

TEST_F(UsageCommand, IsByNoteCutWhereNotesBeginAndEnd) {
  EXPECT_EQ(groups({"2025-03-03", "--by", "note"}),
            "  Without a note  1h 45m  58%  3 sessions  ████████████████████████\n"
            "  Review          1h 15m  42%  2 sessions  █████████████████▏\n");
}

TEST_F(UsageCommand, IsByTwoGroupings) {
  EXPECT_EQ(groups({"2025-W10", "--by", "day,category"}),
            "  2025-03-03        3h 0m  67%  3 sessions  ████████████████████████\n"
            "    Code           2h 30m  56%  2 sessions  ████████████████████\n"
            "    Mail              30m  11%   1 session  ████\n"
            "  2025-03-04          30m  11%   1 session  ████\n"
            "    Code              30m  11%   1 session  ████\n"
            "  2025-03-05        1h 0m  22%   1 session  ████████\n"
            "    Uncategorised   1h 0m  22%   1 session  ████████\n");
}

TEST_F(UsageCommand, IsByHourOfTheWall) {
  user.set("TZ", "Asia/Kolkata");  // five and a half hours ahead: 09:00 is 14:30
  EXPECT_EQ(groups({"2025-03-03", "--by", "hour"}),
            "  14:00    30m  20%   1 session  ████████████\n"
            "  15:00  1h 0m  40%   1 session  ████████████████████████\n"
            "  16:00  1h 0m  40%  2 sessions  ████████████████████████\n");
}

TEST_F(UsageCommand, BeginsWithTheHourInWhichDaysBegin) {
  user.writeSettings("[reports]\nday-starts = '04:30'\n");
  user.set("TZ", "Pacific/Auckland");  // thirteen hours ahead
  EXPECT_EQ(groups({"2025-03-03", "--by", "hour"}),
            "  22:00  1h 0m  40%  1 session  ████████████████████████\n"
            "  23:00  1h 0m  40%  1 session  ████████████████████████\n"
            "  00:00    30m  20%  1 session  ████████████\n");
}

TEST_F(UsageCommand, ShowsTheLargestGroupsAndTheOthersInOneLine) {
  EXPECT_EQ(groups({"2025-W10", "--by", "title", "--top", "2"}),
            "  main.cc           2h 0m  44%   1 session  ████████████████████████\n"
            "  Without a title   1h 0m  22%   1 session  ████████████\n"
            "  2 others         1h 30m  33%  2 sessions  ██████████████████\n");
}

TEST_F(UsageCommand, ShowsTheLargestDaysInTheOrderOfTime) {
  EXPECT_EQ(groups({"2025-W10", "--by", "day", "--top", "2"}),
            "  2025-03-03  3h 0m  67%  3 sessions  ████████████████████████\n"
            "  2025-03-05  1h 0m  22%   1 session  ████████\n"
            "  1 other       30m  11%   1 session  ████\n");
  EXPECT_EQ(user.run({"usage", "2025-W10", "--by", "day", "--top", "2", "--csv"}).output,
            "day,seconds,sessions\r\n2025-03-03,10800,3\r\n2025-03-05,3600,1\r\n");
}

TEST_F(UsageCommand, IsOfWhatPassesTheFilters) {
  const auto heading = [&](const std::vector<std::string>& arguments) {
    std::vector<std::string> all{"usage", "2025-03-03..2025-03-09"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    const std::string line = linesOf(user.run(all).output).front();
    const auto end = line.find("2025  ");
    return end == std::string::npos ? "" : line.substr(line.rfind("2025  ") + 6);
  };
  EXPECT_EQ(heading({}), "4h 30m in 4 sessions");
  EXPECT_EQ(heading({"--app", "Browser"}), "1h 30m in 2 sessions");
  EXPECT_EQ(heading({"--app", "browser"}), "");
  EXPECT_EQ(heading({"--title", "INBOX"}), "30m in 1 session");
  EXPECT_EQ(heading({"--category", "Code"}), "3h 0m in 2 sessions");
  EXPECT_EQ(heading({"--category", "Uncategorised"}), "1h 0m in 1 session");
  EXPECT_EQ(heading({"--category", "Code", "--title", "main"}), "2h 0m in 1 session");
  const Outcome unknown = user.run({"usage", "--category", "code"});
  EXPECT_EQ(unknown.status, 2);
  EXPECT_TRUE(contains(unknown.errors, "there are Code, Mail, Uncategorised"));
  EXPECT_FALSE(contains(user.run({"day", "2025-03-03", "--app", "Editor"}).output, "Inbox"));
}

TEST_F(UsageCommand, RefusesAnUnknownGrouping) {
  for (const char* by : {"", "apps", "app,", ",app", "app,app", "app,day,hour", "app day"}) {
    const Outcome outcome = user.run({"usage", "--by", by});
    EXPECT_EQ(outcome.status, 2) << by;
    EXPECT_TRUE(contains(outcome.errors, "app, title, category, note, day, weekday, hour"));
  }
  EXPECT_EQ(user.run({"usage", "--by", "Day,APP"}).status, 0);
}

TEST_F(UsageCommand, OfDaysWithoutRecordsSaysSo) {
  EXPECT_EQ(user.run({"usage", "2024"}).output,
            "Monday, 1 January 2024 to Tuesday, 31 December 2024\n\n"
            "Nothing was recorded on these days.\n");
  EXPECT_EQ(user.run({"usage", "2025-03-03", "--app", "Music"}).output,
            "Monday, 3 March 2025\n\nNo such session was recorded on this day.\n");
  EXPECT_EQ(user.run({"usage", "9999"}).status, 0);
  EXPECT_EQ(user.run({"usage", "0001..9999"}).status, 0);
}

TEST_F(UsageCommand, CategoryTryShowsWhatEachRuleTook) {
  EXPECT_EQ(user.run({"category", "try", "2025-W10"}).output,
            "Monday, 3 March 2025 to Sunday, 9 March 2025\n"
            "\n"
            "  3h 0m  2 sessions  Code, line 1: app 'Editor|Terminal'\n"
            "  2h 0m   1 session    main.cc\n"
            "  1h 0m   1 session    Without a title\n"
            "    30m   1 session  Mail, line 4: title '(?i)inbox'\n"
            "    30m   1 session    Inbox (3)\n"
            "  1h 0m   1 session  Uncategorised\n"
            "  1h 0m   1 session    News\n");
  EXPECT_EQ(user.run({"category"}).status, 2);
}

}  // namespace
}  // namespace tessum
