// Searches, as a person runs them.

#include <gtest/gtest.h>

#include "tests/desktop/user.h"

namespace tessum {
namespace {

class Search : public testing::Test {
 protected:
  Search() {
    user.writeSettings("[[category]]\nname = 'Web'\napp = 'Browser'\n");
    user.addSession("Browser", "Pull request 42", "2025-03-04T10:00:00Z", "2025-03-04T10:30:00Z");
    user.addSession("Browser", "A request to pull", "2025-03-04T11:00:00Z", "2025-03-04T11:10:00Z");
    user.addSession("Editor", "Pull request 42", "2025-03-05T09:00:00Z", "2025-03-05T09:05:00Z");
    user.addSession("Browser", "Pull request 42", "2025-03-05T23:50:00Z", "2025-03-06T00:20:00Z");
    user.addSession("Shop", "100% \u00c4pfel \u039f\u03b4\u03cc\u03c2", "2025-03-06T10:00:00Z",
                    "2025-03-06T10:30:00Z");
  }

  // The first line of what is found.
  std::string found(const std::vector<std::string>& words) {
    std::vector<std::string> arguments{"search"};
    arguments.insert(arguments.end(), words.begin(), words.end());
    const Outcome outcome = user.run(arguments);
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    return linesOf(outcome.output).front();
  }

  User user;
};

TEST_F(Search, AddsUpByApplicationAndTitleTheNewestFirst) {
  EXPECT_EQ(user.run({"search", "pull"}).output,
            "Found  1h 15m in 4 sessions\n"
            "\n"
            "  2025-03-05  23:50  1h 0m  2 sessions  Browser  Pull request 42\n"
            "  2025-03-05  09:00     5m   1 session  Editor   Pull request 42\n"
            "  2025-03-04  11:00    10m   1 session  Browser  A request to pull\n");
  EXPECT_EQ(user.run({"search", "pull", "--limit", "1"}).output,
            "Found  1h 15m in 4 sessions\n"
            "\n"
            "  2025-03-05  23:50  1h 0m  2 sessions  Browser  Pull request 42\n"
            "\n"
            "2 older ones are not shown; --limit N shows more.\n");
  EXPECT_EQ(user.run({"search", "no such thing"}).output, "Nothing was found.\n");
}

TEST_F(Search, IsForAllWordsInAnyOrder) {
  EXPECT_EQ(found({"request", "PULL"}), "Found  1h 15m in 4 sessions");
  EXPECT_EQ(found({"42", "pull", "edit"}), "Found  5m in 1 session");
  EXPECT_EQ(found({"42", "pull", "shop"}), "Nothing was found.");
  EXPECT_EQ(found({"pull request"}), "Found  1h 5m in 3 sessions");
  EXPECT_EQ(found({"\"pull request\"", "edit"}), "Found  5m in 1 session");
}

TEST_F(Search, TakesEveryCharacterForItselfAndEveryLetterInBothCases) {
  EXPECT_EQ(found({"\u00e4PFEL"}), "Found  30m in 1 session");
  EXPECT_EQ(found({"\u03bf\u0394\u038c\u03a3"}), "Found  30m in 1 session");
  user.addSession("Maps", "Hauptstra\u00dfe \\ss+", "2025-03-07T10:00:00Z", "2025-03-07T10:20:00Z");
  for (const char* word : {"HAUPTSTRASSE", "hauptstrasse", "hauptstra\u00dfe", "HAUPTSTRA\u1e9eE",
                           "\\SS", "\\\u00df+"}) {
    EXPECT_EQ(found({word}), "Found  20m in 1 session") << word;
  }
  EXPECT_EQ(found({"%"}), "Found  30m in 1 session");
  EXPECT_EQ(found({"_"}), "Nothing was found.");
  EXPECT_EQ(found({"Pu.l"}), "Nothing was found.");
  EXPECT_TRUE(contains(user.run({"search", "_\u00c4pf%l", "--plain"}).output, "100% \u00c4pfel"))
      << "--plain follows the assistants' rules";
}

TEST_F(Search, IsOfAPeriodAndOfWhatPassesTheFilters) {
  EXPECT_EQ(found({"pull", "--in", "2025-03-05"}), "Found  15m in 2 sessions");
  EXPECT_EQ(found({"pull", "--in", "2025-03-06"}), "Found  20m in 1 session");
  EXPECT_EQ(found({"pull", "--app", "Editor"}), "Found  5m in 1 session");
  EXPECT_EQ(found({"pull", "--title", "A REQUEST"}), "Found  10m in 1 session");
  EXPECT_EQ(found({"pull", "--category", "Web"}), "Found  1h 10m in 3 sessions");
  EXPECT_EQ(user.run({"search", "pull", "--plain", "--app", "Editor"}).status, 2);
  EXPECT_EQ(user.run({"search", "pull", "--in", "never"}).status, 2);
  EXPECT_EQ(user.run({"search"}).status, 2);
}

}  // namespace
}  // namespace tessum
