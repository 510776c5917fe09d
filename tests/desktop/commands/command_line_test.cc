// Words that name no command, help, and the words that shells complete.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/desktop/user.h"
#include "tests/support/child_process.h"

namespace tessum {
namespace {

using Words = std::vector<std::string>;

struct Mistake {
  const char* name;
  Words words;
  const char* complaint;
};

std::string mistakeName(const testing::TestParamInfo<Mistake>& info) {
  return info.param.name;
}

class MistypedCommand : public testing::TestWithParam<Mistake> {};

TEST_P(MistypedCommand, IsNamedWithASuggestion) {
  const Outcome outcome = User().run(GetParam().words);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(outcome.errors,
            std::string("Tessum: ") + GetParam().complaint + "\nRun with --help for usage.\n");
}

INSTANTIATE_TEST_SUITE_P(
    Words, MistypedCommand,
    testing::Values(
        Mistake{"Letters", {"recrod"}, R"(there is no command "recrod"; did you mean "record"?)"},
        Mistake{"BeforeArguments",
                {"usgae", "week", "--by", "app"},
                R"(there is no command "usgae"; did you mean "usage"?)"},
        Mistake{"Nothing", {"xylophone"}, R"(there is no command "xylophone")"},
        Mistake{"Empty", {""}, R"(there is no command "")"},
        Mistake{"Capitals", {"RECORD"}, R"(there is no command "RECORD"; did you mean "record"?)"},
        Mistake{"OptionAlone",
                {"--versoin"},
                R"(there is no option "--versoin" before a command; did you mean "--version"?)"},
        Mistake{"OptionBefore", {"-x", "day"}, R"(there is no option "-x" before a command)"},
        Mistake{"NoCommand", {}, R"(say which command; "Tessum help" lists them)"},
        Mistake{"Hidden", {"complet"}, R"(there is no command "complet")"},
        Mistake{"Control", {"day\x1b[2J"}, "there is no command \"day\xEF\xBF\xBD[2J\""},
        Mistake{"Inner",
                {"settings", "chekc"},
                R"(there is no command "settings chekc"; did you mean "check"?)"},
        Mistake{"InnerOfHelp",
                {"help", "settings", "tyr"},
                R"(there is no command "settings tyr"; did you mean "try"?)"},
        Mistake{"OfHelp", {"help", "dya"}, R"(there is no command "dya"; did you mean "day"?)"},
        Mistake{"Option",
                {"day", "--jsno"},
                R"(The following argument was not expected: --jsno; did you mean "--json"?)"}),
    mistakeName);

TEST(Help, IsTheSameForHelpAndForTheOption) {
  const User user;
  for (const Words& words : {Words{}, {"usage"}, {"settings"}, {"settings", "try"}, {"help"}}) {
    SCOPED_TRACE(testing::PrintToString(words));
    Words asked{"help"};
    asked.insert(asked.end(), words.begin(), words.end());
    Words option = words;
    option.emplace_back("--help");
    const Outcome outcome = user.run(asked);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(contains(outcome.output, "Usage: Tessum"));
    EXPECT_EQ(outcome.output, user.run(option).output);
  }
}

TEST(Help, ThatCannotBeWrittenIsAFailure) {
  const User user;
  for (const char* words : {"--help", "--version", "help", "help day", "day --help"}) {
    const std::string line = "\"" + hostProgram() + "\" " + words + " > /dev/full";
    ChildProcess shell("sh", {.arguments = {"-c", line}, .environment = user.environment()});
    EXPECT_EQ(shell.finish(), kFailure) << words;
    EXPECT_TRUE(contains(shell.errors(), "cannot write to standard output"));
  }
}

class Complete : public testing::Test {
 protected:
  [[nodiscard]] Words words(const Words& arguments) const {
    Words all{"complete"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    const Outcome outcome = user_.run(all);
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    return linesOf(outcome.output);
  }

  User user_;
};

TEST_F(Complete, HasWhatNeedsNoHistoryWithoutOne) {
  EXPECT_EQ(words({"applications"}), Words());
  EXPECT_EQ(words({"categories"}), Words{"Uncategorised"});
  EXPECT_EQ(words({"periods"}).front(), "today");
}

TEST_F(Complete, HasTheApplicationsOfTheHistoryOnce) {
  for (const char* name : {"Terminal", "Mail", "Terminal", "Zwölf", "Budget Planner", "Mail"}) {
    user_.addSession(name, nullptr, "2025-03-04T09:00:00Z", "2025-03-04T10:00:00Z");
  }
  EXPECT_EQ(words({"applications"}), (Words{"Budget Planner", "Mail", "Terminal", "Zwölf"}));
}

TEST_F(Complete, LeavesOutApplicationsThatATerminalCannotShow) {
  user_.addSession("two\nlines", nullptr, "2025-03-04T09:00:00Z", "2025-03-04T10:00:00Z");
  user_.addSession("\x1b[2J", nullptr, "2025-03-04T10:00:00Z", "2025-03-04T11:00:00Z");
  EXPECT_EQ(words({"applications"}), Words());
}

TEST_F(Complete, HasEachCategoryOnce) {
  user_.writeSettings(
      "[[category]]\nname = \"Work\"\napp = \"a\"\n[[category]]\nname = \"Work\"\napp = \"b\"\n");
  EXPECT_EQ(words({"categories"}), (Words{"Uncategorised", "Work"}));
}

TEST_F(Complete, HasTheYearsOfTheHistoryThenItsMonthsThenItsDays) {
  user_.addSession("Mail", nullptr, "2024-12-30T09:00:00Z", "2024-12-30T10:00:00Z");
  user_.addSession("Mail", nullptr, "2025-01-02T09:00:00Z", "2025-01-02T10:00:00Z");
  const auto dates = [&](const Words& arguments) {
    Words found;
    for (const std::string& word : words(arguments)) {
      if (word.starts_with("20")) found.push_back(word);
    }
    return found;
  };
  EXPECT_EQ(dates({"periods"}), (Words{"2024", "2025"}));
  EXPECT_EQ(dates({"periods", "2024-"}), (Words{"2024-12", "2025-01"}));
  EXPECT_EQ(dates({"periods", "2025-01-"}),
            (Words{"2024-12-30", "2024-12-31", "2025-01-01", "2025-01-02"}));
}

TEST_F(Complete, KnowsNoOtherKind) {
  EXPECT_EQ(user_.run({"complete", "titles"}).status, 2);
}

}  // namespace
}  // namespace tessum
