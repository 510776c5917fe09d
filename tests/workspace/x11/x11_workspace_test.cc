#include "core/workspace/x11/x11_workspace.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <utility>

#include "tests/support/x11_desktop.h"

namespace tessum {
namespace {

class WorkspaceX11Test : public testing::Test {
 protected:
  void open() {
    workspace_ = openX11Workspace(loop_, desktop_.display(), DesktopEntries({}, {}),
                                  [this](const auto& notice) { notices_.push_back(notice.text); });
  }

  // Runs the loop once, and until `isDone` holds, for a minute at most.
  template <typename Predicate>
  [[nodiscard]] bool runUntil(Predicate isDone) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    do {
      const auto timer = loop_.startTimer(0.01, [this] { loop_.quit(); });
      loop_.run();
      loop_.invalidateTimer(timer);
    } while (!isDone() && std::chrono::steady_clock::now() < deadline);
    return isDone();
  }

  std::optional<std::string> title() {
    const auto front = workspace_->frontmostApplication();
    return front ? workspace_->focusedWindowTitle(*front) : std::nullopt;
  }

  std::string front() {
    const auto application = workspace_->frontmostApplication();
    return application ? application->localizedName.value_or("?") : "none";
  }

  Desktop desktop_;
  SystemMainLoop loop_;
  std::vector<std::string> notices_;
  std::unique_ptr<Workspace> workspace_;
};

TEST_F(WorkspaceX11Test, KnowsWhatIsInFrontWhenItIsOpened) {
  desktop_.startWindowManager();
  desktop_.addWindow("App");
  open();
  EXPECT_EQ(workspace_->frontmostApplication(),
            (RunningApplication{"App", std::nullopt, getpid()}));
  EXPECT_EQ(title(), std::nullopt);
}

TEST_F(WorkspaceX11Test, ReadsTitlesInAllTheirEncodings) {
  desktop_.startWindowManager();
  const auto window = desktop_.addWindow("App");
  open();
  desktop_.setProperty(window, "WM_NAME", "STRING", "caf\xE9");
  EXPECT_EQ(title(), "caf\u00E9");
  desktop_.setProperty(window, "WM_NAME", "COMPOUND_TEXT", "\x1B-L\xBF\xE0");
  EXPECT_EQ(title(), "\u041F\u0440");
  desktop_.setProperty(window, "_NET_WM_NAME", "UTF8_STRING", "\u65E5\u672C\xFF");
  EXPECT_EQ(title(), "\u65E5\u672C\uFFFD");
  desktop_.setProperty(window, "_NET_WM_NAME", "UTF8_STRING", "");
  EXPECT_EQ(title(), "");
  EXPECT_EQ(workspace_->focusedWindowTitle(RunningApplication{"Other", {}, {}}), std::nullopt);
}

TEST_F(WorkspaceX11Test, TellsOfActivationsAndNotOfWindowsOfTheSameApplication) {
  desktop_.startWindowManager();
  const auto first = desktop_.addWindow("App");
  open();
  std::vector<std::string> told;
  workspace_->addActivationObserver([&](const auto& application) {
    told.push_back(application ? application->localizedName.value_or("?") : "none");
  });
  const auto removed =
      workspace_->addActivationObserver([&](const auto&) { told.emplace_back("removed"); });
  workspace_->removeObserver(removed);

  const auto second = desktop_.addWindow("App");
  desktop_.setProperty(second, "WM_NAME", "STRING", "second");
  ASSERT_TRUE(runUntil([&] { return title() == "second"; }));
  const auto other = desktop_.addWindow("Other");
  ASSERT_TRUE(runUntil([&] { return front() == "Other"; }));
  desktop_.removeWindow(other);
  ASSERT_TRUE(runUntil([&] { return front() == "App"; }));
  desktop_.removeWindow(second);
  desktop_.removeWindow(first);
  ASSERT_TRUE(runUntil([&] { return front() == "none"; }));
  EXPECT_EQ(told, (std::vector<std::string>{"Other", "App", "none"}));
}

TEST_F(WorkspaceX11Test, AWindowThatSaysNothingHasTheNameOfItsProcess) {
  desktop_.startWindowManager();
  desktop_.addWindow("");
  open();
  EXPECT_EQ(front(), "test_workspace");
}

TEST_F(WorkspaceX11Test, AWindowThatIsGoneCountsAsNone) {
  // Without a window manager nobody corrects what is published.
  const auto window = desktop_.addWindow("App");
  desktop_.removeWindow(window);
  desktop_.publishActiveWindow(window);
  open();
  EXPECT_EQ(front(), "none");
}

TEST_F(WorkspaceX11Test, AWindowManagerNeedNotHaveAWindowForTheCheck) {
  const auto window = desktop_.addWindow("App");
  desktop_.publishActiveWindow(window);
  open();
  EXPECT_EQ(front(), "App");
  ASSERT_TRUE(runUntil([&] { return true; }));
  EXPECT_TRUE(notices_.empty());
}

class ActiveWindowsX11Test : public WorkspaceX11Test {
 protected:
  using Told = std::vector<std::string>;

  // Applications are called by their window's class, and told with the title that they have then.
  void SetUp() override {
    for (const char* name : {"A", "B", "C"}) {
      windows_.push_back(desktop_.addWindow(name));
      desktop_.setProperty(windows_.back(), "WM_NAME", "STRING", std::string("title of ") + name);
    }
    last_ = desktop_.addWindow("Last");
    desktop_.manageWindows();
    desktop_.publishActiveWindow(windows_[0]);
    open();
    ASSERT_TRUE(runUntil([&] { return true; }));
    workspace_->addActivationObserver([this](const auto& application) {
      told_.push_back(!application ? "none"
                                   : application->localizedName.value_or("?") + ": " +
                                         workspace_->focusedWindowTitle(*application).value_or(""));
    });
  }

  // What has been told once the last window was.
  [[nodiscard]] Told toldUntilLast() {
    desktop_.publishActiveWindow(last_);
    EXPECT_TRUE(runUntil([&] { return !told_.empty() && told_.back() == "Last: "; }));
    return std::exchange(told_, {});
  }

  std::vector<xcb_window_t> windows_;
  xcb_window_t last_ = 0;
  Told told_;
};

TEST_F(ActiveWindowsX11Test, EachIsToldWithItsOwnTitle) {
  for (int i = 1; i <= 100; ++i) {
    const std::string name(1, "ABC"[i % 3]);
    desktop_.publishActiveWindow(windows_.at(static_cast<std::size_t>(i % 3)));
    ASSERT_TRUE(runUntil([&] { return told_.size() == static_cast<std::size_t>(i); }));
    EXPECT_EQ(told_.back(), name + ": title of " + name);
  }
}

TEST_F(ActiveWindowsX11Test, OfManyAtOnceTheLastIsTold) {
  for (int i = 0; i <= 100; ++i) {
    desktop_.publishActiveWindow(windows_.at(static_cast<std::size_t>(i % 3)));
  }
  EXPECT_EQ(toldUntilLast(), Told{"Last: "});
}

TEST_F(ActiveWindowsX11Test, APanelThatTakesTheKeyboardIsNotTold) {
  const xcb_window_t panel = desktop_.addWindow("Panel");
  desktop_.focus(panel);
  EXPECT_EQ(toldUntilLast(), Told{"Last: "});
}

TEST_F(ActiveWindowsX11Test, ANewWindowManagerIsFollowedLikeTheFirst) {
  for (int i = 0; i < 2; ++i) {
    desktop_.manageWindows();
    desktop_.publishActiveWindow(windows_[1]);
    ASSERT_TRUE(runUntil([&] { return told_ == Told{"B: title of B"}; }));
    EXPECT_EQ(toldUntilLast(), (Told{"B: title of B", "Last: "}));
  }
}

TEST_F(WorkspaceX11Test, AnEventThatComesWithATitleIsNotForgotten) {
  desktop_.startWindowManager();
  desktop_.addWindow("App");
  open();
  ASSERT_TRUE(runUntil([&] { return true; }));
  desktop_.addWindow("Other");
  static_cast<void>(title());  // takes the event from the connection along with its reply
  EXPECT_TRUE(runUntil([&] { return front() == "Other"; }));
}

TEST_F(WorkspaceX11Test, EverythingIsAbsentOnceTheDisplayIsGone) {
  desktop_.startWindowManager();
  desktop_.addWindow("App");
  open();
  desktop_.killServer();
  ASSERT_TRUE(runUntil([&] { return !notices_.empty(); }));
  EXPECT_EQ(front(), "none");
  EXPECT_EQ(notices_.size(), 1U);
  EXPECT_EQ(workspace_->focusedWindowTitle({"App", std::nullopt, getpid()}), std::nullopt);
}

TEST_F(WorkspaceX11Test, CanGoWhileTasksOfItsOwnWait) {
  desktop_.startWindowManager();
  open();
  workspace_.reset();
  loop_.post([this] { loop_.quit(); });
  loop_.run();
}

}  // namespace
}  // namespace tessum
