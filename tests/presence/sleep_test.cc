#include "tests/presence/presence_fixture.h"

namespace tessum {
namespace {

class SleepTest : public PresenceTest {
 protected:
  SleepTest() {
    startBuses();
    startLogind();
  }

  [[nodiscard]] bool runUntilHeld(int count) {
    return runUntil(loop_, [&] { return logind_->heldInhibitors() == count; });
  }

  // Ends a test: locks the screen, which is reported after anything still pending.
  [[nodiscard]] testing::AssertionResult tellsBeforeLock(Told expected) {
    logind_->emitFromSession("Lock");
    expected.emplace_back("locked");
    return tells(expected);
  }
};

TEST_F(SleepTest, HoldsTheSleepBackUntilTheHandlerIsDone) {
  watch();
  EXPECT_EQ(logind_->requests(),
            Told{"sleep:shutdown, Tessum, Ends the session before the computer sleeps, delay"});
  setTime(10);
  logind_->prepare("PrepareForSleep", true);
  ASSERT_TRUE(tells({"asleep"}));
  EXPECT_EQ(logind_->heldInhibitors(), 1);
  ASSERT_NE(delay_, nullptr);
  delay_ = nullptr;
  ASSERT_TRUE(runUntilHeld(0));

  setTime(5000);
  logind_->prepare("PrepareForSleep", false);
  EXPECT_TRUE(tells({"asleep", "back"}));
  EXPECT_EQ(times_, (std::vector<double>{10, 5000}));
  EXPECT_TRUE(runUntilHeld(1)) << "for the next time";
  EXPECT_EQ(logind_->requests().size(), 2U);

  logind_->prepare("PrepareForSleep", true);
  ASSERT_TRUE(tells({"asleep", "back", "asleep"}));
  EXPECT_NE(delay_, nullptr);
}

TEST_F(SleepTest, AHandlerThatDoesNotCareHoldsNothingBack) {
  PresenceHandlers handlers = noting();
  handlers.onSleep = nullptr;
  source_.watch(handlers);
  ASSERT_TRUE(runUntilHeld(1));
  logind_->prepare("PrepareForSleep", true);
  EXPECT_TRUE(runUntilHeld(0));
  logind_->prepare("PrepareForSleep", false);
  EXPECT_TRUE(runUntilHeld(1));
}

TEST_F(SleepTest, AHandlerThatIsNeverDoneHoldsOnlyThatSleepBack) {
  watch();
  logind_->prepare("PrepareForSleep", true);
  ASSERT_TRUE(tells({"asleep"}));
  logind_->prepare("PrepareForSleep", false);
  ASSERT_TRUE(tells({"asleep", "back"}));
  EXPECT_NE(delay_, nullptr);
  ASSERT_TRUE(runUntil(loop_, [&] { return logind_->requests().size() == 2; }));
  EXPECT_TRUE(runUntilHeld(1)) << "the old one is given up, there is a new one";
}

TEST_F(SleepTest, TellsEachChangeOnce) {
  watch();
  logind_->prepare("PrepareForSleep", false);
  logind_->prepare("PrepareForSleep", true);
  logind_->prepare("PrepareForSleep", true);
  logind_->peer().emit("/org/freedesktop/login1", "org.freedesktop.login1.Manager",
                       "PrepareForSleep", "s", "false");
  logind_->prepare("PrepareForSleep", false);
  logind_->prepare("PrepareForSleep", false);
  EXPECT_TRUE(tellsBeforeLock({"asleep", "back"}));
}

TEST_F(SleepTest, TheScreenIsLockedBeforeAndUnlockedAfterwards) {
  watch();
  logind_->changeSession("LockedHint", true);
  ASSERT_TRUE(tells({"locked"}));
  logind_->prepare("PrepareForSleep", true);
  ASSERT_TRUE(tells({"locked", "asleep"}));
  delay_ = nullptr;
  logind_->prepare("PrepareForSleep", false);
  ASSERT_TRUE(tells({"locked", "asleep", "back"}));
  logind_->changeSession("LockedHint", false);
  EXPECT_TRUE(tells({"locked", "asleep", "back", "unlocked"}));
}

TEST_F(SleepTest, IsToldWithoutADelayWhereNoneIsPermitted) {
  logind_->permitsInhibitors = false;
  source_.watch(noting());
  ASSERT_TRUE(runUntil(loop_, [&] { return logind_->requests().size() == 1; }));
  logind_->prepare("PrepareForSleep", true);
  ASSERT_TRUE(tells({"asleep"}));
  EXPECT_EQ(delay_, nullptr);
  logind_->permitsInhibitors = true;
  logind_->prepare("PrepareForSleep", false);
  EXPECT_TRUE(runUntilHeld(1));
}

TEST_F(SleepTest, WhoSeesLogindGoIsAwake) {
  watch();
  logind_->prepare("PrepareForSleep", true);
  ASSERT_TRUE(tells({"asleep"}));
  delay_ = nullptr;
  logind_->giveUpName();
  EXPECT_TRUE(tells({"asleep", "back"}));
  EXPECT_EQ(logind_->requests().size(), 1U);
  logind_->takeName();
  EXPECT_TRUE(runUntilHeld(1));
}

TEST_F(SleepTest, AWakeUpThatLogindDidNotTellIsFoundWhenItIsBack) {
  watch();
  logind_->prepare("PrepareForSleep", true);
  ASSERT_TRUE(tells({"asleep"}));
  BusPeer successor(loop_, systemPlace_.address());
  successor.setProperty("/org/freedesktop/login1", "org.freedesktop.login1.Manager",
                        "PreparingForSleep", false);
  logind_->peer().giveUpName("org.freedesktop.login1");
  successor.takeName("org.freedesktop.login1");
  EXPECT_TRUE(tells({"asleep", "back"}));
}

TEST_F(SleepTest, ASleepUnderWayAtTheStartIsTold) {
  logind_->peer().setProperty("/org/freedesktop/login1", "org.freedesktop.login1.Manager",
                              "PreparingForSleep", true);
  source_.watch(noting());
  EXPECT_TRUE(tells({"asleep"}));
}

TEST_F(SleepTest, TheEndOfAnotherSessionIsNotTold) {
  watch();
  logind_->emitOfSession("SessionRemoved", "8", "/org/freedesktop/login1/session/_38");
  logind_->emitOfSession("SessionNew", "9", "/org/freedesktop/login1/session/_39");
  logind_->peer().emit("/org/freedesktop/login1", "org.freedesktop.login1.Manager",
                       "SessionRemoved", "s", FakeLogind::kSession);
  EXPECT_TRUE(tellsBeforeLock({}));
}

TEST_F(SleepTest, TheSessionEndsAndTheUserLogsInAnew) {
  watch();
  setTime(7);
  logind_->emitOfSession("SessionRemoved", FakeLogind::kSession, FakeLogind::kSessionPath);
  ASSERT_TRUE(tells({"ended"}));
  EXPECT_EQ(delay_, nullptr);
  EXPECT_EQ(times_, std::vector<double>{7});
  logind_->emitOfSession("SessionNew", FakeLogind::kSession, FakeLogind::kSessionPath);
  EXPECT_TRUE(tells({"ended", "back"}));
}

TEST_F(SleepTest, ASessionThatIsClosingHasEnded) {
  watch();
  logind_->setState("closing");
  ASSERT_TRUE(tells({"ended"}));
  // The login screen's session begins, and this one is removed at last.
  logind_->emitOfSession("SessionNew", "c1", "/org/freedesktop/login1/session/c1");
  logind_->emitOfSession("SessionRemoved", FakeLogind::kSession, FakeLogind::kSessionPath);
  logind_->setState("active");
  logind_->emitOfSession("SessionNew", FakeLogind::kSession, FakeLogind::kSessionPath);
  EXPECT_TRUE(tells({"ended", "back"}));
}

TEST_F(SleepTest, TheDelayMayBeLetGoOnAnyThread) {
  watch();
  logind_->prepare("PrepareForSleep", true);
  ASSERT_TRUE(tells({"asleep"}));
  std::thread other([delay = std::move(delay_)]() mutable { delay = nullptr; });
  logind_->prepare("PrepareForSleep", false);
  EXPECT_TRUE(tells({"asleep", "back"}));
  other.join();
  EXPECT_TRUE(runUntilHeld(1));
}

TEST_F(SleepTest, AWakeUpBringsNobodyBackWhoHasLoggedOut) {
  watch();
  logind_->emitOfSession("SessionRemoved", FakeLogind::kSession, FakeLogind::kSessionPath);
  logind_->prepare("PrepareForSleep", true);
  logind_->prepare("PrepareForSleep", false);
  logind_->emitOfSession("SessionNew", FakeLogind::kSession, FakeLogind::kSessionPath);
  EXPECT_TRUE(tells({"ended", "asleep", "back"}));
  ASSERT_TRUE(runUntilCalled("Get", FakeLogind::kSessionPath, 4));
  EXPECT_TRUE(tellsBeforeLock({"ended", "asleep", "back"}));
}

TEST_F(SleepTest, HoldsAShutdownBackUntilTheHandlerIsDone) {
  watch();
  logind_->prepare("PrepareForShutdown", true);
  ASSERT_TRUE(tells({"ended"}));
  EXPECT_EQ(logind_->heldInhibitors(), 1);
  delay_ = nullptr;
  ASSERT_TRUE(runUntilHeld(0));
  // What follows in a shutdown is not reported.
  logind_->emitOfSession("SessionRemoved", FakeLogind::kSession, FakeLogind::kSessionPath);
  logind_->emitOfSession("SessionNew", FakeLogind::kSession, FakeLogind::kSessionPath);
  ASSERT_TRUE(runUntilCalled("Get", FakeLogind::kSessionPath, 4));
  logind_->prepare("PrepareForShutdown", false);
  EXPECT_TRUE(tells({"ended", "back"}));
  EXPECT_TRUE(runUntilHeld(1));
}

TEST_F(SleepTest, TheBusGoesInAShutdown) {
  watch();
  logind_->prepare("PrepareForShutdown", true);
  ASSERT_TRUE(tells({"ended"}));
  delay_ = nullptr;
  BusPeer saver(loop_, sessionPlace_.address());
  systemPlace_.stop();
  saver.answer("/org/gnome/ScreenSaver", "org.gnome.ScreenSaver", "GetActive",
               [](sd_bus_message* call) { sd_bus_reply_method_return(call, "b", 1); });
  saver.takeName("org.gnome.ScreenSaver");
  EXPECT_TRUE(tells({"ended", "locked"})) << "and nobody is back";
}

}  // namespace
}  // namespace tessum
