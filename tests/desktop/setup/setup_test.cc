#include "tests/desktop/setup/setup_fixture.h"

namespace tessum {
namespace {

namespace fs = std::filesystem;

// A stand-in for systemd's command, which notes its calls.
constexpr char kSystemctl[] = R"script(#!/bin/sh
echo "$@" >> "$HOME/calls"
case $2 in
  start) "$RECORDER" record >/dev/null 2>&1 & echo $! > "$HOME/process" ;;
  stop) kill "$(cat "$HOME/process")" ;;
esac
)script";

TEST_F(Setup, RecordsFromNowAndFromEachLoginOn) {
  openTerminal();
  const Outcome outcome = run({"setup", "--yes"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_TRUE(contains(outcome.output, "start recording now"));
  EXPECT_TRUE(contains(outcome.output, "Recording      yes, since "));
  EXPECT_TRUE(contains(outcome.output, "First session  XTerm – Letter"));
  EXPECT_TRUE(contains(outcome.output, "Next           \"Tessum day\""));
  EXPECT_TRUE(isRecording());
  EXPECT_TRUE(contains(readFile(config("autostart/tessum-record.desktop")),
                       "\nExec=" + hostProgram() + " record\n"));
  EXPECT_TRUE(contains(readFile(config("Tessum/settings.toml")), "# away-after = "));
  EXPECT_EQ(run({"settings", "check"}).status, 0);
}

TEST_F(Setup, LeavesALinkThatLeadsNowhereWhereItWantsAFolder) {
  openTerminal();
  fs::create_directories(desktop.home().file("config"));
  fs::create_symlink("/nonexistent", config("autostart"));
  EXPECT_EQ(run({"setup", "--yes"}).status, 1);
  EXPECT_EQ(run({"setup", "--undo", "--yes"}).status, 0);
  EXPECT_TRUE(fs::is_symlink(config("autostart")));
}

TEST_F(Setup, LeavesNothingButTheHistoryWhenItIsUndone) {
  openTerminal();
  fs::create_directories(config("autostart"));
  writeFile(config("autostart/another.desktop"), "[Desktop Entry]\n");
  fs::create_directories(desktop.home().file(".cursor"));
  writeFile(desktop.home().file(".cursor/mcp.json"), "{\r\n  // mine\r\n  \"a\": [1,],\r\n}");
  fs::create_directories(desktop.home().file(".claude"));
  const auto before = home();
  ASSERT_EQ(run({"setup", "--yes"}).status, 0);
  EXPECT_TRUE(contains(readFile(desktop.home().file(".cursor/mcp.json")), "TessumMCP"));
  EXPECT_TRUE(contains(readFile(desktop.home().file(".claude.json")), "TessumMCP"));
  const Outcome outcome = run({"setup", "--undo", "--yes"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_TRUE(contains(outcome.output, "The history stays in " + desktop.dataFolder()));
  EXPECT_EQ(home(), before);
  EXPECT_FALSE(isRecording());
  EXPECT_TRUE(fs::exists(desktop.dataFolder() + "/activities.db"));
  EXPECT_EQ(run({"setup", "--undo", "--yes"}).output,
            "Setup has changed nothing here that could be taken back.\n");
}

TEST_F(Setup, ChangesNothingTheSecondTime) {
  openTerminal();
  ASSERT_EQ(run({"setup", "--yes"}).status, 0);
  const auto before = home();
  const Outcome outcome = run({"setup"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_TRUE(contains(outcome.output, "Everything is set up; nothing was changed.\n"));
  EXPECT_EQ(home(), before);
}

TEST_F(Setup, ChangesNothingUnlessTheAnswerIsYes) {
  struct Case {
    std::vector<std::string> arguments;
    const char* input;
    int status;
  };
  const auto before = listing(desktop.home().path());
  for (const Case& row :
       {Case{{"setup"}, "\n", 1}, Case{{"setup"}, "no\n", 1}, Case{{"setup"}, "", 2},
        Case{{"setup", "--dry-run"}, "", 0}, Case{{"setup", "--dry-run", "--yes"}, "", 0}}) {
    const Outcome outcome = run(row.arguments, row.input);
    EXPECT_EQ(outcome.status, row.status) << outcome.errors;
    EXPECT_TRUE(contains(outcome.output, config("autostart/tessum-record.desktop")));
    EXPECT_TRUE(contains(outcome.output, "Nothing was changed.\n"));
  }
  EXPECT_TRUE(contains(run({"setup"}).errors, "give --yes"));
  EXPECT_EQ(listing(desktop.home().path()), before);
}

TEST_F(Setup, AsksOnceAndUndoesOnlyAfterAYesToo) {
  openTerminal();
  ASSERT_EQ(run({"setup"}, "y\n").status, 0);
  const auto before = home();
  EXPECT_EQ(run({"setup", "--undo"}, "\n").status, 1);
  const Outcome outcome = run({"setup", "--undo", "--dry-run"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(contains(outcome.output, "remove " + config("Tessum/settings.toml")));
  EXPECT_EQ(home(), before);
  EXPECT_TRUE(isRecording());
}

TEST_F(Setup, KeepsWhatWasThereAndWhatWasEditedSince) {
  openTerminal();
  fs::create_directories(config("Tessum"));
  writeFile(config("Tessum/settings.toml"), "[reports]\nday-starts = \"04:00\"\n");
  ASSERT_EQ(run({"setup", "--yes"}).status, 0);
  EXPECT_EQ(readFile(config("Tessum/settings.toml")), "[reports]\nday-starts = \"04:00\"\n");
  const std::string entry = config("autostart/tessum-record.desktop");
  writeFile(entry, readFile(entry) + "X-Mine=true\n");
  const Outcome outcome = run({"setup", "--undo", "--yes"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_TRUE(contains(outcome.output, "leave " + entry + ", which was edited since"));
  EXPECT_TRUE(contains(readFile(entry), "X-Mine=true\n"));
}

TEST_F(Setup, RemovesWhatARunLeftThatWasKilledWhileItWrote) {
  openTerminal();
  ASSERT_EQ(run({"setup", "--yes"}).status, 0);
  for (const char* folder : {"autostart", "Tessum"}) {
    const std::string left = config(std::string(folder) + "/.tessum-new-abcdef");
    writeFile(left, "half of it");
    EXPECT_EQ(run({"status"}).status, 0);
    EXPECT_FALSE(fs::exists(left));
  }
}

TEST_F(Setup, LeavesLinksThatLedToNothingAsTheyWere) {
  openTerminal();
  fs::create_directories(config("autostart"));
  fs::create_directories(config("Tessum"));
  fs::create_symlink("../elsewhere.desktop", config("autostart/tessum-record.desktop"));
  fs::create_symlink("/nowhere/settings.toml", config("Tessum/settings.toml"));
  const auto before = home();
  EXPECT_EQ(run({"setup", "--yes"}).status, 1) << "the settings file cannot be written";
  EXPECT_TRUE(contains(readFile(config("elsewhere.desktop")), "Exec="));
  const Outcome outcome = run({"setup", "--undo", "--yes"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(home(), before);
}

TEST_F(Setup, LeavesARecorderAloneThatRanBefore) {
  openTerminal();
  const auto recorder = start(hostProgram(), {"record", "--no-update-check"});
  ASSERT_TRUE(eventually([&] { return isRecording(); }));
  const Outcome outcome = run({"setup", "--yes"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.output.find("start recording now"), std::string::npos);
  EXPECT_EQ(run({"setup", "--undo", "--yes"}).status, 0);
  EXPECT_TRUE(isRecording());
}

TEST_F(Setup, MendsAnEntryWhoseProgramIsGoneAndPutsItBack) {
  openTerminal();
  const std::string entry = config("autostart/tessum-record.desktop");
  fs::create_directories(config("autostart"));
  const std::string stale = "[Desktop Entry]\nExec=/nowhere/Tessum record\n";
  writeFile(entry, stale);
  ASSERT_EQ(run({"setup", "--yes"}).status, 0);
  EXPECT_TRUE(contains(readFile(entry), "Exec=" + hostProgram() + " record\n"));
  ASSERT_EQ(run({"setup", "--undo", "--yes"}).status, 0);
  EXPECT_EQ(readFile(entry), stale);
}

TEST_F(Setup, SaysOnATerminalWhatItWaitsFor) {
  openTerminal();
  const auto program =
      start("/usr/bin/script", {"-qec", hostProgram() + " setup --yes", "/dev/null"});
  const Outcome outcome = outcomeOf(*program);
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  const auto waiting = outcome.output.find("Waiting for the first session ...\r\033[K");
  ASSERT_NE(waiting, std::string::npos) << outcome.output;
  EXPECT_LT(waiting, outcome.output.find("First session  XTerm"));
}

TEST_F(Setup, SaysThatNoSessionBeginsWhileTheUserIsAway) {
  openTerminal();
  fs::create_directories(config("Tessum"));
  writeFile(config("Tessum/settings.toml"), "[record]\naway-after = \"1s\"\n");
  desktop.run("xdotool", {"search", "--sync", "--name", "Letter", "windowminimize"});
  ASSERT_TRUE(eventually([&] { return desktop.activeWindow() == 0; }));
  const Outcome outcome = run({"setup", "--yes"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_TRUE(contains(outcome.output, "First session  none yet; you count as away, since "));
}

TEST_F(Setup, SaysWhyNothingRecordsWhereThereIsNoDesktop) {
  const Outcome outcome = run({"setup", "--yes"}, "", {"DISPLAY="});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(contains(outcome.output, "Recording   no"));
  EXPECT_TRUE(contains(outcome.output, "DISPLAY is not set"));
  EXPECT_TRUE(contains(outcome.output, "At login    yes, by "));
}

TEST_F(Setup, SaysWhichLineACompositorNeedsThatStartsNoEntries) {
  const Outcome outcome = run({"setup", "--yes"}, "", {"DISPLAY=", "XDG_CURRENT_DESKTOP=sway"});
  EXPECT_TRUE(contains(outcome.output, "Add this line to " + config("sway/config") + ": exec " +
                                           hostProgram() + " record"));
}

// tests/package/setup-trial.sh runs the real systemd.
TEST_F(Setup, LeavesTheRecorderToSystemdWhereTheSessionRunsItsTarget) {
  openTerminal();
  writeFile(tool("systemctl"), kSystemctl);
  chmod(tool("systemctl").c_str(), 0700);
  writeFile(desktop.home().file("calls"), "");
  const std::string link =
      config("systemd/user/graphical-session.target.wants/tessum-record.service");
  fs::create_directories(fs::path(link).parent_path());
  fs::create_symlink("/nowhere/tessum-record.service", link);
  auto before = home();
  const Outcome outcome = run({"setup", "--yes"}, "", {"RECORDER=" + hostProgram()});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  const std::string unit = config("systemd/user/tessum-record.service");
  EXPECT_TRUE(contains(readFile(unit), "\nExecStart=" + hostProgram() + " record\n"));
  EXPECT_EQ(fs::read_symlink(link), unit);
  EXPECT_FALSE(fs::exists(config("autostart")));
  const std::string calls = readFile(desktop.home().file("calls"));
  EXPECT_TRUE(contains(calls, "--user daemon-reload\n"));
  EXPECT_TRUE(contains(calls, "--user start tessum-record.service\n"));
  EXPECT_TRUE(contains(run({"setup", "--yes"}).output, "Everything is set up"));

  EXPECT_EQ(run({"setup", "--undo", "--yes"}).status, 0);
  EXPECT_TRUE(contains(readFile(desktop.home().file("calls")),
                       "--user stop tessum-record.service\n--user daemon-reload\n"));
  EXPECT_TRUE(eventually([&] { return !isRecording(); }));
  auto after = home();
  for (auto* entries : {&before, &after}) {
    entries->erase("calls");
    entries->erase("process");
  }
  EXPECT_EQ(after, before);
}

}  // namespace
}  // namespace tessum
