#include "desktop/recording/front_sessions.h"

#include <gtest/gtest.h>

#include "tests/desktop/recording/written_sessions.h"
#include "tests/support/fakes/fake_main_loop.h"
#include "tests/support/fakes/fake_steady_clock.h"

namespace tessum {
namespace {

using Rows = std::vector<std::string>;

class FrontSessionsTest : public testing::Test {
 protected:
  void open(Titles titles) { sessions_.emplace(feed_, timeline_, loop_, titles); }

  // Puts `title` of `app` in front now.
  void show(const char* app, const char* title) {
    Front front{{app, std::nullopt, std::nullopt}, std::nullopt};
    if (title != nullptr) front.title = title;
    sessions_->show(front, steady_.now());
  }
  void showNothing() { sessions_->show(std::nullopt, steady_.now()); }

  // Advances the time, with the recorder's ticks.
  void wait(double seconds) {
    for (; seconds > 0; seconds -= 5) {
      loop_.advance(std::min(seconds, 5.0));
      sessions_->storeLatestTitle();
    }
  }

  FakeClock clock_;
  FakeSteadyClock steady_{clock_};
  FakeMainLoop loop_{clock_};
  WallTimeline timeline_{clock_, steady_};
  std::shared_ptr<WrittenSessions> written_ = std::make_shared<WrittenSessions>();
  MonitorFeed feed_{written_};
  std::optional<FrontSessions> sessions_;
};

TEST_F(FrontSessionsTest, ASessionHasItsTitleFromItsFirstMoment) {
  open(Titles::each);
  show("Editor", "a.txt");
  EXPECT_EQ(written_->rows(), Rows{"Editor|a.txt|0|open"});
  wait(10);
  show("Mail", nullptr);
  EXPECT_EQ(written_->rows(), (Rows{"Editor|a.txt|0|10", "Mail|-|10|open"}));
  wait(1);
  show("Mail", "Inbox");
  EXPECT_EQ(written_->rows().back(), "Mail|Inbox|10|open") << "a window that got its title late";
}

TEST_F(FrontSessionsTest, ATitleThatLastsHasASessionOfItsOwnFromWhenItAppeared) {
  open(Titles::each);
  show("Browser", "One");
  wait(60);
  show("Browser", "Two");
  EXPECT_EQ(written_->rows(), Rows{"Browser|One|0|open"});
  wait(5);
  EXPECT_EQ(written_->rows(), (Rows{"Browser|One|0|60", "Browser|Two|60|open"}));
  wait(55);
  show("Browser", "Three");
  wait(4);
  showNothing();
  EXPECT_EQ(written_->rows(), (Rows{"Browser|One|0|60", "Browser|Two|60|124"}));
}

TEST_F(FrontSessionsTest, ATitleThatGoesSoonJoinsTheSessionBefore) {
  open(Titles::each);
  show("Browser", "A");
  wait(10);
  show("Browser", "B");
  wait(2);
  show("Browser", "A");
  wait(20);
  show("Browser", "Loading");
  wait(1);
  show("Browser", "C");
  wait(10);
  EXPECT_EQ(written_->rows(), (Rows{"Browser|A|0|33", "Browser|C|33|open"}));
}

TEST_F(FrontSessionsTest, AFirstTitleThatGoesSoonGivesItsTimeToTheNext) {
  open(Titles::each);
  show("Browser", "Loading");
  wait(2);
  show("Browser", "Page");
  wait(10);
  EXPECT_EQ(written_->rows(), Rows{"Browser|Page|0|open"});
  showNothing();

  show("Browser", "Loading");
  wait(2);
  show("Browser", "Other page");
  wait(2);
  showNothing();
  EXPECT_EQ(written_->rows().back(), "Browser|Other page|12|16");
}

TEST_F(FrontSessionsTest, ASpinnerIsOneSessionAndFewWrites) {
  open(Titles::each);
  for (int i = 0; i < 583; ++i) {
    show("Terminal", ("working " + std::to_string(i)).c_str());
    loop_.advance(30.5 / 583);
    if (i % 97 == 96) sessions_->storeLatestTitle();
  }
  showNothing();
  EXPECT_EQ(written_->rows(), Rows{"Terminal|working 582|0|30"});
  EXPECT_LE(written_->titleWrites, 8);
}

TEST_F(FrontSessionsTest, ASpinnerAfterATitleThatLastedJoinsIt) {
  open(Titles::each);
  show("Terminal", "shell");
  wait(60);
  for (int i = 0; i < 60; ++i) {
    show("Terminal", ("working " + std::to_string(i)).c_str());
    wait(0.5);
  }
  show("Terminal", "shell");
  wait(30);
  showNothing();
  EXPECT_EQ(written_->rows(), Rows{"Terminal|shell|0|120"});
}

TEST_F(FrontSessionsTest, EachActivationIsASessionHoweverShort) {
  open(Titles::each);
  for (const char* app : {"A", "B", "A"}) {
    show(app, app);
    wait(1);
  }
  EXPECT_EQ(written_->rows(), (Rows{"A|A|0|1", "B|B|1|2", "A|A|2|open"}));
}

TEST_F(FrontSessionsTest, TheLastTitleOfAnActivationIsKeptWhereThatIsWanted) {
  open(Titles::last);
  show("Browser", "One");
  wait(60);
  show("Browser", "Two");
  wait(60);
  EXPECT_EQ(written_->rows(), Rows{"Browser|Two|0|open"});
  show("Browser", "Three");
  show("Mail", "Inbox");
  EXPECT_EQ(written_->rows(), (Rows{"Browser|Three|0|120", "Mail|Inbox|120|open"}));
}

TEST_F(FrontSessionsTest, NoTitleIsKeptWhereNoneIsWanted) {
  open(Titles::none);
  show("Browser", "One");
  wait(60);
  show("Browser", "Two");
  wait(60);
  EXPECT_EQ(written_->rows(), Rows{"Browser|-|0|open"});
}

TEST_F(FrontSessionsTest, WhatIsToldLateCountsFromWhenItHappened) {
  open(Titles::each);
  show("Editor", "a.txt");
  wait(100);
  sessions_->show(std::nullopt, Moment{40});
  EXPECT_EQ(written_->rows(), Rows{"Editor|a.txt|0|40"});
}

}  // namespace
}  // namespace tessum
