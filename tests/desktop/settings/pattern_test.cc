#include "desktop/settings/pattern.h"

#include <gtest/gtest.h>
#include <time.h>

#include <algorithm>
#include <stdexcept>
#include <string>

namespace tessum {
namespace {

// Milliseconds of processor time, which other programs do not affect.
double processorTime() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

std::string repeated(const std::string& text, std::size_t length) {
  std::string result;
  while (result.size() + text.size() <= length) result += text;
  return result;
}

TEST(Pattern, IsFoundAnywhereUnlessItIsAnchored) {
  EXPECT_TRUE(Pattern("box").isIn("Inbox (3)"));
  EXPECT_FALSE(Pattern("^box$").isIn("Inbox (3)"));
  EXPECT_FALSE(Pattern("inbox").isIn("Inbox (3)"));
  EXPECT_TRUE(Pattern("(?i)inbox").isIn("Inbox (3)"));
  EXPECT_TRUE(Pattern("(?i)ÄPFEL").isIn("drei äpfel"));
  EXPECT_TRUE(Pattern("^$").isIn(""));
}

TEST(Pattern, IsTakenToBeInATextTooLongToSearch) {
  const Pattern pattern("b");
  EXPECT_FALSE(pattern.isIn(std::string(pattern.mostBytes(), 'a')));
  EXPECT_TRUE(pattern.isIn(std::string(pattern.mostBytes() + 1, 'a')));
}

TEST(Pattern, SearchesLongerTextsTheSimplerItIs) {
  EXPECT_GT(Pattern("(?i)private browsing|incognito|inprivate").mostBytes(), 100'000U);
  EXPECT_GE(Pattern(repeated("some|words|", 10'000) + "x").mostBytes(), 1024U);
}

TEST(Pattern, SaysWhatIsWrong) {
  for (const char* text : {"(", "[a", "a**", "(?<!b)a", "\\1", "x{1001}", "\xff"}) {
    try {
      const Pattern pattern(text);
      ADD_FAILURE() << text;
    } catch (const std::invalid_argument& error) {
      EXPECT_STRNE(error.what(), "") << text;
    }
  }
}

struct Costly {
  const char* name;
  std::string pattern;
  std::string title;
};

class CostlyPattern : public testing::TestWithParam<Costly> {};

constexpr std::size_t kLongPattern = 10'000;
constexpr double kMilliseconds = 50;

// Each of these would make a backtracking search take forever. The least of several times counts,
// each with a new pattern, because the others include other load.
TEST_P(CostlyPattern, TakesAMoment) {
  for (const std::size_t length :
       {Pattern(GetParam().pattern).mostBytes(), std::size_t{1} << 20U}) {
    const std::string title = repeated(GetParam().title, length);
    double least = kMilliseconds;
    for (int round = 0; round < 5; ++round) {
      const Pattern pattern(GetParam().pattern);
      const double start = processorTime();
      static_cast<void>(pattern.isIn(title));
      least = std::min(least, processorTime() - start);
    }
    EXPECT_LT(least, kMilliseconds) << length;
  }
}

INSTANTIATE_TEST_SUITE_P(
    All, CostlyPattern,
    testing::Values(Costly{"Words",
                           repeated("some|words|of|which|none|occurs|", kLongPattern) + "x#",
                           "window title "},
                    Costly{"LongText", repeated("abcdefghij", kLongPattern) + "z", "abcdefghij"},
                    Costly{"CapitalOrSmall",
                           "(?i)" + repeated("private browsing ", kLongPattern) + "z",
                           "Private Browsing "},
                    Costly{"OneLetter", "(?i)" + repeated("a", kLongPattern) + "z", "a"},
                    Costly{"Nested", "(((x+)+)+)+y", "x"},
                    Costly{"Optional", repeated("a?", kLongPattern) + "z", "a"},
                    Costly{"Counted", "[ab]*a[ab]{1000}c", "abaabbaaabbbab"},
                    Costly{"Anything", repeated(".*a", 300) + "b", "a"}),
    [](const auto& tested) { return std::string(tested.param.name); });

}  // namespace
}  // namespace tessum
