// Runs the Objective-C++ file as macOS would compile it, with the fake desktop behind it.

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "core/workspace/system_workspace.h"
#include "tests/macos/objc/fake_desktop.h"

namespace tessum {
namespace {

using fake::makeApplication;

class MacWorkspace : public testing::Test {
 protected:
  MacWorkspace() : workspace_(openSystemWorkspace(loop_, [](const WorkspaceNotice&) {})) {}
  ~MacWorkspace() override {
    workspace_.reset();
    desktop_.runMainQueue();
    desktop_.setFrontmost(nullptr);
    EXPECT_EQ(desktop_.observers(), 0U);
    EXPECT_EQ(fake::liveObjects(), 0) << "something leaked or was destroyed twice";
  }

  using Seen = std::vector<std::optional<RunningApplication>>;

  // Registers a handler that appends to `seen`.
  Workspace::ObserverToken observe(Seen& seen) {
    return workspace_->addActivationObserver(
        [&seen](const std::optional<RunningApplication>& application) {
          seen.push_back(application);
        });
  }

  fake::Desktop desktop_;
  SystemMainLoop loop_;
  std::unique_ptr<Workspace> workspace_;
};

TEST_F(MacWorkspace, DescribesTheActivatedApplication) {
  Seen seen;
  observe(seen);
  desktop_.postActivation(makeApplication(u"Éditeur \U0001F4DD", u"org.example.Editor", 42));
  desktop_.runMainQueue();
  EXPECT_EQ(seen, Seen({RunningApplication{"Éditeur \U0001F4DD", "org.example.Editor", 42}}));
}

TEST_F(MacWorkspace, LeavesOutWhatTheApplicationDoesNotTell) {
  Seen seen;
  observe(seen);
  desktop_.postActivation(makeApplication(std::nullopt, std::nullopt, 43));
  desktop_.runMainQueue();
  EXPECT_EQ(seen, Seen({RunningApplication{std::nullopt, std::nullopt, 43}}));
}

TEST_F(MacWorkspace, PassesOnAnActivationWithoutAnApplication) {
  Seen seen;
  observe(seen);
  desktop_.postActivation(nullptr);
  desktop_.runMainQueue();
  EXPECT_EQ(seen, Seen({std::nullopt}));
}

TEST_F(MacWorkspace, TakesNoOtherObjectForAnApplication) {
  Seen seen;
  observe(seen);
  desktop_.postActivation(fake::makeText(u"Editor"));
  desktop_.runMainQueue();
  EXPECT_EQ(seen, Seen({std::nullopt}));
}

TEST_F(MacWorkspace, CallsTheHandlerFromTheMainQueueOnly) {
  Seen seen;
  observe(seen);
  desktop_.postActivation(makeApplication(u"Editor", std::nullopt, 42));
  EXPECT_TRUE(seen.empty());
  desktop_.runMainQueue();
  EXPECT_EQ(seen.size(), 1U);
}

TEST_F(MacWorkspace, CallsEveryObserver) {
  Seen first;
  Seen second;
  observe(first);
  const auto token = observe(second);
  EXPECT_EQ(desktop_.observers(), 2U);
  workspace_->removeObserver(token);
  EXPECT_EQ(desktop_.observers(), 1U);
  desktop_.postActivation(nullptr);
  desktop_.runMainQueue();
  EXPECT_EQ(first.size(), 1U);
  EXPECT_TRUE(second.empty());
}

TEST_F(MacWorkspace, IsSilentAboutAnActivationThatWaitsWhenTheObserverIsRemoved) {
  Seen seen;
  const auto token = observe(seen);
  desktop_.postActivation(makeApplication(u"Late", std::nullopt, 1));
  workspace_->removeObserver(token);
  EXPECT_EQ(desktop_.observers(), 0U);
  desktop_.runMainQueue();
  EXPECT_TRUE(seen.empty());
}

TEST_F(MacWorkspace, RemovesAnObserverOnce) {
  Seen seen;
  const auto token = observe(seen);
  workspace_->removeObserver(token);
  workspace_->removeObserver(token);  // the fake centre would stop the process
  EXPECT_EQ(desktop_.observers(), 0U);
}

TEST_F(MacWorkspace, RemovesItsObserversWhenItIsDestroyed) {
  Seen seen;
  observe(seen);
  observe(seen);
  desktop_.postActivation(makeApplication(u"Late", std::nullopt, 1));
  workspace_.reset();
  EXPECT_EQ(desktop_.observers(), 0U);
  desktop_.runMainQueue();
  EXPECT_TRUE(seen.empty());
}

TEST_F(MacWorkspace, DoesNotKeepTheHandlerForAnActivationThatWaits) {
  auto held = std::make_shared<int>();
  const auto token = workspace_->addActivationObserver([held](const auto&) {});
  desktop_.postActivation(nullptr);  // keeps the block until the queue has run
  workspace_->removeObserver(token);
  EXPECT_EQ(held.use_count(), 1);
}

TEST_F(MacWorkspace, LetsAHandlerRemoveItself) {
  auto held = std::make_shared<int>();
  Workspace::ObserverToken token{};
  bool isHeldAfterRemoval = false;
  token = workspace_->addActivationObserver([&, held](const auto&) {
    workspace_->removeObserver(token);
    isHeldAfterRemoval = held.use_count() == 2;
  });
  desktop_.postActivation(nullptr);
  desktop_.runMainQueue();
  EXPECT_TRUE(isHeldAfterRemoval);
  EXPECT_EQ(held.use_count(), 1);
}

TEST_F(MacWorkspace, DescribesTheFrontmostApplication) {
  desktop_.setFrontmost(makeApplication(u"Browser", u"org.example.Browser", 7));
  EXPECT_EQ(workspace_->frontmostApplication(),
            (RunningApplication{"Browser", "org.example.Browser", 7}));
}

TEST_F(MacWorkspace, HasNoFrontmostApplicationWhenNoneIsActive) {
  EXPECT_EQ(workspace_->frontmostApplication(), std::nullopt);
}

TEST_F(MacWorkspace, AsksTheApplicationsProcessForTheTitle) {
  desktop_.attribute = [](int process, const std::string& name) -> fake::Desktop::Attribute {
    if (process == 7 && name == "AXFocusedWindow") return {0, fake::makeWindow()};
    if (process == fake::kWindow && name == "AXTitle") return {0, fake::makeText(u"Notes")};
    return {-25205, nullptr};
  };
  EXPECT_EQ(workspace_->focusedWindowTitle({{}, {}, 7}), "Notes");
  EXPECT_EQ(workspace_->focusedWindowTitle({{}, {}, 8}), std::nullopt);
  EXPECT_EQ(workspace_->focusedWindowTitle({{}, {}, std::nullopt}), std::nullopt);
}

}  // namespace
}  // namespace tessum
