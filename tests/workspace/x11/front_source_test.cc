#include "core/workspace/x11/front_source.h"

#include <unistd.h>

#include "tests/workspace/x11/x11_test.h"

namespace tessum {
namespace {

using Told = std::vector<std::string>;

// With a real window manager.
class FrontSourceX11Test : public X11FrontTest {
 protected:
  void SetUp() override { desktop_.startWindowManager(); }
};

TEST_F(FrontSourceX11Test, TellsWhatIsInFrontWhenItStarts) {
  desktop_.addWindow("App");
  const Moment before = clock_.now();
  start();
  ASSERT_EQ(tellings_.size(), 1U);
  EXPECT_EQ(tellings_[0].front,
            (Front{{"App", std::nullopt, static_cast<std::int32_t>(getpid())}, std::nullopt}));
  EXPECT_GE(tellings_[0].since.seconds, before.seconds);
  EXPECT_EQ(source_->way(), "X11");
}

TEST_F(FrontSourceX11Test, TellsThatNothingIsInFrontWhenItStarts) {
  start();
  EXPECT_EQ(told(), Told{"none"});
  ASSERT_TRUE(runUntil([&] { return true; }));
  EXPECT_TRUE(notices_.empty());
}

TEST_F(FrontSourceX11Test, TellsOfApplicationsAndTheirTitles) {
  const auto first = desktop_.addWindow("App");
  start();
  const auto second = desktop_.addWindow("App");
  desktop_.setProperty(second, "WM_NAME", "STRING", "second");
  ASSERT_TRUE(comesTo("App: second"));
  const auto other = desktop_.addWindow("Other");
  ASSERT_TRUE(comesTo("Other"));
  desktop_.removeWindow(other);
  ASSERT_TRUE(comesTo("App: second"));
  desktop_.removeWindow(second);
  ASSERT_TRUE(comesTo("App"));
  desktop_.removeWindow(first);
  ASSERT_TRUE(comesTo("none"));
  EXPECT_EQ(told(), (Told{"App", "App: second", "Other", "App: second", "App", "none"}));
}

TEST_F(FrontSourceX11Test, ReadsTitlesInAllTheirEncodings) {
  const auto window = desktop_.addWindow("App");
  start();
  desktop_.setProperty(window, "WM_NAME", "STRING", "caf\xE9");
  EXPECT_TRUE(comesTo("App: caf\u00E9"));
  desktop_.setProperty(window, "WM_NAME", "COMPOUND_TEXT", "\x1B-L\xBF\xE0");
  EXPECT_TRUE(comesTo("App: \u041F\u0440"));
  desktop_.setProperty(window, "_NET_WM_NAME", "UTF8_STRING", "\u65E5\u672C\xFF");
  EXPECT_TRUE(comesTo("App: \u65E5\u672C\uFFFD"));
  desktop_.setProperty(window, "_NET_WM_NAME", "UTF8_STRING", "");
  EXPECT_TRUE(comesTo("App")) << "an empty title is none";
}

TEST_F(FrontSourceX11Test, TellsOfATitleOnlyWhenItDiffers) {
  const auto window = desktop_.addWindow("App");
  start();
  for (const char* title : {"one", "one", "two", "two"}) {
    desktop_.setProperty(window, "_NET_WM_NAME", "UTF8_STRING", title);
    desktop_.setProperty(window, "WM_NAME", "STRING", title);
    desktop_.setProperty(window, "_TEST", "STRING", title);
    ASSERT_TRUE(comesTo(std::string("App: ") + title));
  }
  EXPECT_EQ(told(), (Told{"App", "App: one", "App: two"}));
}

TEST_F(FrontSourceX11Test, ATitleOfAnotherWindowIsNotTold) {
  const auto below = desktop_.addWindow("Below");
  desktop_.addWindow("App");
  start();
  desktop_.setProperty(below, "_NET_WM_NAME", "UTF8_STRING", "secret");
  ASSERT_TRUE(runUntil([&] { return true; }));
  EXPECT_EQ(told(), Told{"App"});
}

TEST_F(FrontSourceX11Test, AClassThatComesLateIsTold) {
  const auto window = desktop_.addWindow("");
  start();
  EXPECT_EQ(front(), "test_workspace") << "the name of the process";
  desktop_.setProperty(window, "WM_CLASS", "STRING", std::string("late\0Late\0", 10));
  EXPECT_TRUE(comesTo("Late"));
}

TEST_F(FrontSourceX11Test, AnEventThatComesWithAnAnswerIsNotForgotten) {
  const auto window = desktop_.addWindow("App");
  start();
  for (int i = 0; i < 200; ++i) {
    const std::string title = std::to_string(i);
    desktop_.setProperty(window, "WM_NAME", "STRING", title);
    loop_.post([this] { loop_.quit(); });
    loop_.run();  // reads or asks while the next title is set
    desktop_.setProperty(window, "WM_NAME", "STRING", title + " again");
    ASSERT_TRUE(comesTo("App: " + title + " again"));
  }
}

TEST_F(FrontSourceX11Test, AChangeCountsFromItsEventAndNotFromItsReading) {
  const auto window = desktop_.addWindow("App");
  start();
  for (const char* title : {"a", "b", "c", "d"}) {  // so that one of them is read fast
    desktop_.setProperty(window, "WM_NAME", "STRING", title);
    ASSERT_TRUE(comesTo(std::string("App: ") + title));
  }
  desktop_.setProperty(window, "WM_NAME", "STRING", "late");
  const Moment changed = clock_.now();
  letPass(0.3);
  const auto other = desktop_.addWindow("Other");
  const Moment activated = clock_.now();
  letPass(0.3);
  ASSERT_TRUE(comesTo("Other"));
  EXPECT_LE(tellings_.back().since.seconds, activated.seconds + 0.1);
  desktop_.removeWindow(other);
  ASSERT_TRUE(comesTo("App: late"));

  desktop_.setProperty(window, "WM_NAME", "STRING", "later");
  const Moment changedAgain = clock_.now();
  letPass(0.3);
  ASSERT_TRUE(comesTo("App: later"));
  EXPECT_LE(tellings_.back().since.seconds, changedAgain.seconds + 0.1);
  EXPECT_GE(tellings_.back().since.seconds, changed.seconds);
}

TEST_F(FrontSourceX11Test, NothingCountsFromTheMomentTheWindowWent) {
  const auto window = desktop_.addWindow("App");
  start();
  ASSERT_TRUE(runUntil([&] { return true; }));
  desktop_.removeWindow(window);
  ASSERT_TRUE(comesTo("none"));
  EXPECT_GE(secondsBetween(tellings_.back().since, tellings_.back().toldAt), 0.45);
}

TEST_F(FrontSourceX11Test, SaysSoOnceWhenTheDisplayIsGone) {
  desktop_.addWindow("App");
  start();
  desktop_.killServer();
  ASSERT_TRUE(runUntil([&] { return !notices_.empty(); }));
  ASSERT_TRUE(runUntil([&] { return true; }));
  EXPECT_EQ(told(), (Told{"App", "none"}));
  EXPECT_EQ(notices_, Told{"The X11 display has gone away; nothing more can be recorded."});
}

TEST_F(FrontSourceX11Test, CanGoWhileTasksOfItsOwnWait) {
  const auto window = desktop_.addWindow("App");
  start();
  desktop_.setProperty(window, "WM_NAME", "STRING", "title");
  source_.reset();
  ASSERT_TRUE(runUntil([&] { return true; }));
  EXPECT_EQ(told(), Told{"App"});
}

}  // namespace
}  // namespace tessum
