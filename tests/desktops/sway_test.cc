// `Tessum record` on sway.

#include "tests/desktops/sway.h"

namespace tessum {
namespace {

class SwayRecording : public CompositorTest<Sway> {
 protected:
  void SetUp() override {
    CompositorTest::SetUp();
    if (IsSkipped()) return;
    desktop_->addDesktopEntry("foot", "Foot of the Test");
    desktop_->addDesktopEntry("debian-xterm", "X Terminal of the Test", "StartupWMClass=XTerm");
  }
};

TEST_F(SwayRecording, WritesWhatAPersonDoes) {
  record();
  TerminalWindow foot(*desktop_, "foot", "first title");
  const std::string footRow = "Foot of the Test|foot|";
  ASSERT_TRUE(shows(footRow + "first title"));
  foot.setTitle("second title");
  ASSERT_TRUE(showsAgain(footRow + "second title"));

  const auto dialog =
      desktop_->start("zenity", {"--info", "--title", "Question", "--text", "What?"});
  const std::string dialogRow = "zenity|zenity|Question";
  ASSERT_TRUE(shows(dialogRow));
  TerminalWindow xterm(*desktop_, "xterm", "an X11 window");
  const std::string xtermRow = "X Terminal of the Test|debian-xterm|";
  ASSERT_TRUE(shows(xtermRow + "an X11 window"));
  xterm.setTitle("another title");
  ASSERT_TRUE(showsAgain(xtermRow + "another title"));

  desktop_->command("[app_id=foot] focus");
  ASSERT_TRUE(shows(footRow + "second title"));
  desktop_->command("fullscreen enable");
  desktop_->command("fullscreen disable");
  desktop_->command("[app_id=foot] move container to workspace 2");
  ASSERT_TRUE(shows(xtermRow + "another title"));
  desktop_->command("workspace 2");
  ASSERT_TRUE(shows(footRow + "second title"));
  desktop_->command("workspace 3");
  ASSERT_TRUE(showsNothing()) << "it is empty";
  desktop_->command("workspace 2");
  ASSERT_TRUE(shows(footRow + "second title"));
  desktop_->command("move scratchpad");
  ASSERT_TRUE(showsNothing()) << "the only window is put away";
  desktop_->command("scratchpad show");
  ASSERT_TRUE(shows(footRow + "second title"));

  foot.close();
  ASSERT_TRUE(showsNothing());
  desktop_->command("[class=XTerm] focus");
  ASSERT_TRUE(shows(xtermRow + "another title"));
  xterm.close();
  ASSERT_TRUE(shows(dialogRow));
  stopRecorder();

  const std::string footLine = R"(\n• Foot of the Test – second title)";
  const std::string xtermLine = R"(\n• X Terminal of the Test – another title)";
  const std::string dialogLine = R"(\n• zenity – Question)";
  EXPECT_EQ(recorder_->report(), "Activities (10 sessions):" + dialogLine + xtermLine + footLine +
                                     footLine + footLine + xtermLine + footLine + xtermLine +
                                     dialogLine + footLine);
}

TEST_F(SwayRecording, BeginsWithTheWindowThatIsThere) {
  const TerminalWindow foot(*desktop_, "foot", "a title");
  ASSERT_TRUE(eventually([&] { return desktop_->hasWindow("a title"); }));
  record();
  EXPECT_TRUE(shows("Foot of the Test|foot|a title"));
  stopRecorder();
}

TEST_F(SwayRecording, EndsWithTheLastInputAndBeginsWithTheNext) {
  const TerminalWindow foot(*desktop_, "foot", "a title");
  ASSERT_TRUE(eventually([&] { return desktop_->hasWindow("a title"); }));
  record({"--away-after", "2s"});
  const std::string row = "Foot of the Test|foot|a title";
  ASSERT_TRUE(shows(row));
  desktop_->touch();
  ASSERT_TRUE(showsNothing());
  desktop_->touch();
  EXPECT_TRUE(shows(row));
  stopRecorder();
  EXPECT_GE(std::stod(Sql(recorder_->store())
                          .row("SELECT start_time - (SELECT end_time FROM "
                               "activities WHERE id = 1) FROM activities "
                               "WHERE id = 2")),
            1.9)
      << "two seconds have gone by without input";
}

TEST_F(SwayRecording, NothingIsInFrontWhileTheScreenIsLocked) {
  const TerminalWindow foot(*desktop_, "foot", "a title");
  record();
  const std::string row = "Foot of the Test|foot|a title";
  ASSERT_TRUE(shows(row));
  if (!isInstalled("swaylock")) GTEST_SKIP() << "swaylock is not installed";
  const auto lock = desktop_->start("swaylock", {});
  ASSERT_TRUE(showsNothing());
  lock->kill(SIGUSR1);  // like entering the password
  EXPECT_TRUE(shows(row));
  stopRecorder();
}

TEST_F(SwayRecording, EndsWithTheCompositorAndSaysSo) {
  const TerminalWindow foot(*desktop_, "foot", "a title");
  record();
  ASSERT_TRUE(shows("Foot of the Test|foot|a title"));
  desktop_->kill();
  EXPECT_EQ(recorder_->process().wait(), kFailure);
  EXPECT_EQ(recorder_->process().errors(),
            "Tessum: The Wayland display has gone away; nothing more can be recorded.\n");
  EXPECT_TRUE(showsNothing());
}

TEST_F(SwayRecording, DoesNotWaitForACompositorThatHangs) {
  desktop_->freeze();
  const auto recorder = desktop_->start(TESSUM_PROGRAM, {"record", "--no-update-check"});
  EXPECT_EQ(recorder->wait(), kFailure);
  EXPECT_EQ(recorder->errors(), "Tessum: The Wayland display does not answer.\n");
  desktop_->thaw();
}

// sway sends a program no more events once it could not send one.
TEST_F(SwayRecording, SaysThatATitleIsTooLongForTheCompositor) {
  TerminalWindow xterm(*desktop_, "xterm", "a title");
  record();
  const std::string row = "X Terminal of the Test|debian-xterm|a title";
  ASSERT_TRUE(shows(row));
  desktop_->run("xdotool", {"search", "--onlyvisible", "--class", "xterm", "set_window", "--name",
                            std::string(100'000, 'x')});
  EXPECT_EQ(recorder_->process().wait(), kFailure);
  EXPECT_EQ(recorder_->process().errors(),
            "Tessum: The Wayland compositor has ended the connection, as some do when a window has "
            "a title of thousands of letters; nothing more can be recorded.\n");
  EXPECT_TRUE(showsNothing());
}

TEST_F(SwayRecording, EachOfAThousandChangesOfFocusIsOneSession) {
  constexpr int kChanges = 1000;
  const TerminalWindow first(*desktop_, "foot", "first");
  record();
  const std::string names[] = {"Foot of the Test|foot|first",
                               "X Terminal of the Test|debian-xterm|second"};
  ASSERT_TRUE(shows(names[0]));
  const TerminalWindow second(*desktop_, "xterm", "second");
  ASSERT_TRUE(shows(names[1]));
  rows_.back() = names[1] + "|closed";
  for (int i = 0; i < kChanges; ++i) {
    desktop_->command(i % 2 == 0 ? "[app_id=foot] focus" : "[class=XTerm] focus");
    rows_.push_back(names[i % 2] + "|closed");
  }
  rows_.back() = names[1] + "|open";
  EXPECT_TRUE(recorder_->comesTo(rows_)) << recorder_->sessions().size();
  stopRecorder();
}

}  // namespace
}  // namespace tessum
