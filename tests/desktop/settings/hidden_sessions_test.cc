#include "desktop/settings/hidden_sessions.h"

#include <gtest/gtest.h>

#include "desktop/settings/settings_reader.h"
#include "tests/support/environment.h"

namespace tessum {
namespace {

using Pieces = std::vector<std::string>;

// What `rules` keep of a session of "Mail" with the title "Inbox", as "title|begin|end" in minutes.
Pieces left(const std::string& rules, double begin, std::optional<double> end) {
  const ScopedVariable zone("TZ", "UTC");
  Activity session{.id = 7,
                   .appName = "Mail",
                   .bundleID = "org.example.Mail",
                   .title = "Inbox",
                   .startTime = {begin * 60},
                   .endTime = {}};
  if (end) session.endTime = Date{*end * 60};
  Pieces pieces;
  for (const Activity& piece : leftOf(session, readSettings(rules).rules.hide)) {
    const auto minutes = [](Date date) {
      return std::to_string(static_cast<int>(date.secondsSince1970 / 60));
    };
    pieces.push_back(piece.title.value_or("-") + "|" + minutes(piece.startTime) + "|" +
                     (piece.endTime ? minutes(*piece.endTime) : "open"));
  }
  return pieces;
}

TEST(LeftOfASession, IsAllOrNothingWithoutASchedule) {
  EXPECT_EQ(left("", 10, 20), Pieces{"Inbox|10|20"});
  EXPECT_EQ(left("[[hide]]\napp='example'", 10, 20), Pieces());
  EXPECT_EQ(left("[[hide]]\ntitle='Inbox'\nkeep='app'", 10, 20), Pieces{"-|10|20"});
}

TEST(LeftOfASession, IsCutWhereAScheduleBeginsAndEnds) {
  const std::string hour = "[[hide]]\nbetween='01:00-02:00'\n";
  EXPECT_EQ(left(hour, 30, 60), Pieces{"Inbox|30|60"});
  EXPECT_EQ(left(hour, 30, 90), Pieces{"Inbox|30|60"});
  EXPECT_EQ(left(hour, 60, 120), Pieces());
  EXPECT_EQ(left(hour, 90, 150), Pieces{"Inbox|120|150"});
  EXPECT_EQ(left(hour, 30, 150), (Pieces{"Inbox|30|60", "Inbox|120|150"}));
  EXPECT_EQ(left(hour, 30, 1440 + 90), (Pieces{"Inbox|30|60", "Inbox|120|1500"}));
}

TEST(LeftOfASession, LosesItsTitleForTheTimeOfASchedule) {
  EXPECT_EQ(left("[[hide]]\nbetween='01:00-02:00'\nkeep='app'", 30, 150),
            (Pieces{"Inbox|30|60", "-|60|120", "Inbox|120|150"}));
}

TEST(LeftOfASession, StaysInOnePieceWhereARuleTakesOverFromAnother) {
  EXPECT_EQ(left("[[hide]]\nbetween='01:00-02:00'\nkeep='app'\n"
                 "[[hide]]\nbetween='02:00-03:00'\nkeep='app'",
                 70, 170),
            Pieces{"-|70|170"});
}

TEST(LeftOfASession, IsDecidedByItsBeginWithoutAnEnd) {
  const std::string hour = "[[hide]]\nbetween='01:00-02:00'\n";
  EXPECT_EQ(left(hour, 30, std::nullopt), Pieces{"Inbox|30|open"});
  EXPECT_EQ(left(hour, 90, std::nullopt), Pieces());
  EXPECT_EQ(left(hour, 90, 80), Pieces());
  EXPECT_EQ(left(hour, 30, 20), Pieces{"Inbox|30|20"});
}

}  // namespace
}  // namespace tessum
