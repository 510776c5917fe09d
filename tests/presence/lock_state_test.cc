#include "core/presence/linux/lock_state.h"

#include <gtest/gtest.h>

#include "tests/support/fakes/fake_main_loop.h"

namespace tessum {
namespace {

class LockStateTest : public testing::Test {
 protected:
  FakeClock clock_;
  FakeMainLoop loop_{clock_};
  std::string told_;  // l for locked, u for unlocked
  std::unique_ptr<LockState> state_ =
      std::make_unique<LockState>(loop_, [this](bool isLocked) { told_ += isLocked ? 'l' : 'u'; });
};

TEST_F(LockStateTest, IsLockedWhileAnySourceSaysSo) {
  state_->set("one", false);
  EXPECT_EQ(told_, "");
  state_->set("one", true);
  EXPECT_EQ(told_, "l");
  state_->set("one", true);
  state_->set("other", true);
  state_->set("one", false);
  EXPECT_EQ(told_, "l");
  state_->set("other", false);
  EXPECT_EQ(told_, "lu");
}

TEST_F(LockStateTest, ARequestCountsUntilTheLockerHasAnswered) {
  state_->requestLock();
  EXPECT_EQ(told_, "l");
  loop_.advance(1);
  state_->set("one", true);
  loop_.advance(60);
  EXPECT_EQ(told_, "l");
  state_->set("one", false);
  EXPECT_EQ(told_, "lu");
}

TEST_F(LockStateTest, ARequestWithoutALockerIsForgotten) {
  state_->requestLock();
  loop_.advance(LockState::kRequestSeconds - 0.5);
  state_->requestLock();
  loop_.advance(LockState::kRequestSeconds - 0.5);
  EXPECT_EQ(told_, "l");
  loop_.advance(0.5);
  EXPECT_EQ(told_, "lu");
}

TEST_F(LockStateTest, UnlockingEndsARequest) {
  state_->requestLock();
  state_->set("one", false);  // it was not locked yet
  EXPECT_EQ(told_, "l");
  state_->set("one", true);
  state_->set("one", false);
  EXPECT_EQ(told_, "lu");
  state_->requestLock();
  state_->requestUnlock();
  EXPECT_EQ(told_, "lulu");
  EXPECT_TRUE(loop_.timerIntervals().empty());
}

TEST_F(LockStateTest, ARequestToUnlockIsNotYetAnUnlockedScreen) {
  state_->set("one", true);
  state_->requestUnlock();
  EXPECT_EQ(told_, "l");
}

TEST_F(LockStateTest, LeavesNothingBehind) {
  state_->requestLock();
  state_ = nullptr;
  loop_.advance(60);
  EXPECT_EQ(told_, "l");
}

}  // namespace
}  // namespace tessum
