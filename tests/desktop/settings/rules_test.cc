#include "desktop/settings/rules.h"

#include <gtest/gtest.h>

#include "desktop/settings/settings_reader.h"
#include "tests/support/environment.h"

namespace tessum {
namespace {

constexpr Window kInbox{"Mail", "org.example.Mail", "Inbox (3)"};
constexpr Window kPrivate{"Browser", "org.example.Browser", "News - Private Browsing"};
constexpr Window kUntitled{"Browser", "org.example.Browser", std::nullopt};
constexpr Window kNameless{std::nullopt, "org.example.Vault", std::nullopt};

// The line of the rule that decides, 0 for none, and how much it keeps.
std::pair<int, Kept> judged(const std::string& rules, const Window& window,
                            const WallTime& time = {}) {
  const Settings settings = readSettings(rules);
  const Verdict verdict = judge(settings.rules.hide, window, time);
  return {verdict.rule == nullptr ? 0 : verdict.rule->line, verdict.kept};
}

TEST(HideRules, AnApplicationIsItsNameOrItsIdentifier) {
  EXPECT_EQ(judged("[[hide]]\napp = '^Mail$'", kInbox), std::pair(1, Kept::nothing));
  EXPECT_EQ(judged("[[hide]]\napp = 'example[.]Mail'", kInbox), std::pair(1, Kept::nothing));
  EXPECT_EQ(judged("[[hide]]\napp = 'Vault'", kNameless), std::pair(1, Kept::nothing));
  EXPECT_EQ(judged("[[hide]]\napp = '^mail$'", kInbox), std::pair(0, Kept::all));
}

TEST(HideRules, ATitleThatIsNotKnownIsNone) {
  const std::string rules = "[[hide]]\ntitle = ''' '''\nkeep = 'app'";
  EXPECT_EQ(judged(rules, kPrivate), std::pair(1, Kept::app));
  EXPECT_EQ(judged(rules, kUntitled), std::pair(0, Kept::all));
}

TEST(HideRules, AllPartsOfOneHaveToHold) {
  const std::string rules = "[[hide]]\napp='Browser'\ntitle='Private'\nbetween='09:00-10:00'";
  WallTime time;
  time.hour = 9;
  EXPECT_EQ(judged(rules, kPrivate, time), std::pair(1, Kept::nothing));
  EXPECT_EQ(judged(rules, kInbox, time), std::pair(0, Kept::all));
  EXPECT_EQ(judged(rules, kUntitled, time), std::pair(0, Kept::all));
  time.hour = 10;
  EXPECT_EQ(judged(rules, kPrivate, time), std::pair(0, Kept::all));
}

TEST(HideRules, TheOneThatLeavesLeastDecidesAndOfEqualsTheFirst) {
  const std::string keepTwice =
      "[[hide]]\ntitle='Private'\nkeep='app'\n[[hide]]\napp='Browser'\nkeep='app'\n";
  EXPECT_EQ(judged(keepTwice, kPrivate), std::pair(1, Kept::app));
  EXPECT_EQ(judged(keepTwice + "[[hide]]\napp='B'\n[[hide]]\napp='r'", kPrivate),
            std::pair(7, Kept::nothing));
}

TEST(HideRules, TheirNextEdgeIsTheFirstOfAll) {
  const ScopedVariable zone("TZ", "UTC");
  const auto edge = [](const std::string& rules) {
    return nextEdge(readSettings(rules).rules.hide, {3600});
  };
  EXPECT_EQ(edge("[[hide]]\napp='x'"), std::nullopt);
  EXPECT_EQ(edge("[[hide]]\nbetween='18:00-08:00'\n[[hide]]\nbetween='07:00-12:00'"),
            Date{7 * 3600});
  EXPECT_EQ(edge("[[hide]]\ndays=['sat']"), Date{86400});
}

TEST(Categories, TheFirstThatMatchesCounts) {
  const Rules rules = readSettings(
                          "[[category]]\nname='Mail'\ntitle='(?i)inbox'\n"
                          "[[category]]\nname='Rest'\napp='Mail|Browser'")
                          .rules;
  const auto nameOf = [&](const Window& window) {
    const Category* category = categoryOf(rules, window);
    return category == nullptr ? "-" : category->name;
  };
  EXPECT_EQ(nameOf(kInbox), "Mail");
  EXPECT_EQ(nameOf(kPrivate), "Rest");
  EXPECT_EQ(nameOf(kNameless), "-");
}

}  // namespace
}  // namespace tessum
