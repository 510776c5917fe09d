#include <unistd.h>

#include "tests/presence/presence_fixture.h"

namespace tessum {
namespace {

constexpr char kManager[] = "org.gnome.SessionManager";
constexpr char kManagerPath[] = "/org/gnome/SessionManager";
constexpr char kAgent[] = "org.kde.Solid.PowerManagement.PolicyAgent";
constexpr char kAgentPath[] = "/org/kde/Solid/PowerManagement/PolicyAgent";

class KeptAwakeTest : public PresenceTest {
 protected:
  KeptAwakeTest() { startBuses(); }

  void list(std::vector<FakeLogind::Inhibitor> inhibitors) {
    logind_->inhibitors = std::move(inhibitors);
    logind_->changeManager("BlockInhibited", "idle");
  }
};

TEST_F(KeptAwakeTest, LogindsInhibitorsComeAndGo) {
  startLogind();
  logind_->inhibitors = {{"idle", "player", "Video", "block", getuid()}};
  watch();
  ASSERT_TRUE(tells({"awake: player (Video)"}));
  setTime(3);
  list({{"idle", "player", "Video", "block", getuid()},
        {"sleep:idle:shutdown", "call", "In a call", "block-weak", getuid()}});
  ASSERT_TRUE(tells({"awake: player (Video)", "awake: call (In a call) player (Video)"}));
  setTime(5);
  list({});
  EXPECT_TRUE(tells({"awake: player (Video)", "awake: call (In a call) player (Video)", "awake:"}));
  EXPECT_EQ(times_, (std::vector<double>{0, 3, 5}));
}

TEST_F(KeptAwakeTest, WhatIsNotAgainstIdleIsNotTold) {
  startLogind();
  watch();
  list({{"sleep", "download", "", "block", getuid()},
        {"handle-lid-switch:idleness:sleep", "other", "", "block", getuid()},
        {"idle", "patient", "", "delay", getuid()},
        {"idle", "another user's", "", "block", getuid() + 1}});
  ASSERT_TRUE(runUntilCalled("ListInhibitors", "/org/freedesktop/login1", 2));
  list({{"idle", "last", "", "block", getuid()}});
  EXPECT_TRUE(tells({"awake: last ()"}));
}

TEST_F(KeptAwakeTest, WhatLogindListsEndsWithIt) {
  startLogind();
  logind_->inhibitors = {{"idle", "player", "Video", "block", getuid()}};
  watch();
  ASSERT_TRUE(tells({"awake: player (Video)"}));
  logind_->giveUpName();
  EXPECT_TRUE(tells({"awake: player (Video)", "awake:"}));
}

TEST_F(KeptAwakeTest, AListOfAnotherTypeIsIgnored) {
  startLogind();
  logind_->peer().answer(
      "/org/freedesktop/login1", "org.freedesktop.login1.Manager", "ListInhibitors",
      [](sd_bus_message* call) { sd_bus_reply_method_return(call, "a(ss)", 1, "idle", "player"); });
  watch();
  ASSERT_TRUE(runUntilCalled("ListInhibitors", "/org/freedesktop/login1", 1));
  logind_->emitFromSession("Lock");
  EXPECT_TRUE(tells({"locked"}));
}

// A session manager like GNOME's.
class FakeSessionManager {
 public:
  FakeSessionManager(SystemMainLoop& loop, const std::string& address) : peer_(loop, address) {
    peer_.answer(kManagerPath, kManager, "GetInhibitors", [this](sd_bus_message* call) {
      sd_bus_message* reply = nullptr;
      sd_bus_message_new_method_return(call, &reply);
      sd_bus_message_open_container(reply, 'a', "o");
      for (const auto& path : paths_) sd_bus_message_append(reply, "o", path.c_str());
      sd_bus_message_close_container(reply);
      sd_bus_send(nullptr, reply, nullptr);
      sd_bus_message_unref(reply);
    });
    peer_.takeName(kManager);
  }

  void add(const std::string& path, std::uint32_t flags, const std::string& who,
           const std::string& why) {
    constexpr char kInhibitor[] = "org.gnome.SessionManager.Inhibitor";
    peer_.answer(path, kInhibitor, "GetFlags",
                 [flags](sd_bus_message* call) { sd_bus_reply_method_return(call, "u", flags); });
    peer_.answer(path, kInhibitor, "GetAppId", [who](sd_bus_message* call) {
      sd_bus_reply_method_return(call, "s", who.c_str());
    });
    peer_.answer(path, kInhibitor, "GetReason", [why](sd_bus_message* call) {
      sd_bus_reply_method_return(call, "s", why.c_str());
    });
    addSilent(path);
  }

  // One that answers only with errors.
  void addSilent(const std::string& path) {
    paths_.push_back(path);
    peer_.emit(kManagerPath, kManager, "InhibitorAdded", "o", path.c_str());
  }

  void remove(const std::string& path) {
    std::erase(paths_, path);
    peer_.emit(kManagerPath, kManager, "InhibitorRemoved", "o", path.c_str());
  }

  [[nodiscard]] const std::vector<std::string>& calls() const { return peer_.calls; }

 private:
  BusPeer peer_;
  std::vector<std::string> paths_;
};

TEST_F(KeptAwakeTest, TheInhibitorsOfASessionManagerComeAndGo) {
  FakeSessionManager manager(loop_, sessionPlace_.address());
  manager.add("/i/1", 8, "org.example.Player", "Playing video");
  watch();
  ASSERT_TRUE(tells({"awake: org.example.Player (Playing video)"}));
  manager.addSilent("/i/2");
  manager.add("/i/3", 1 + 4, "org.example.Editor", "Unsaved changes");
  manager.add("/i/4", 8 + 4, "org.example.Call", "In a call");
  const std::string both = "awake: org.example.Call (In a call) org.example.Player (Playing video)";
  ASSERT_TRUE(tells({"awake: org.example.Player (Playing video)", both}));
  manager.remove("/i/1");
  manager.remove("/i/4");
  ASSERT_TRUE(runUntil(loop_, [&] { return !told_.empty() && told_.back() == "awake:"; }));
}

TEST_F(KeptAwakeTest, WhatASessionManagerListsEndsWithIt) {
  auto manager = std::make_unique<FakeSessionManager>(loop_, sessionPlace_.address());
  manager->add("/i/1", 8, "player", "Video");
  watch();
  ASSERT_TRUE(tells({"awake: player (Video)"}));
  manager = nullptr;
  EXPECT_TRUE(tells({"awake: player (Video)", "awake:"}));
}

TEST_F(KeptAwakeTest, OfManyInhibitorsNoMoreAreAskedThanAreTold) {
  FakeSessionManager manager(loop_, sessionPlace_.address());
  for (int i = 0; i < 100; ++i) manager.add("/i/" + std::to_string(i), 8, "player", "Video");
  watch();
  ASSERT_TRUE(tells({"awake: player (Video)"}));
  EXPECT_LE(manager.calls().size(), 1U + 3 * 32);
}

TEST_F(KeptAwakeTest, TheInhibitionsOfKdeComeAndGo) {
  BusPeer agent(loop_, sessionPlace_.address());
  bool isScreenKeptOn = false;
  agent.answer(kAgentPath, kAgent, "HasInhibition", [&](sd_bus_message* call) {
    std::uint32_t kind = 0;
    sd_bus_message_read(call, "u", &kind);
    EXPECT_EQ(kind, 4U);
    sd_bus_reply_method_return(call, "b", static_cast<int>(isScreenKeptOn));
  });
  agent.answer(kAgentPath, kAgent, "ListInhibitions", [](sd_bus_message* call) {
    sd_bus_reply_method_return(call, "a(ss)", 1, "player", "Video");
  });
  agent.takeName(kAgent);
  watch();
  ASSERT_TRUE(runUntil(loop_, [&] { return agent.calls.size() == 1; }));
  // A download, which keeps the computer from sleeping.
  agent.emit(kAgentPath, kAgent, "InhibitionsChanged", "a(ss)as", 1, "download", "", 0);
  ASSERT_TRUE(runUntil(loop_, [&] { return agent.calls.size() == 2; }));
  isScreenKeptOn = true;
  agent.emit(kAgentPath, kAgent, "InhibitionsChanged", "a(ss)as", 1, "player", "Video", 0);
  ASSERT_TRUE(tells({"awake: player (Video)"}));
  isScreenKeptOn = false;
  agent.emit(kAgentPath, kAgent, "InhibitionsChanged", "a(ss)as", 0, 1, "player");
  EXPECT_TRUE(tells({"awake: player (Video)", "awake:"}));
}

TEST_F(KeptAwakeTest, WhatSeveralListIsToldOnce) {
  startLogind();
  logind_->inhibitors = {{"idle", "player", "Video", "block", getuid()}};
  watch();
  ASSERT_TRUE(tells({"awake: player (Video)"}));
  FakeSessionManager manager(loop_, sessionPlace_.address());
  manager.add("/i/1", 8, "player", "Video");
  manager.add("/i/2", 8, "singer", "Music");
  EXPECT_TRUE(tells({"awake: player (Video)", "awake: player (Video) singer (Music)"}));
}

}  // namespace
}  // namespace tessum
