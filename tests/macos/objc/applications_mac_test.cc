// Runs the Objective-C++ file as macOS would compile it, with the fake desktop behind it.

#include "core/workspace/mac/applications.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "tests/macos/objc/fake_desktop.h"

namespace tessum {
namespace {

using fake::makeApplication;

using Seen = std::vector<std::optional<RunningApplication>>;

class Applications : public testing::Test {
 protected:
  ~Applications() override {
    observer_.reset();
    desktop_.runMainQueue();
    desktop_.setFrontmost(nullptr);
    EXPECT_EQ(desktop_.observers(), 0U);
    EXPECT_EQ(fake::liveObjects(), 0) << "something leaked or was destroyed twice";
  }

  // What is seen of an activation with that value in its user info.
  Seen seenOf(fake::Object* value) {
    desktop_.postActivation(value);
    desktop_.runMainQueue();
    return std::exchange(seen_, {});
  }

  Seen seen_;
  fake::Desktop desktop_;
  std::unique_ptr<ActivationObserver> observer_ = std::make_unique<ActivationObserver>(
      [this](const auto& application) { seen_.push_back(application); });
};

TEST_F(Applications, DescribesTheActivatedApplication) {
  EXPECT_EQ(seenOf(makeApplication(u"Éditeur \U0001F4DD", u"org.example.Editor", 42)),
            Seen({RunningApplication{"Éditeur \U0001F4DD", "org.example.Editor", 42}}));
}

TEST_F(Applications, LeavesOutWhatTheApplicationDoesNotTell) {
  EXPECT_EQ(seenOf(makeApplication(std::nullopt, std::nullopt, 43)),
            Seen({RunningApplication{std::nullopt, std::nullopt, 43}}));
}

TEST_F(Applications, PassesOnAnActivationWithoutAnApplication) {
  EXPECT_EQ(seenOf(nullptr), Seen({std::nullopt}));
}

TEST_F(Applications, TakesNoOtherObjectForAnApplication) {
  EXPECT_EQ(seenOf(fake::makeText(u"Editor")), Seen({std::nullopt}));
}

TEST_F(Applications, CallsTheHandlerFromTheMainQueueOnly) {
  desktop_.postActivation(makeApplication(u"Editor", std::nullopt, 42));
  EXPECT_TRUE(seen_.empty());
  desktop_.runMainQueue();
  EXPECT_EQ(seen_.size(), 1U);
}

TEST_F(Applications, CallsEveryObserver) {
  Seen other;
  const ActivationObserver observer([&](const auto& application) { other.push_back(application); });
  EXPECT_EQ(desktop_.observers(), 2U);
  EXPECT_EQ(seenOf(nullptr).size(), 1U);
  EXPECT_EQ(other.size(), 1U);
}

TEST_F(Applications, IsSilentAboutAnActivationThatWaitsWhenTheObserverGoes) {
  desktop_.postActivation(makeApplication(u"Late", std::nullopt, 1));
  observer_.reset();
  EXPECT_EQ(desktop_.observers(), 0U);
  desktop_.runMainQueue();
  EXPECT_TRUE(seen_.empty());
}

TEST_F(Applications, DoesNotKeepTheHandlerForAnActivationThatWaits) {
  auto held = std::make_shared<int>();
  observer_ = std::make_unique<ActivationObserver>([held](const auto&) {});
  desktop_.postActivation(nullptr);  // keeps the block until the queue has run
  observer_.reset();
  EXPECT_EQ(held.use_count(), 1);
}

TEST_F(Applications, LetsAHandlerEndItsObserver) {
  auto held = std::make_shared<int>();
  bool isHeldAfterTheEnd = false;
  observer_ = std::make_unique<ActivationObserver>([this, &isHeldAfterTheEnd, held](const auto&) {
    observer_.reset();
    isHeldAfterTheEnd = held.use_count() == 2;
  });
  desktop_.postActivation(nullptr);
  desktop_.runMainQueue();
  EXPECT_TRUE(isHeldAfterTheEnd);
  EXPECT_EQ(held.use_count(), 1);
}

TEST_F(Applications, TheActiveOneIsDescribed) {
  desktop_.setFrontmost(makeApplication(u"Browser", u"org.example.Browser", 7));
  EXPECT_EQ(activeApplication(), (RunningApplication{"Browser", "org.example.Browser", 7}));
}

TEST_F(Applications, NoneMayBeActive) {
  EXPECT_EQ(activeApplication(), std::nullopt);
}

}  // namespace
}  // namespace tessum
