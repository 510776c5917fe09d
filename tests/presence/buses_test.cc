// Buses and services that are missing, restarted or silent.

#include <sys/socket.h>
#include <sys/un.h>

#include <csignal>

#include "core/presence/system_presence.h"
#include "tests/presence/presence_fixture.h"

namespace tessum {
namespace {

using BusesTest = PresenceTest;

TEST_F(BusesTest, ABusThatComesLaterIsFound) {
  watch();
  int turns = 0;
  ASSERT_TRUE(runUntil(loop_, [&] { return ++turns > 50; }));
  EXPECT_TRUE(tells({}));
  startBuses();
  startLogind();
  logind_->peer().setProperty(FakeLogind::kSessionPath, "org.freedesktop.login1.Session",
                              "LockedHint", true);
  EXPECT_TRUE(tells({"locked"}));
}

TEST_F(BusesTest, ABusThatIsRestartedIsFound) {
  startBuses();
  startLogind();
  watch();
  logind_->changeSession("LockedHint", true);
  ASSERT_TRUE(tells({"locked"}));
  systemPlace_.stop();
  ASSERT_TRUE(tells({"locked", "unlocked"})) << "nobody says any more that it is locked";
  logind_ = nullptr;
  systemPlace_.start();
  startLogind();
  ASSERT_TRUE(runUntil(loop_, [&] { return logind_->heldInhibitors() == 1; }));
  ASSERT_TRUE(runUntilCalled("Get", FakeLogind::kSessionPath, 2));
  logind_->changeSession("LockedHint", true);
  logind_->prepare("PrepareForSleep", true);
  EXPECT_TRUE(runUntil(loop_, [&] { return told_.size() == 4; }));
  logind_->prepare("PrepareForSleep", false);
  EXPECT_TRUE(runUntil(loop_, [&] { return !told_.empty() && told_.back() == "back"; }));
}

TEST_F(BusesTest, ABusThatIsRestartedDuringTheSleepDoesNotLoseTheWakeUp) {
  startBuses();
  startLogind();
  watch();
  logind_->prepare("PrepareForSleep", true);
  ASSERT_TRUE(tells({"asleep"}));
  systemPlace_.stop();
  EXPECT_TRUE(tells({"asleep", "back"}));
}

TEST_F(BusesTest, ALogindThatHangsAnswersLater) {
  startBuses();
  startLogind();
  const std::string automatic = "/org/freedesktop/login1/session/auto";
  sd_bus_message* pending = nullptr;
  logind_->peer().answer(automatic, "org.freedesktop.DBus.Properties", "Get",
                         [&](sd_bus_message* call) { pending = sd_bus_message_ref(call); });
  source_.watch(noting());
  ASSERT_TRUE(runUntil(loop_, [&] { return pending != nullptr; }));
  logind_->prepare("PrepareForSleep", true);
  ASSERT_TRUE(tells({"asleep"}));
  sd_bus_reply_method_return(pending, "v", "s", FakeLogind::kSession);
  sd_bus_message_unref(pending);
  ASSERT_TRUE(runUntilCalled("Get", FakeLogind::kSessionPath, 2));
  logind_->emitFromSession("Lock");
  EXPECT_TRUE(tells({"asleep", "locked"}));
}

TEST_F(BusesTest, ABusThatNeverAnswersHoldsNothingUp) {
  sockaddr_un name{};
  name.sun_family = AF_UNIX;
  systemPlace_.folder().file("bus").copy(name.sun_path, sizeof name.sun_path - 1);
  const Descriptor silent(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  ASSERT_EQ(bind(silent.number(), reinterpret_cast<const sockaddr*>(&name), sizeof name), 0);
  ASSERT_EQ(listen(silent.number(), 8), 0);
  sessionPlace_.start();
  watch();
  BusPeer saver(loop_, sessionPlace_.address());
  saver.answer("/org/gnome/ScreenSaver", "org.gnome.ScreenSaver", "GetActive",
               [](sd_bus_message* call) { sd_bus_reply_method_return(call, "b", 1); });
  saver.takeName("org.gnome.ScreenSaver");
  EXPECT_TRUE(tells({"locked"}));
}

TEST_F(BusesTest, ASessionBusThatHangsAndGoesOn) {
  startBuses();
  startLogind();
  watch();
  BusPeer saver(loop_, sessionPlace_.address());
  saver.answer("/org/gnome/ScreenSaver", "org.gnome.ScreenSaver", "GetActive",
               [](sd_bus_message* call) { sd_bus_reply_method_return(call, "b", 0); });
  saver.takeName("org.gnome.ScreenSaver");
  ASSERT_TRUE(runUntil(loop_, [&] { return !saver.calls.empty(); }));
  sessionPlace_.daemon().kill(SIGSTOP);
  saver.emit("/org/gnome/ScreenSaver", "org.gnome.ScreenSaver", "ActiveChanged", "b", 1);
  logind_->prepare("PrepareForSleep", true);
  ASSERT_TRUE(tells({"asleep"}));
  sessionPlace_.daemon().kill(SIGCONT);
  EXPECT_TRUE(tells({"asleep", "locked"}));
}

TEST_F(BusesTest, ALaterWatchReplacesTheFirst) {
  startBuses();
  startLogind();
  source_.watch({.onLock = [](bool, Moment) { FAIL() << "it was replaced"; }});
  ASSERT_TRUE(runUntil(loop_, [&] { return logind_->heldInhibitors() == 1; }));
  watch();
  logind_->emitFromSession("Lock");
  EXPECT_TRUE(tells({"locked"}));
}

TEST_F(BusesTest, TheSystemsSourceFindsBothBuses) {
  startBuses();
  startLogind();
  const auto source = openSystemPresence(loop_, steadyClock_);
  source->watch(noting());
  ASSERT_TRUE(runUntilCalled("Get", FakeLogind::kSessionPath, 2));
  logind_->emitFromSession("Lock");
  EXPECT_TRUE(tells({"locked"}));
}

}  // namespace
}  // namespace tessum
