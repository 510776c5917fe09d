// Tables on paper of any width, and the commands' tables on terminals.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/base/text.h"
#include "desktop/text/text_layout.h"
#include "tests/desktop/user.h"

namespace tessum {
namespace {

using enum Table::Alignment;
using enum Table::Fit;

Table sessionTable() {
  Table table({left, right, left, left});
  table.addRow({{"09:00"}, {"42m 3s"}, {"Editor"}, {"Chapter one of the long report"}});
  table.addRow({{"10:30"}, {"1h"}, {"Spreadsheet"}, {"Budget"}});
  return table;
}

TEST(Tables, AreAsWideAsTheirCellsWherePaperHasNoEnd) {
  EXPECT_EQ(sessionTable().text({}),
            "  09:00  42m 3s  Editor       Chapter one of the long report\n"
            "  10:30      1h  Spreadsheet  Budget\n");
}

TEST(Tables, CutTheWidestTextsFirst) {
  EXPECT_EQ(sessionTable().text({.columns = 47}),
            "  09:00  42m 3s  Editor       Chapter one of t…\n"
            "  10:30      1h  Spreadsheet  Budget\n");
  EXPECT_EQ(sessionTable().text({.columns = 35}),
            "  09:00  42m 3s  Editor    Chapter…\n"
            "  10:30      1h  Spreads…  Budget\n");
}

TEST(Tables, ContinueInALineBelowRatherThanCutNumbersOrShowNothing) {
  EXPECT_EQ(sessionTable().text({.columns = 26}),
            "  09:00  42m 3s  Editor\n"
            "    Chapter one of the lo…\n"
            "  10:30      1h  Spreadsh…\n"
            "    Budget\n");
}

TEST(Tables, LeaveOutBarsThatHaveNoRoom) {
  Table table({left, right, left});
  table.addRow({{"Editor"}, {"1h"}, Table::barCell(0.5, Tone::accent)});
  EXPECT_EQ(table.text({}), "  Editor  1h  ████████████\n");
  EXPECT_EQ(table.text({.columns = 22}), "  Editor  1h  ████\n");
  EXPECT_EQ(table.text({.columns = 14}), "  Editor  1h\n");
}

TEST(Tables, GiveALineToWhatIsNeverCut) {
  Table table({left, left, left});
  table.addRow({{"Editor"}, {"yes"}, {"/home/ada/editor.json", Tone::plain, whole}});
  EXPECT_EQ(table.text({.columns = 36}), "  Editor  yes  /home/ada/editor.json\n");
  EXPECT_EQ(table.text({.columns = 35}), "  Editor  yes\n    /home/ada/editor.json\n");
  EXPECT_EQ(table.text({.columns = 10}), "  Editor\n    yes\n    /home/ada/editor.json\n");
}

TEST(Tables, WrapSentencesBetweenWords) {
  Table table({left, left});
  table.addRow({{"Away"}, {"since 09:15, by /home/ada/x11", Tone::plain, wrap}});
  EXPECT_EQ(table.text({}), "  Away  since 09:15, by /home/ada/x11\n");
  EXPECT_EQ(table.text({.columns = 24}),
            "  Away  since 09:15, by\n"
            "        /home/ada/x11\n");
  EXPECT_EQ(table.text({.columns = 18}),
            "  Away  since\n"
            "        09:15, by\n"
            "        /home/ada/x11\n");
}

TEST(Wrapped, DividesWordsThatAreTooWideButNoPaths) {
  using Lines = std::vector<std::string>;
  EXPECT_EQ(wrapped("", 8), Lines{""});
  EXPECT_EQ(wrapped("one two three", 8), (Lines{"one two", "three"}));
  EXPECT_EQ(wrapped("in abcdefghijkl x", 8), (Lines{"in", "abcdefgh", "ijkl x"}));
  EXPECT_EQ(wrapped("in /abcdefghijkl x", 8), (Lines{"in", "/abcdefghijkl", "x"}));
  EXPECT_EQ(wrapped("漢字漢字", 3), (Lines{"漢", "字", "漢", "字"}));
}

TEST(Tables, HaveNothingAtTheEndsOfLines) {
  for (std::size_t columns = 0; columns < 80; ++columns) {
    const std::string text = sessionTable().text({.columns = columns});
    EXPECT_EQ(text.find(" \n"), std::string::npos) << text;
    EXPECT_EQ(text.find("\n\n"), std::string::npos) << text;
  }
}

class TablesOnTerminals : public testing::TestWithParam<unsigned short> {
 protected:
  TablesOnTerminals() {
    user_.set("NO_COLOR", "1");
    const std::string title =
        "A title with 漢字 that is longer than any terminal: " + std::string(250, 'x');
    for (const char* app : {"Editor", "An application with quite a name", "Mail"}) {
      user_.addSession(app, title.c_str(), "2025-03-04T09:00:00Z", "2025-03-04T19:59:31Z");
    }
    user_.database().insertAnnotation(
        {.id = {}, .text = title, .startedAt = at("2025-03-04T09:00:00Z"), .endedAt = {}});
    user_.writeSettings("[[category]]\nname = \"Writing\"\napp = \"Editor\"\n");
  }

  User user_;
};

// Headings and sentences fit, too. A line with a path may be longer, since a path is never cut.
TEST_P(TablesOnTerminals, FitTheirWidth) {
  const std::vector<std::vector<std::string>> commands{{"day", "2025-03-04"},
                                                       {"notes", "2025-03-04"},
                                                       {"usage", "2025-03-04"},
                                                       {"usage", "2025-03"},
                                                       {"usage", "2025-03-04", "--by", "title,app"},
                                                       {"usage", "2025-03-04", "--by", "category"},
                                                       {"category", "try", "2025-03-04"},
                                                       {"search", "title"},
                                                       {"status"},
                                                       {"settings"},
                                                       {"clients"},
                                                       {"doctor"}};
  for (const auto& command : commands) {
    SCOPED_TRACE(testing::PrintToString(command));
    const Outcome outcome = user_.runOnTerminal(command, GetParam());
    EXPECT_EQ(outcome.errors, "");
    EXPECT_NE(outcome.output, "");
    for (std::string line : linesOf(outcome.output)) {
      if (line.ends_with('\r')) line.pop_back();
      EXPECT_EQ(validUtf8(line), line);
      const bool hasPath = line.find(user_.file("")) != std::string::npos;
      EXPECT_TRUE(hasPath || displayWidth(line) <= GetParam()) << line;
    }
  }
}

TEST_P(TablesOnTerminals, ShowPathsWhole) {
  EXPECT_TRUE(contains(user_.runOnTerminal({"status"}, GetParam()).output, user_.historyPath()));
  EXPECT_TRUE(contains(user_.runOnTerminal({"clients"}, GetParam()).output,
                       user_.file(".cursor/mcp.json")));
}

INSTANTIATE_TEST_SUITE_P(Widths, TablesOnTerminals, testing::Values(40, 80, 200));

}  // namespace
}  // namespace tessum
