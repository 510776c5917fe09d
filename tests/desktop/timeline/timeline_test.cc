// The timeline of any period: the command, and what the page is made of.

#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "desktop/timeline/colours.h"
#include "desktop/timeline/page_parts.h"
#include "desktop/timeline/spans.h"
#include "tests/desktop/user.h"
#include "tests/support/sql.h"

namespace tessum {
namespace {

class TimelineCommand : public testing::Test {
 protected:
  TimelineCommand() {
    user.addSession("Editor", "main.cc", "2025-03-03T09:00:00Z", "2025-03-03T11:00:00Z");
    user.addSession("Music", nullptr, "2025-03-04T22:00:00Z", "2025-03-05T02:00:00Z");
  }

  User user;
};

TEST_F(TimelineCommand, WritesToStandardOutput) {
  const Outcome outcome = user.run({"timeline", "2025-03-03..2025-03-05", "-o", "-"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_TRUE(outcome.output.starts_with("<!DOCTYPE html>"));
  EXPECT_TRUE(outcome.output.ends_with("</html>\n"));
  EXPECT_FALSE(std::filesystem::exists(user.file("-")));
  EXPECT_FALSE(std::filesystem::exists(user.dataFolder() + "/timeline.html"));
}

TEST_F(TimelineCommand, IsForTheUserAloneAlsoInAFileThatOthersMightRead) {
  const std::string path = user.file("page.html");
  writeFile(path, "");
  std::filesystem::create_symlink(path, user.file("link.html"));
  for (const std::string& output : {path, user.file("link.html")}) {
    std::filesystem::permissions(path, std::filesystem::perms(0644));
    const Outcome outcome = user.run({"timeline", "2025-03-04", "-o", output});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(0600)) << output;
  }
}

TEST_F(TimelineCommand, ShowsUpToAYearOfRecords) {
  user.addSession("Editor", nullptr, "2023-03-03T09:00:00Z", "2023-03-03T11:00:00Z");
  const Outcome outcome = user.run({"timeline", "2023-01-01..2025-12-31", "-o", "-"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_TRUE(contains(outcome.errors, "the timeline shows up to a year"));
  EXPECT_EQ(user.run({"timeline", "2024-12-31..2025-12-31", "-o", "-"}).status, 0);
}

TEST_F(TimelineCommand, LeavesOutDaysBeforeTheFirstRecord) {
  const std::string page = user.run({"timeline", "2000-01-01..2025-03-05", "-o", "-"}).output;
  EXPECT_TRUE(contains(page, "\"days\":[[\"2025-03-03\",0]"));
}

TEST_F(TimelineCommand, DrawsASessionOverMidnightOnBothDays) {
  const std::string page = user.run({"timeline", "2025-03-04..2025-03-05", "-o", "-"}).output;
  EXPECT_TRUE(contains(page, ">4h 0m in 1 session<"));
  std::size_t spans = 0;
  for (std::size_t i = 0; (i = page.find("<rect class=\"session", i)) != std::string::npos; ++i) {
    ++spans;
  }
  EXPECT_EQ(spans, 2U);
}

TEST_F(TimelineCommand, AnEmptyPeriodSaysWhatToDo) {
  const std::string page = user.run({"timeline", "2024-02", "-o", "-"}).output;
  EXPECT_TRUE(contains(page, "Nothing was recorded on these days."));
  EXPECT_TRUE(contains(page, "The history begins on 2025-03-03 and reaches to 2025-03-04."));
  EXPECT_TRUE(contains(page, "Tessum timeline 2025-03-04"));
  EXPECT_FALSE(contains(page, "<script"));
}

TEST(TimelineOfAnEmptyHistory, SaysHowToRecord) {
  User user;
  { const Database creator = user.database(); }
  EXPECT_TRUE(contains(user.run({"timeline", "-o", "-"}).output, "<code>Tessum record</code>"));
}

TEST_F(TimelineCommand, CategoriesHaveTheColoursOfTheSettings) {
  user.writeSettings(
      "[[category]]\nname = \"Work\"\napp = 'Editor'\n"
      "[[category]]\nname = \"Work\"\napp = 'Terminal'\ncolor = \"#3A7BD5\"\n");
  const std::string page = user.run({"timeline", "2025-03-03..2025-03-05", "-o", "-"}).output;
  EXPECT_TRUE(contains(page, "[\"Work\"," + std::to_string(colourOf("Work")) + ",\"#3a7bd5\"]"));
}

TEST_F(TimelineCommand, ShowsOnlyTheSessionsThatAreAskedFor) {
  user.writeSettings("[[category]]\nname = \"Work\"\napp = 'Editor'\n");
  user.addSession("Editor", "Ümlaut <b>", "2025-03-03T12:00:00Z", "2025-03-03T12:30:00Z");
  const auto page = [&](const std::vector<std::string>& filter) {
    std::vector<std::string> arguments{"timeline", "2025-03-03..2025-03-05", "-o", "-"};
    arguments.insert(arguments.end(), filter.begin(), filter.end());
    const Outcome outcome = user.run(arguments);
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    return outcome.output;
  };
  const std::string all = page({});
  EXPECT_TRUE(contains(all, ">6h 30m in 3 sessions<"));
  EXPECT_FALSE(contains(all, "Only sessions"));

  const std::string app = page({"--app", "Music"});
  EXPECT_TRUE(contains(app, ">Only sessions of Music; 2 others are left out.<"));
  EXPECT_TRUE(contains(app, ">4h 0m in 1 session<"));
  EXPECT_FALSE(contains(app, "Editor"));

  const std::string title = page({"--title", "üMLAUT <B>"});
  EXPECT_TRUE(contains(title, ">Only sessions with &quot;üMLAUT &lt;B&gt;&quot; in the title; 2 "));
  EXPECT_TRUE(contains(title, ">30m in 1 session<"));

  const std::string category = page({"--category", "Work"});
  EXPECT_TRUE(contains(category, ">Only sessions of the category Work; 1 other is left out.<"));
  EXPECT_TRUE(contains(category, ">2h 30m in 2 sessions<"));
  EXPECT_TRUE(contains(page({"--category", "Uncategorised"}), ">4h 0m in 1 session<"));

  EXPECT_TRUE(contains(page({"--app", "Editor", "--title", "main", "--category", "Work"}),
                       ">Only sessions of Editor of the category Work with &quot;main&quot; in "
                       "the title; 2 others are left out.<"));
}

TEST_F(TimelineCommand, WithoutAnySuchSessionSaysWhatToDo) {
  const std::string page = user.run({"timeline", "2025-03-03", "--app", "Music", "-o", "-"}).output;
  EXPECT_TRUE(contains(page, "No such session was recorded on this day."));
  EXPECT_TRUE(contains(page, "Without <code>--app</code>"));
  EXPECT_FALSE(contains(page, "<script"));
  const std::string empty = user.run({"timeline", "2024-02", "--app", "Music", "-o", "-"}).output;
  EXPECT_TRUE(contains(empty, "Nothing was recorded on these days."));
  const Outcome unknown = user.run({"timeline", "--category", "Play", "-o", "-"});
  EXPECT_EQ(unknown.status, 2);
  EXPECT_TRUE(contains(unknown.errors, "unknown category \"Play\""));
}

TEST_F(TimelineCommand, ManyLongTitlesAreCutToKeepThePageSmall) {
  // 6,000 sessions of a second each.
  Sql(user.historyPath()).run(R"(
      WITH RECURSIVE numbers(n) AS (SELECT 0 UNION ALL SELECT n + 1 FROM numbers LIMIT 6000)
      INSERT INTO activities (app_name, title, start_time, end_time)
      SELECT 'Browser', n || replace(hex(zeroblob(2000)), '0', 'x'), start + n, start + n + 1
      FROM numbers, (SELECT CAST(strftime('%s', '2025-03-04') AS REAL) AS start))");
  const std::string page = user.run({"timeline", "2025-03-04", "-o", "-"}).output;
  EXPECT_LT(page.size(), 15'000'000U);
  EXPECT_GT(page.size(), 3'000'000U);
}

////////////////////////////////////////////////////////////////////////////////////////////////
// The parts

Span span(double start, double end, std::size_t session) {
  return {.start = start, .end = end, .session = session, .longest = end - start};
}

TEST(JoinedSpans, LeavesThoseOfAPixelAndMoreAlone) {
  const std::vector<Span> spans{span(0, 2, 0), span(2, 3, 1), span(3, 9, 2)};
  EXPECT_EQ(joined(spans, 1).size(), 3U);
}

TEST(JoinedSpans, LetTheLongerStandForNeighboursBelowAPixel) {
  const std::vector<Span> spans{span(0, 0.2, 0), span(0.2, 0.7, 1), span(0.7, 1.1, 2)};
  const auto out = joined(spans, 1);
  ASSERT_EQ(out.size(), 1U);
  EXPECT_EQ(out[0].session, 1U);
  EXPECT_EQ(out[0].count, 3U);
  EXPECT_DOUBLE_EQ(out[0].end, 1.1);
}

TEST(JoinedSpans, LetAShortOneVanishInItsLongNeighbour) {
  const std::vector<Span> before{span(0, 0.2, 0), span(0.2, 5, 1)};
  ASSERT_EQ(joined(before, 1).size(), 1U);
  EXPECT_EQ(joined(before, 1)[0].session, 1U);
  const std::vector<Span> behind{span(0, 5, 0), span(5, 5.2, 1)};
  ASSERT_EQ(joined(behind, 1).size(), 1U);
  EXPECT_EQ(joined(behind, 1)[0].session, 0U);
}

TEST(JoinedSpans, KeepAShortOneThatStandsAlone) {
  const std::vector<Span> spans{span(0, 3, 0), span(6, 6.1, 1), span(9, 12, 2)};
  EXPECT_EQ(joined(spans, 1).size(), 3U);
}

TEST(JoinedSpans, AreNoMoreThanThePixelsOfManyShortOnes) {
  std::vector<Span> spans;
  for (std::size_t i = 0; i < 100'000; ++i) {
    const auto start = static_cast<double>(i) / 1000;
    spans.push_back(span(start, start + 0.001, i));
  }
  const auto out = joined(spans, 1);
  EXPECT_LE(out.size(), 100U);
  EXPECT_GE(out.size(), 90U) << "and do not all become one";
}

TEST(LanesOfNotes, KeepThoseApartThatOverlap) {
  const auto note = [](double start, std::optional<Date> end) {
    return Annotation{.id = {}, .text = "", .startedAt = {start}, .endedAt = end};
  };
  const std::vector<Annotation> notes{note(0, Date{10}),      note(2, Date{4}),
                                      note(3, Date{5}),       note(4, Date{8}),
                                      note(10, std::nullopt), note(19, std::nullopt)};
  EXPECT_EQ(lanesOf(notes, Date{20}), (std::vector<std::size_t>{0, 1, 2, 1, 0, 1}));
}

// If a colour changed with a release, people would take one application for another.
TEST(Colours, BelongToNamesForGood) {
  EXPECT_EQ(colourOf("Firefox"), 5U);
  EXPECT_EQ(colourOf("Terminal"), 4U);
  EXPECT_EQ(colourOf(""), 9U);
  std::set<std::size_t> used;
  for (char c = 'a'; c <= 'z'; ++c) used.insert(colourOf(std::string(3, c)));
  EXPECT_GE(used.size(), 10U) << "names are spread over the colours";
}

TEST(PageParts, CannotEndTheirElement) {
  EXPECT_EQ(kPageScript.text.find("</"), std::string_view::npos);
  EXPECT_EQ(kPageScript.text.find("<!--"), std::string_view::npos);
  EXPECT_EQ(kPageStyle.text.find('<'), std::string_view::npos);
}

}  // namespace
}  // namespace tessum
