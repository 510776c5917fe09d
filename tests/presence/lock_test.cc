#include "tests/presence/presence_fixture.h"

namespace tessum {
namespace {

constexpr char kFreedesktop[] = "org.freedesktop.ScreenSaver";
constexpr char kGnome[] = "org.gnome.ScreenSaver";

class LockTest : public PresenceTest {
 protected:
  LockTest() {
    startBuses();
    startLogind();
  }

  // A screen saver of that name, which answers GetActive at `path`.
  std::unique_ptr<BusPeer> startSaver(const std::string& name, const std::string& path,
                                      bool isActive = false) {
    auto saver = std::make_unique<BusPeer>(loop_, sessionPlace_.address());
    saver->answer(path, name, "GetActive", [isActive](sd_bus_message* call) {
      sd_bus_reply_method_return(call, "b", static_cast<int>(isActive));
    });
    saver->takeName(name);
    return saver;
  }

  // Waits until the source has subscribed to its signals.
  [[nodiscard]] bool isKnown(const BusPeer& saver, const std::string& path) {
    return runUntil(loop_, [&] {
      return std::count(saver.calls.begin(), saver.calls.end(), "GetActive " + path) > 0;
    });
  }

  // Waits until the source has received what `sender` has sent: it then sees another screen saver
  // appear.
  [[nodiscard]] bool hasHeard(BusPeer& sender) {
    sender.takeName("com.example.Sent");  // answered after all was sent
    const auto next = startSaver("org.mate.ScreenSaver", "/org/mate/ScreenSaver");
    const bool isSeen = isKnown(*next, "/org/mate/ScreenSaver");
    sender.giveUpName("com.example.Sent");
    return isSeen;
  }
};

TEST_F(LockTest, FollowsTheHintOfTheSession) {
  watch();
  setTime(10);
  logind_->changeSession("LockedHint", true);
  EXPECT_TRUE(tells({"locked"}));
  setTime(20);
  logind_->changeSession("LockedHint", false);
  EXPECT_TRUE(tells({"locked", "unlocked"}));
  EXPECT_EQ(times_, (std::vector<double>{10, 20}));
}

TEST_F(LockTest, TellsWhatIsLockedAtTheStart) {
  logind_->peer().setProperty(FakeLogind::kSessionPath, "org.freedesktop.login1.Session",
                              "LockedHint", true);
  watch();
  EXPECT_TRUE(tells({"locked"}));
}

TEST_F(LockTest, TellsASaverThatIsActiveAtTheStart) {
  const auto saver = startSaver(kGnome, "/org/gnome/ScreenSaver", true);
  watch();
  EXPECT_TRUE(tells({"locked"}));
}

TEST_F(LockTest, TellsASaverThatAnswersAtItsSecondPath) {
  const auto saver = startSaver(kFreedesktop, "/ScreenSaver", true);
  watch();
  EXPECT_TRUE(tells({"locked"}));
}

TEST_F(LockTest, IsLockedWhileAnotherSessionIsInFront) {
  watch();
  logind_->setState("online");
  EXPECT_TRUE(tells({"locked"}));
  logind_->setState("active");
  EXPECT_TRUE(tells({"locked", "unlocked"}));
}

TEST_F(LockTest, FollowsRequests) {
  watch();
  logind_->emitFromSession("Lock");
  EXPECT_TRUE(tells({"locked"}));
  logind_->emitFromSession("Unlock");
  EXPECT_TRUE(tells({"locked", "unlocked"}));
}

TEST_F(LockTest, IsUnlockedOnceAllSourcesSaySo) {
  const auto gnome = startSaver(kGnome, "/org/gnome/ScreenSaver");
  watch();
  ASSERT_TRUE(isKnown(*gnome, "/org/gnome/ScreenSaver"));
  gnome->emit("/org/gnome/ScreenSaver", kGnome, "ActiveChanged", "b", 1);
  ASSERT_TRUE(tells({"locked"}));
  logind_->changeSession("LockedHint", true);
  ASSERT_TRUE(runUntilCalled("Get", FakeLogind::kSessionPath, 4));
  gnome->emit("/org/gnome/ScreenSaver", kGnome, "ActiveChanged", "b", 0);
  gnome->emit("/org/gnome/ScreenSaver", kGnome, "ActiveChanged", "b", 1);
  gnome->emit("/org/gnome/ScreenSaver", kGnome, "ActiveChanged", "b", 0);
  ASSERT_TRUE(hasHeard(*gnome));
  logind_->changeSession("LockedHint", false);
  EXPECT_TRUE(tells({"locked", "unlocked"}));
}

TEST_F(LockTest, TheSameChangeFromTwoPathsIsTold) {
  const auto saver = startSaver(kFreedesktop, "/org/freedesktop/ScreenSaver");
  watch();
  ASSERT_TRUE(isKnown(*saver, "/org/freedesktop/ScreenSaver"));
  for (const int isActive : {1, 0, 1}) {
    for (const char* path : {"/ScreenSaver", "/org/freedesktop/ScreenSaver"}) {
      saver->emit(path, kFreedesktop, "ActiveChanged", "b", isActive);
    }
  }
  EXPECT_TRUE(tells({"locked", "unlocked", "locked"}));
}

TEST_F(LockTest, ASaverThatGoesIsNotActive) {
  auto gnome = startSaver(kGnome, "/org/gnome/ScreenSaver", true);
  watch();
  ASSERT_TRUE(tells({"locked"}));
  gnome = nullptr;
  EXPECT_TRUE(tells({"locked", "unlocked"}));
}

TEST_F(LockTest, ASaverThatComesLaterIsFound) {
  watch();
  const auto saver = startSaver("org.xfce.ScreenSaver", "/", true);
  EXPECT_TRUE(tells({"locked"}));
}

TEST_F(LockTest, IgnoresWhatOthersSayAndWhatHasTheWrongType) {
  const auto gnome = startSaver(kGnome, "/org/gnome/ScreenSaver");
  const auto liar = startSaver("com.example.Liar", "/");
  BusPeer systemLiar(loop_, systemPlace_.address());
  watch();
  ASSERT_TRUE(isKnown(*gnome, "/org/gnome/ScreenSaver"));
  for (int i = 0; i < 10; ++i) {
    const std::string somebody = ":1." + std::to_string(i);
    liar->emitTo(somebody.c_str(), "/org/gnome/ScreenSaver", kGnome, "ActiveChanged", "b", 1);
    systemLiar.emitTo(somebody.c_str(), FakeLogind::kSessionPath, "org.freedesktop.login1.Session",
                      "Lock", "");
    systemLiar.emitTo(somebody.c_str(), "/org/freedesktop/login1", "org.freedesktop.login1.Manager",
                      "PrepareForSleep", "b", 1);
  }
  systemLiar.takeName("com.example.Sent");  // answered after these were sent
  ASSERT_TRUE(hasHeard(*liar));
  gnome->emit("/org/gnome/ScreenSaver", kGnome, "ActiveChanged", "s", "true");
  gnome->emit("/org/gnome/ScreenSaver", kGnome, "ActiveChanged", "");
  gnome->emit("/org/gnome/ScreenSaver", kGnome, "ActiveChanged", "bb", 1, 1);
  ASSERT_TRUE(hasHeard(*gnome));
  logind_->emitFromSession("Lock");
  ASSERT_TRUE(tells({"locked"}));
  logind_->emitFromSession("Unlock");
  ASSERT_TRUE(tells({"locked", "unlocked"}));
  gnome->emit("/org/gnome/ScreenSaver", kGnome, "ActiveChanged", "b", 1);
  EXPECT_TRUE(tells({"locked", "unlocked", "locked"}));
}

TEST_F(LockTest, TheSessionOfTheEnvironmentServesWhereLogindNamesNone) {
  logind_->peer().answer("/org/freedesktop/login1/session/auto", "org.freedesktop.DBus.Properties",
                         "Get", [](sd_bus_message* call) {
                           sd_bus_reply_method_errorf(
                               call, "org.freedesktop.login1.NoSessionForPID", "no session");
                         });
  sessionId_.set(FakeLogind::kSession);
  watch();
  logind_->changeSession("LockedHint", true);
  EXPECT_TRUE(tells({"locked"}));
}

TEST_F(LockTest, ASessionThatBeginsLaterIsFound) {
  const std::string automatic = "/org/freedesktop/login1/session/auto";
  logind_->peer().setProperty(automatic, "org.freedesktop.login1.Session", "Id", false);
  sessionId_.set("\xFF no session");
  source_.watch(noting());
  ASSERT_TRUE(runUntilCalled("GetSession", "/org/freedesktop/login1", 1));
  logind_->peer().setProperty(automatic, "org.freedesktop.login1.Session", "Id",
                              std::string(FakeLogind::kSession));
  logind_->emitOfSession("SessionNew", FakeLogind::kSession, FakeLogind::kSessionPath);
  ASSERT_TRUE(runUntilCalled("Get", FakeLogind::kSessionPath, 2));
  logind_->changeSession("LockedHint", true);
  EXPECT_TRUE(tells({"locked"}));
}

}  // namespace
}  // namespace tessum
