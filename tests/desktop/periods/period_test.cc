#include "desktop/periods/period.h"

#include <gtest/gtest.h>

#include <string>

#include "desktop/periods/calendar_dates.h"

namespace tessum {
namespace {

constexpr CalendarDate kToday{2025, 3, 5};  // a Wednesday

std::string datesOf(const Period& period) {
  return dateText(period.first) + " " + dateText(period.last);
}

struct PeriodCase {
  const char* text;
  const char* dates;
};

class Periods : public testing::TestWithParam<PeriodCase> {};

TEST_P(Periods, AreReadInSmallAndInCapitalLetters) {
  const std::string text = GetParam().text;
  EXPECT_EQ(datesOf(parsePeriod(text, kToday)), GetParam().dates);
  std::string capitals = text;
  for (char& c : capitals) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  EXPECT_EQ(datesOf(parsePeriod(capitals, kToday)), GetParam().dates);
}

constexpr PeriodCase kPeriods[] = {
    {"today", "2025-03-05 2025-03-05"},
    {"yesterday", "2025-03-04 2025-03-04"},
    {"wednesday", "2025-03-05 2025-03-05"},
    {"tuesday", "2025-03-04 2025-03-04"},
    {"thursday", "2025-02-27 2025-02-27"},
    {"friday", "2025-02-28 2025-02-28"},
    {"saturday", "2025-03-01 2025-03-01"},
    {"sunday", "2025-03-02 2025-03-02"},
    {"monday", "2025-03-03 2025-03-03"},
    {"1d", "2025-03-05 2025-03-05"},
    {"3d", "2025-03-03 2025-03-05"},
    {"365d", "2024-03-06 2025-03-05"},
    {"week", "2025-03-03 2025-03-05"},
    {"last-week", "2025-02-24 2025-03-02"},
    {"month", "2025-03-01 2025-03-05"},
    {"last-month", "2025-02-01 2025-02-28"},
    {"year", "2025-01-01 2025-03-05"},
    {"2024", "2024-01-01 2024-12-31"},
    {"0001", "0001-01-01 0001-12-31"},
    {"9999", "9999-01-01 9999-12-31"},
    {"2024-02", "2024-02-01 2024-02-29"},
    {"2025-12", "2025-12-01 2025-12-31"},
    {"9999-12", "9999-12-01 9999-12-31"},
    {"2025-W10", "2025-03-03 2025-03-09"},
    // The first week of a year may begin in the year before, the last one end in the next.
    {"2025-W1", "2024-12-30 2025-01-05"},
    {"2021-W01", "2021-01-04 2021-01-10"},
    {"2020-W53", "2020-12-28 2021-01-03"},
    {"2025-03-04", "2025-03-04 2025-03-04"},
    {"2025-3-4", "2025-03-04 2025-03-04"},
    {"2024-02-29", "2024-02-29 2024-02-29"},
    {"2025-03-04..2025-03-10", "2025-03-04 2025-03-10"},
    {"2025-03-04..", "2025-03-04 2025-03-05"},
    {"monday..today", "2025-03-03 2025-03-05"},
    {"2024-11..2025-W02", "2024-11-01 2025-01-12"},
    {"last-month..yesterday", "2025-02-01 2025-03-04"},
    {"today..today", "2025-03-05 2025-03-05"},
    {"2024..", "2024-01-01 2025-03-05"},
};

INSTANTIATE_TEST_SUITE_P(All, Periods, testing::ValuesIn(kPeriods),
                         [](const auto& tested) { return std::to_string(tested.index); });

TEST(Period, OfMondayBeginsItsWeekAndOfSundayEndsIt) {
  EXPECT_EQ(datesOf(parsePeriod("week", {2025, 3, 3})), "2025-03-03 2025-03-03");
  EXPECT_EQ(datesOf(parsePeriod("week", {2025, 3, 9})), "2025-03-03 2025-03-09");
  EXPECT_EQ(datesOf(parsePeriod("last-month", {2025, 1, 31})), "2024-12-01 2024-12-31");
  EXPECT_EQ(datesOf(parsePeriod("week", {2025, 1, 1})), "2024-12-30 2025-01-01");
}

class NoPeriods : public testing::TestWithParam<const char*> {};

TEST_P(NoPeriods, AreRefusedWithAllThatCanBeWritten) {
  try {
    FAIL() << datesOf(parsePeriod(GetParam(), kToday));
  } catch (const PeriodError& error) {
    const std::string message = error.what();
    EXPECT_TRUE(message.starts_with("unknown period \"")) << message;
    for (const char* form : {"today", "yesterday", "monday", "3d", "week", "last-week", "month",
                             "last-month", "year", "2025", "2025-03", "2025-W10", "2025-03-04",
                             "2025-03-04..2025-03-10", "2025-03-04..", "monday..today"}) {
      EXPECT_NE(message.find(form), std::string::npos) << form;
      EXPECT_NO_THROW(static_cast<void>(parsePeriod(form, {2025, 4, 5}))) << form;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, NoPeriods,
                         testing::Values("", " today", "tomorrow", "mon", "0d", "d", "-1d", "3",
                                         "3days", "1000000d", "999999d", "last-year", "0000",
                                         "25-03-04", "20250304", "2025-", "2025-13", "2025-00",
                                         "2025-02-30", "2025-02-29", "2025-03-04T09:00", "2025-W",
                                         "2025-W00", "2025-W53", "2025-W100", "9999-W52", "..",
                                         "..today", "today...", "today....", "today.yesterday",
                                         "today..tomorrow", "1..2", "2025-03-04-", "\xff",
                                         "2025\xe2\x80\x93"
                                         "03"),
                         [](const auto& tested) { return std::to_string(tested.index); });

TEST(Period, ThatEndsBeforeItBeginsSaysSo) {
  for (const auto& [text, dates] :
       {std::pair{"2025-03-10..2025-03-04", "ends on 2025-03-04, before it begins on 2025-03-10"},
        {"thursday..monday..", "unknown period"},
        {"2026..", "ends on 2025-03-05, before it begins on 2026-01-01"}}) {
    try {
      FAIL() << datesOf(parsePeriod(text, kToday));
    } catch (const PeriodError& error) {
      EXPECT_NE(std::string(error.what()).find(dates), std::string::npos) << error.what();
    }
  }
}

TEST(Period, ThatIsRefusedIsQuotedWithoutHarmToATerminal) {
  try {
    FAIL() << datesOf(parsePeriod("\x1b[2J" + std::string(5000, 'x'), kToday));
  } catch (const PeriodError& error) {
    EXPECT_EQ(std::string(error.what()).find('\x1b'), std::string::npos);
    EXPECT_LT(std::string(error.what()).size(), 500U);
  }
}

TEST(PeriodWords, AreAllPeriods) {
  for (const std::string& word : periodWords())
    EXPECT_NO_THROW(static_cast<void>(parsePeriod(word, kToday))) << word;
}

}  // namespace
}  // namespace tessum
