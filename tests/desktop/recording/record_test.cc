#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/desktop/recording/recorder.h"
#include "tests/support/desktop/x11_desktop.h"

namespace tessum {
namespace {

using Rows = Recorder::Rows;

TEST(Record, WritesWhatAPersonDoesOnTheDesktop) {
  Desktop desktop;
  const std::string applications = desktop.home().file("share/applications");
  std::filesystem::create_directories(applications);
  writeFile(applications + "/org.test.Terminal.desktop",
            "[Desktop Entry]\nType=Application\nName=Terminal of the Test\nStartupWMClass=XTerm\n");
  // Versions of the program differ in the class but not in the instance.
  writeFile(applications + "/org.test.Dialog.desktop",
            "[Desktop Entry]\nType=Application\nName=Dialog of the Test\nStartupWMClass=zenity\n");
  desktop.startWindowManager();
  Recorder recorder(desktop);

  const auto terminal = desktop.start("xterm", {"-T", "first title"});
  const std::string name = "Terminal of the Test|org.test.Terminal|";
  ASSERT_TRUE(recorder.comesTo({name + "first title|open"}));
  const std::string terminalWindow = desktop.run("xdotool", {"getactivewindow"});
  desktop.run("xdotool", {"set_window", "--name", "second title", terminalWindow});
  ASSERT_TRUE(recorder.comesTo({name + "second title|open"}));

  const std::string dialogName = "Dialog of the Test|org.test.Dialog|";
  Rows expected{name + "second title|closed", dialogName + "Question of the test|open"};
  const auto dialog =
      desktop.start("zenity", {"--info", "--title", "Question of the test", "--text", "What?"});
  ASSERT_TRUE(recorder.comesTo(expected));
  const std::string dialogWindow = desktop.run("xdotool", {"getactivewindow"});

  desktop.run("xdotool", {"windowactivate", "--sync", terminalWindow});
  expected.back() = dialogName + "Question of the test|closed";
  expected.push_back(name + "second title|open");
  ASSERT_TRUE(recorder.comesTo(expected));

  desktop.restartWindowManager();

  desktop.run("xdotool", {"windowactivate", "--sync", dialogWindow});
  expected.back() = name + "second title|closed";
  expected.push_back(dialogName + "Question of the test|open");
  ASSERT_TRUE(recorder.comesTo(expected)) << "the window manager's restart is no session";

  desktop.run("xdotool", {"windowminimize", "--sync", terminalWindow});
  desktop.run("xdotool", {"windowminimize", "--sync", dialogWindow});
  expected.back() = dialogName + "Question of the test|closed";
  ASSERT_TRUE(recorder.comesTo(expected)) << "with everything minimised nothing is in front";

  desktop.run("xdotool", {"windowactivate", "--sync", terminalWindow});
  expected.push_back(name + "second title|open");
  ASSERT_TRUE(recorder.comesTo(expected));
  desktop.run("xdotool", {"windowactivate", "--sync", dialogWindow});
  expected.back() = name + "second title|closed";
  expected.push_back(dialogName + "Question of the test|open");
  ASSERT_TRUE(recorder.comesTo(expected));

  dialog->kill();
  expected.back() = dialogName + "Question of the test|closed";
  expected.push_back(name + "second title|open");
  ASSERT_TRUE(recorder.comesTo(expected)) << "the window below the closed one comes to the front";
  terminal->kill();
  expected.back() = name + "second title|closed";
  ASSERT_TRUE(recorder.comesTo(expected));

  recorder.process().kill(SIGTERM);
  EXPECT_EQ(recorder.process().wait(), kSuccess);
  EXPECT_EQ(recorder.process().errors(), "");
  EXPECT_EQ(recorder.sessions(), expected);
  const std::string dialogLine = R"(\n• Dialog of the Test – Question of the test)";
  const std::string terminalLine = R"(\n• Terminal of the Test – second title)";
  EXPECT_EQ(recorder.report(), "Activities (7 sessions):" + terminalLine + dialogLine +
                                   terminalLine + dialogLine + terminalLine + dialogLine +
                                   terminalLine);
}

TEST(Record, EachTerminationSignalClosesTheSessionAndSucceeds) {
  Desktop desktop;
  desktop.startWindowManager();
  desktop.addWindow("App");
  Rows expected;
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    Recorder recorder(desktop);
    expected.emplace_back("App|NULL|NULL|open");
    ASSERT_TRUE(recorder.comesTo(expected));
    recorder.process().kill(signal);
    EXPECT_EQ(recorder.process().wait(), kSuccess);
    expected.back() = "App|NULL|NULL|closed";
    EXPECT_EQ(recorder.sessions(), expected);
  }
}

TEST(Record, GoesOnWhenItsTerminalClosesUnderNohup) {
  Desktop desktop;
  desktop.startWindowManager();
  const auto recorder = desktop.start("nohup", {TESSUM_PROGRAM, "record", "--no-update-check"});
  const std::string history = desktop.dataFolder() + "/activities.db";
  ASSERT_TRUE(eventually([&] { return std::filesystem::exists(history); }));
  desktop.addWindow("First");
  recorder->kill(SIGHUP);
  desktop.addWindow("Second");
  ASSERT_TRUE(eventually(
      [&] { return desktop.run("cat", {history}).find("Second") != std::string::npos; }));
  recorder->kill(SIGTERM);
  EXPECT_EQ(recorder->wait(), kSuccess);
}

TEST(Record, ClosesItsFilesToOthersInAFolderThatIsOpenToThem) {
  Desktop desktop;
  desktop.startWindowManager();
  std::filesystem::create_directories(desktop.dataFolder());
  chmod(desktop.dataFolder().c_str(), 0755);
  const std::string old = desktop.dataFolder() + "/timeline.html";
  writeFile(old, "");
  chmod(old.c_str(), 0644);
  const mode_t before = umask(0);
  const Recorder recorder(desktop);
  umask(before);
  for (const auto& entry : std::filesystem::directory_iterator(desktop.dataFolder())) {
    EXPECT_EQ(entry.status().permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write)
        << entry.path();
  }
}

TEST(Record, ASecondRecorderOfTheSameDataIsRefused) {
  Desktop desktop;
  desktop.startWindowManager();
  desktop.addWindow("App");
  auto recorder = std::make_unique<Recorder>(desktop);
  ASSERT_TRUE(recorder->comesTo({"App|NULL|NULL|open"}));
  const auto second = desktop.start(TESSUM_PROGRAM, {"record", "--no-update-check"});
  EXPECT_EQ(second->wait(), kFailure);
  EXPECT_EQ(second->errors(),
            "Tessum: Another recorder is already writing to " + desktop.dataFolder() + ".\n");

  recorder.reset();  // killed: it cleans up nothing itself
  const Recorder next(desktop);
  EXPECT_TRUE(next.comesTo({"App|NULL|NULL|closed", "App|NULL|NULL|open"}))
      << "what a kill left open is ended by the next recorder";
}

TEST(Record, EndsWithTheDisplayAndSaysSo) {
  Desktop desktop;
  desktop.startWindowManager();
  desktop.addWindow("App");
  Recorder recorder(desktop);
  ASSERT_TRUE(recorder.comesTo({"App|NULL|NULL|open"}));
  desktop.killServer();
  EXPECT_EQ(recorder.process().wait(), kFailure);
  EXPECT_EQ(recorder.process().errors(),
            "Tessum: The X11 display has gone away; nothing more can be recorded.\n");
  EXPECT_EQ(recorder.sessions(), Rows{"App|NULL|NULL|closed"});
}

TEST(Record, WaitsForAWindowManagerAndOutlivesIt) {
  Desktop desktop;
  Recorder recorder(desktop);
  ASSERT_TRUE(eventually([&] {
    return recorder.process().errors() ==
           "Tessum: No window manager reports the active window; recording continues when one "
           "does.\n";
  }));
  desktop.startWindowManager();
  desktop.addWindow("App");
  ASSERT_TRUE(recorder.comesTo({"App|NULL|NULL|open"}));
  desktop.killWindowManager();
  ASSERT_TRUE(recorder.comesTo({"App|NULL|NULL|closed"}));
  desktop.startWindowManager();
  desktop.addWindow("Other");
  ASSERT_TRUE(eventually([&] {
    const Rows sessions = recorder.sessions();
    return !sessions.empty() && sessions.back() == "Other|NULL|NULL|open";
  }));
}

TEST(Record, SaysWhyItCannotStart) {
  struct Case {
    std::vector<std::string> environment;
    std::string message;
  };
  const Desktop desktop;
  for (const auto& [environment, message] :
       {Case{{"DISPLAY=", "WAYLAND_DISPLAY="}, "There is no X11 display: DISPLAY is not set."},
        Case{{"DISPLAY=", "WAYLAND_DISPLAY=wayland-0"},
             "Cannot connect to the Wayland display wayland-0."},
        Case{{"DISPLAY=nonsense"}, "Cannot connect to the X11 display nonsense."}}) {
    const auto process =
        desktop.start(TESSUM_PROGRAM, {"record", "--no-update-check"}, environment);
    EXPECT_EQ(process->wait(), kFailure);
    EXPECT_EQ(process->errors(), "Tessum: " + message + "\n");
  }
}

}  // namespace
}  // namespace tessum
