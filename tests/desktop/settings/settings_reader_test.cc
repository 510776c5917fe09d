#include "desktop/settings/settings_reader.h"

#include <gtest/gtest.h>

#include "desktop/settings/duration.h"
#include "desktop/settings/settings_file.h"

namespace tessum {
namespace {

std::string errorOf(const std::string& text) {
  try {
    static_cast<void>(readSettings(text));
    return "";
  } catch (const SettingsError& error) {
    return error.what();
  }
}

TEST(Settings, AnEmptyFileLeavesEverythingAsItIs) {
  const Settings settings = readSettings("");
  EXPECT_EQ(settings.awayAfter.value, AwayAfter{300});
  EXPECT_EQ(settings.awayAfter.line, 0);
  EXPECT_EQ(settings.titles.value, Titles::each);
  EXPECT_EQ(settings.dayStarts.value, 0);
  EXPECT_TRUE(settings.rules.hide.empty());
}

TEST(Settings, EachValueKnowsItsLine) {
  const Settings settings =
      readSettings("# mine\n[record]\naway-after = \"1h30m\"\n\ntitles = \"last\"\n");
  EXPECT_EQ(settings.awayAfter.value, AwayAfter{5400});
  EXPECT_EQ(settings.awayAfter.line, 3);
  EXPECT_EQ(settings.titles.value, Titles::last);
  EXPECT_EQ(settings.titles.line, 5);
  EXPECT_EQ(readSettings("[reports]\nday-starts = '4:30'").dayStarts.value, 4 * 60 + 30);
  EXPECT_EQ(readSettings("record.away-after='never'").awayAfter.value, AwayAfter{std::nullopt});
}

TEST(Settings, RulesComeInTheirOrder) {
  const Rules rules = readSettings(
                          "[[hide]]\napp='a'\n[[hide]]\ntitle='b'\nkeep='app'\n"
                          "[[hide]]\nbetween='18:00-08:00'\ndays=['sat','sun']\n"
                          "[[category]]\nname='C'\napp='d'\ncolor='#3A7bd5'\n")
                          .rules;
  ASSERT_EQ(rules.hide.size(), 3U);
  EXPECT_EQ(rules.hide[0].windows.app->text(), "a");
  EXPECT_EQ(rules.hide[0].kept, Kept::nothing);
  EXPECT_EQ(rules.hide[1].windows.title->text(), "b");
  EXPECT_EQ(rules.hide[1].kept, Kept::app);
  EXPECT_EQ(rules.hide[2].schedule, (Schedule{{18 * 60, 8 * 60}, Weekdays(0b1000001)}));
  EXPECT_EQ(rules.hide[2].line, 6);
  ASSERT_EQ(rules.categories.size(), 1U);
  EXPECT_EQ(rules.categories[0].line, 9);
  EXPECT_EQ(rules.categories[0].colour, "#3a7bd5");
}

TEST(Settings, TheTemplateIsUnderstood) {
  const Settings settings = readSettings(settingsTemplate());
  ASSERT_EQ(settings.rules.hide.size(), 1U);
  EXPECT_EQ(settings.rules.hide[0].kept, Kept::app);
}

// The template's examples after "# " are valid when uncommented.
TEST(Settings, TheTemplateIsUnderstoodWithAllItShows) {
  std::string text;
  std::string_view rest = settingsTemplate();
  while (!rest.empty()) {
    const auto line = rest.substr(0, rest.find('\n') + 1);
    rest.remove_prefix(line.size());
    const bool isSetting = line.starts_with("# [") || line.find(" = ") != std::string_view::npos;
    text += line.substr(isSetting && line.starts_with("# ") ? 2 : 0);
  }
  const Settings settings = readSettings(text);
  EXPECT_EQ(settings.rules.hide.size(), 4U);
  EXPECT_EQ(settings.rules.categories.size(), 1U);
  EXPECT_EQ(settings.awayAfter.value, AwayAfter());
  EXPECT_NE(settings.awayAfter.line, 0);
  EXPECT_EQ(settings.titles.value, Titles::each);
}

struct Wrong {
  const char* text;
  const char* error;
};

class WrongSettings : public testing::TestWithParam<Wrong> {};

TEST_P(WrongSettings, AreRefusedWithTheirPlace) {
  EXPECT_EQ(errorOf(GetParam().text), GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
    All, WrongSettings,
    testing::Values(
        Wrong{"[recrod]", "line 1, column 2: unknown key \"recrod\"; did you mean \"record\"?"},
        Wrong{"[record]\ntitels = 'each'",
              "line 2, column 1: unknown key \"titels\"; did you mean \"titles\"?"},
        Wrong{"[record]\nfont = 'each'",
              "line 2, column 1: unknown key \"font\"; the keys here are away-after, titles"},
        Wrong{"[record]\ntitles = 'eech'",
              "line 2, column 10: unknown value \"eech\" of titles; did you mean \"each\"?"},
        Wrong{"[record]\ntitles = 'first'",
              "line 2, column 10: unknown value \"first\" of titles; write each, last or none"},
        Wrong{"[record]\ntitles = 1", "line 2, column 10: a text in quotation marks is expected"},
        Wrong{"[record]\naway-after = '1.5h'",
              "line 2, column 14: unknown duration \"1.5h\"; write it as 30s, 5m or 1h30m, up to "
              "24h, or never"},
        Wrong{"[record]\naway-after = '25h'",
              "line 2, column 14: unknown duration \"25h\"; write it as 30s, 5m or 1h30m, up to "
              "24h, or never"},
        Wrong{"[reports]\nday-starts = '24:00'",
              "line 2, column 14: unknown time \"24:00\"; write it as 04:00, from 00:00 to 23:59"},
        Wrong{"[reports]\nday-starts = 4",
              "line 2, column 14: a text in quotation marks is "
              "expected"},
        Wrong{"[reports]\nday-start = '04:00'",
              "line 2, column 1: unknown key \"day-start\"; did you mean \"day-starts\"?"},
        Wrong{"[[record]]", "line 1, column 1: a table is expected; write it as [record]"},
        Wrong{"[hide]\napp = 'a'", "line 1, column 1: tables are expected; write each as [[hide]]"},
        Wrong{"hide = [1]", "line 1, column 9: a table is expected; write it as [[hide]]"},
        Wrong{"[[hide]]\n",
              "line 1, column 1: it does not say what to hide: give app, title, between or days"},
        Wrong{"[[hide]]\nkeep = 'app'",
              "line 1, column 1: it does not say what to hide: give app, title, between or days"},
        Wrong{"[[hide]]\napp = ''", "line 2, column 7: an empty pattern would match everything"},
        Wrong{"[[hide]]\napp = 'a'\nkeep = 'title'",
              "line 3, column 8: only \"app\" can be kept, not \"title\""},
        Wrong{"[[hide]]\nbetween = '18-8'",
              "line 2, column 11: unknown hours \"18-8\"; write them as 18:00-08:00"},
        Wrong{
            "[[hide]]\ndays = ['sat', 'Sunday']",
            "line 2, column 16: unknown day \"Sunday\"; the days are mon, tue, wed, thu, fri, sat "
            "and sun"},
        Wrong{"[[hide]]\ndays = []",
              "line 2, column 8: days are expected; write them as [\"sat\", \"sun\"]"},
        Wrong{"[[category]]\napp = 'a'", "line 1, column 1: it has no name"},
        Wrong{"[[category]]\nname = 'a'\napp = 'a'\ncolor = 'blue'",
              "line 4, column 9: unknown colour \"blue\"; write it as #3a7bd5"},
        Wrong{"[[category]]\nname = 'a'\napp = 'a'\ncolor = '#12345g'",
              "line 4, column 9: unknown colour \"#12345g\"; write it as #3a7bd5"},
        Wrong{"[[category]]\nname = 'a'\napp = 'a'\ncolour = '#123456'",
              "line 4, column 1: unknown key \"colour\"; did you mean \"color\"?"},
        Wrong{"[[category]]\nname = 'a'",
              "line 1, column 1: it does not say what belongs to it: give app or title"}),
    [](const auto& tested) { return std::to_string(tested.index); });

TEST(Settings, APatternThatIsNoneIsRefusedWithItsPlace) {
  EXPECT_TRUE(
      errorOf("[[hide]]\napp = 'a('").starts_with("line 2, column 7: not a regular expression: "));
}

TEST(Settings, ATextThatIsNotTomlIsRefusedWithItsPlace) {
  EXPECT_TRUE(errorOf("[record]\ntitles = each\n").starts_with("line 2, column 10: "))
      << errorOf("[record]\ntitles = each\n");
  EXPECT_TRUE(errorOf("[record]\ntitles = 'each'\ntitles = 'last'\n").starts_with("line 3, "));
  EXPECT_TRUE(errorOf("a = '\xff'").starts_with("line 1, "));
}

TEST(Settings, WhatAnErrorQuotesIsHarmlessToATerminal) {
  const std::string error = errorOf("\"\\u001b[2J\" = 1");
  EXPECT_EQ(error.find('\x1b'), std::string::npos) << error;
  EXPECT_NE(error, "");
}

TEST(PlainDuration, IsReadAndWritten) {
  for (const char* text : {"1h30m", "45m", "20s", "1h", "2h3m4s", "24h"}) {
    ASSERT_TRUE(plainDuration(text)) << text;
    EXPECT_EQ(plainDurationText(*plainDuration(text)), text);
  }
  EXPECT_EQ(plainDuration("90"), 5400.0);
  EXPECT_EQ(plainDurationText(0), "0s");
  for (const char* text :
       {"", "m", "1.5h", "30m1h", "1h30", "-5m", "5 m", "0", "99999999999999999h"}) {
    EXPECT_EQ(plainDuration(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace tessum
