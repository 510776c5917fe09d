#include "core/mcp/date_argument.h"

#include <gtest/gtest.h>

#include "tests/support/environment.h"

namespace tessum {
namespace {

TEST(ParseDate, GivesTheLocalMidnightOfTheDate) {
  const SystemCalendar calendar;
  ScopedVariable zone("TZ", "UTC");
  EXPECT_EQ(parseDate("2025-03-04", calendar), Date{1741046400});
  EXPECT_EQ(parseDate("2025-3-4", calendar), Date{1741046400});
  zone.set("Asia/Tokyo");
  EXPECT_EQ(parseDate("2025-03-04", calendar), Date{1741046400 - 9 * 3600});
}

class UnreadableDate : public testing::TestWithParam<const char*> {};

TEST_P(UnreadableDate, GivesNothing) {
  EXPECT_FALSE(parseDate(GetParam(), SystemCalendar()).has_value());
}

INSTANTIATE_TEST_SUITE_P(Texts, UnreadableDate,
                         testing::Values("", "today", "yesterday", "2025/03/04", "04-03-2025",
                                         "2025-03", "2025-03-", "2025-03-04 ", " 2025-03-04",
                                         "2025-03-04T00:00:00Z", "2025-13-01", "2025-00-01",
                                         "2025-02-29", "2025-04-31", "2025-03-00", "2025-03-32",
                                         "25-03-04", "0000-01-01", "12025-03-04", "-2025-03-04",
                                         "2025--3-04", "2025-03--4", "2025-003-04", "2025-03-004",
                                         "２０２５-03-04", "20250304"));

}  // namespace
}  // namespace tessum
