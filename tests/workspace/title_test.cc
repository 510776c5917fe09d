#include "core/workspace/title.h"

#include <gtest/gtest.h>

namespace tessum {
namespace {

TEST(CutToLength, KeepsWhatIsShortEnough) {
  EXPECT_EQ(cutToLength("", 0), "");
  EXPECT_EQ(cutToLength("abc", 3), "abc");
  EXPECT_EQ(cutToLength("ab\u00E9", 4), "ab\u00E9");
}

TEST(CutToLength, CutsBetweenCharacters) {
  const std::string text = "a\u00E9\u65E5\U0001F4DD";  // of 1, 2, 3 and 4 bytes
  const std::string expected[] = {"", "a", "a", "a\u00E9", "a\u00E9", "a\u00E9", "a\u00E9\u65E5"};
  for (std::size_t length = 0; length < std::size(expected); ++length) {
    EXPECT_EQ(cutToLength(text, length), expected[length]) << length;
  }
  EXPECT_EQ(cutToLength(text, 9), "a\u00E9\u65E5");
  EXPECT_EQ(cutToLength(text, 10), text);
}

TEST(TitleFrom, IsAbsentForAnEmptyText) {
  EXPECT_EQ(titleFrom(""), std::nullopt);
  EXPECT_EQ(titleFrom(" "), " ");
}

TEST(TitleFrom, KeepsAMebibyte) {
  const std::string longest(kLongestTitle, 'x');
  EXPECT_EQ(titleFrom(longest), longest);
  EXPECT_EQ(titleFrom(longest + "y"), longest);
}

}  // namespace
}  // namespace tessum
