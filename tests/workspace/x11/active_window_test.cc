// What window managers publish, played by the test.

#include "tests/workspace/x11/x11_test.h"

namespace tessum {
namespace {

using Told = std::vector<std::string>;

const char kNoManager[] =
    "No window manager reports the active window; recording continues when one does.";

TEST_F(X11FrontTest, WithoutAWindowManagerNothingIsInFront) {
  const auto window = desktop_.addWindow("App");
  start();
  EXPECT_EQ(told(), Told{"none"});
  EXPECT_EQ(notices_, Told{kNoManager});
  desktop_.manageWindows();
  desktop_.publishActiveWindow(window);
  EXPECT_TRUE(comesTo("App"));
}

TEST_F(X11FrontTest, AWindowManagerNeedNotHaveAWindowForTheCheck) {
  const auto window = desktop_.addWindow("App");
  desktop_.publishActiveWindow(window);
  start();
  ASSERT_TRUE(runUntil([&] { return true; }));
  EXPECT_EQ(told(), Told{"App"});
  EXPECT_TRUE(notices_.empty());
}

TEST_F(X11FrontTest, WhatAWindowManagerLeavesBehindDoesNotCount) {
  const auto window = desktop_.addWindow("App");
  const auto manager = desktop_.manageWindows();
  desktop_.publishActiveWindow(window);
  desktop_.removeWindow(manager);
  start();
  EXPECT_EQ(told(), Told{"none"});
}

class ActiveWindowX11Test : public X11FrontTest {
 protected:
  // Applications are named after their window's class.
  void SetUp() override {
    for (const char* name : {"A", "B", "C"}) {
      windows_.push_back(desktop_.addWindow(name));
      desktop_.setProperty(windows_.back(), "WM_NAME", "STRING", std::string("title of ") + name);
    }
    manager_ = desktop_.manageWindows();
    desktop_.publishActiveWindow(windows_[0]);
    start();
    ASSERT_EQ(told(), Told{"A: title of A"});
    ASSERT_TRUE(runUntil([&] { return true; }));
  }

  std::vector<xcb_window_t> windows_;
  xcb_window_t manager_ = 0;
};

TEST_F(ActiveWindowX11Test, EachIsToldWithItsOwnTitle) {
  Told expected;
  for (std::size_t i = 1; i <= 100; ++i) {
    const std::string name(1, "ABC"[i % 3]);
    expected.push_back(name + ": title of " + name);
    desktop_.publishActiveWindow(windows_[i % 3]);
    ASSERT_TRUE(comesTo(expected.back()));
  }
  EXPECT_EQ(told(), expected);
}

TEST_F(ActiveWindowX11Test, OfManyAtOnceTheLastIsTold) {
  for (std::size_t i = 1; i <= 100; ++i) desktop_.publishActiveWindow(windows_[i % 3]);
  ASSERT_TRUE(comesTo("B: title of B"));
  EXPECT_EQ(told(), Told{"B: title of B"});
}

TEST_F(ActiveWindowX11Test, AWindowThatIsGoneCountsAsNone) {
  desktop_.removeWindow(windows_[1]);
  desktop_.publishActiveWindow(windows_[1]);  // and nothing corrects it
  ASSERT_TRUE(comesTo("none"));
  desktop_.publishActiveWindow(windows_[2]);
  EXPECT_TRUE(comesTo("C: title of C"));
}

TEST_F(ActiveWindowX11Test, AWindowThatGoesCountsAsNoneThoughItStaysPublished) {
  desktop_.removeWindow(windows_[0]);
  EXPECT_TRUE(comesTo("none"));
}

TEST_F(ActiveWindowX11Test, APanelThatTakesTheKeyboardIsNotTold) {
  const xcb_window_t panel = desktop_.addWindow("Panel");
  desktop_.focus(panel);
  desktop_.publishActiveWindow(windows_[1]);
  ASSERT_TRUE(comesTo("B: title of B"));
  EXPECT_EQ(told(), Told{"B: title of B"});
}

TEST_F(ActiveWindowX11Test, AWindowThatSaysNothingCountsOnlyWhenItStays) {
  const xcb_window_t bare = desktop_.addBareWindow();
  desktop_.publishActiveWindow(bare);
  ASSERT_TRUE(runUntil([&] { return true; }));
  desktop_.publishActiveWindow(windows_[1]);
  ASSERT_TRUE(comesTo("B: title of B"));
  EXPECT_EQ(told(), Told{"B: title of B"});
  desktop_.publishActiveWindow(bare);
  ASSERT_TRUE(comesTo("?"));
  EXPECT_GE(secondsBetween(tellings_.back().since, tellings_.back().toldAt), 0.45);
}

TEST_F(ActiveWindowX11Test, ANewWindowManagerIsFollowedLikeTheFirst) {
  for (int i = 0; i < 2; ++i) {
    desktop_.manageWindows();
    desktop_.publishActiveWindow(windows_[1]);
    ASSERT_TRUE(comesTo("B: title of B"));
    desktop_.publishActiveWindow(windows_[2]);
    ASSERT_TRUE(comesTo("C: title of C"));
  }
  EXPECT_TRUE(notices_.empty());
}

TEST_F(ActiveWindowX11Test, TheEndOfTheWindowManagerIsToldOnce) {
  desktop_.removeWindow(manager_);
  ASSERT_TRUE(comesTo("none"));
  EXPECT_EQ(notices_, Told{kNoManager});
  desktop_.publishActiveWindow(windows_[1]);  // with no window manager running
  ASSERT_TRUE(runUntil([&] { return true; }));
  EXPECT_EQ(told(), Told{"none"});
}

TEST_F(ActiveWindowX11Test, TheRootWindowAndTheManagersOwnAreNobodys) {
  for (const auto& [window, name] :
       {std::pair{desktop_.rootWindow(), "B"}, std::pair{manager_, "C"}}) {
    desktop_.publishActiveWindow(window);
    ASSERT_TRUE(comesTo("none"));
    desktop_.publishActiveWindow(windows_[std::string(name) == "B" ? 1 : 2]);
    ASSERT_TRUE(comesTo(std::string(name) + ": title of " + name)) << "it is watched no more";
  }
  desktop_.removeWindow(manager_);
  ASSERT_TRUE(comesTo("none"));
  EXPECT_EQ(notices_, Told{kNoManager}) << "the manager's window is still watched";
}

TEST_F(ActiveWindowX11Test, TheRootWindowMayBeTheOneForTheCheck) {
  desktop_.publishManager(desktop_.rootWindow());
  for (const std::size_t i : {1U, 2U, 0U}) {
    const std::string name(1, "ABC"[i]);
    desktop_.publishActiveWindow(windows_[i]);
    ASSERT_TRUE(comesTo(name + ": title of " + name));
  }
}

}  // namespace
}  // namespace tessum
