// Bars on narrow and on wide paper.

#include <gtest/gtest.h>

#include <algorithm>

#include "desktop/text/text_layout.h"
#include "tests/desktop/user.h"

namespace tessum {
namespace {

std::size_t lengthOfBar(const std::string& line) {
  return displayWidth(line.substr(std::min(line.find_first_of("=-"), line.size())));
}

TEST(Bar, IsDrawnInEighthsOrInAsciiInHalves) {
  EXPECT_EQ(bar(1, 4), "████");
  EXPECT_EQ(bar(0.5, 3), "█▌");
  EXPECT_EQ(bar(0.001, 4), "▏");
  EXPECT_EQ(bar(0, 4), "");
  EXPECT_EQ(bar(1, 0), "");
  EXPECT_EQ(bar(2, 2), "██");
  const Paper ascii{.isAscii = true};
  EXPECT_EQ(bar(1, 4, ascii), "====");
  EXPECT_EQ(bar(0.5, 3, ascii), "=-");
  EXPECT_EQ(bar(0.001, 4, ascii), "-");
}

TEST(Shortened, EndsInAnEllipsisThatThePaperCanShow) {
  EXPECT_EQ(shortened("abcdef", 4), "abc…");
  EXPECT_EQ(shortened("abcdef", 4, {.isAscii = true}), "a...");
  EXPECT_EQ(shortened("abcdef", 2, {.isAscii = true}), "..");
  EXPECT_EQ(shortened("abcdef", 0), "");
  EXPECT_EQ(shortened("abcdef", 6, {.isAscii = true}), "abcdef");
}

TEST(Table, LeavesOutColumnsToMakeRoomForBars) {
  using enum Table::Alignment;
  Table table({left, right, left}, {1});
  table.addRow({{"Editor"}, {"12 sessions"}, Table::barCell(1, Tone::plain)});
  table.addRow({{"Mail"}, {"3 sessions"}, Table::barCell(0.5, Tone::plain)});
  EXPECT_EQ(table.text({.columns = 32, .isAscii = true}),
            "  Editor  12 sessions  =========\n"
            "  Mail     3 sessions  ====-\n");
  EXPECT_EQ(table.text({.columns = 31, .isAscii = true}),
            "  Editor  =====================\n"
            "  Mail    ==========-\n");
}

// Two applications with 47 % and 43 % of a day, a third with the rest.
class Bars : public testing::Test {
 protected:
  Bars() {
    user.set("NO_COLOR", "1");
    user.addSession("Cobblefiles", "one", "2025-03-04T08:00:00Z", "2025-03-04T15:50:00Z");
    user.addSession("Hollerbox", "two", "2025-03-04T15:50:00Z", "2025-03-04T23:00:00Z");
    user.addSession("Fernglass of a rather long name", "a title that goes on and on, past the edge",
                    "2025-03-03T09:00:00Z", "2025-03-03T10:40:00Z");
  }

  std::vector<std::string> lines(const std::vector<std::string>& command, int columns) {
    auto all = linesOf(user.runOnTerminal(command, static_cast<unsigned short>(columns)).output);
    for (std::string& line : all)
      line.erase(std::remove(line.begin(), line.end(), '\r'), line.end());
    return all;
  }

  User user;
};

TEST_F(Bars, AreOfAsciiWhereTheLocaleHasNoUtf8) {
  user.set("LC_ALL", "");
  for (const char* locale : {"C", "POSIX", "", "de_DE.ISO-8859-1"}) {
    user.set("LANG", locale);
    for (const std::vector<std::string>& command : {std::vector<std::string>{"usage", "2025-W10"},
                                                    {"usage", "2025-W10", "--by", "day,app"},
                                                    {"day", "2025-03-03..2025-03-04"},
                                                    {"search", "e"}}) {
      for (const std::string& line : lines(command, 40)) {
        const auto isOutsideAscii = [](unsigned char c) { return c >= 0x80; };
        EXPECT_EQ(std::count_if(line.begin(), line.end(), isOutsideAscii), 0) << line;
      }
    }
  }
  user.set("LANG", "de_DE.utf8");
  EXPECT_TRUE(contains(user.run({"usage", "2025-03-04"}).output, "█"));
}

TEST_F(Bars, KeepTheProportionsOfBars) {
  user.set("LC_ALL", "C");
  for (const int columns : {40, 60, 80, 200}) {
    const auto all = lines({"usage", "2025-03-03..2025-03-04"}, columns);
    const auto lineOf = [&](const char* name) {
      for (const std::string& line : all) {
        if (line.starts_with(name)) return line;
      }
      return std::string();
    };
    const std::string large = lineOf("  Cobblefiles");
    const std::string small = lineOf("  Hollerbox");
    ASSERT_TRUE(contains(large, "47%"));
    ASSERT_TRUE(contains(small, "43%"));
    EXPECT_NE(large.substr(large.find('=')), small.substr(small.find('='))) << large << small;
    EXPECT_EQ(large.find('='), small.find('='));
    const auto width = static_cast<double>(lengthOfBar(large));
    EXPECT_NEAR(static_cast<double>(lengthOfBar(small)) / width, 43.0 / 47, 1 / width);
  }
}

}  // namespace
}  // namespace tessum
