// `Tessum record` on KWin.

#include "tests/desktops/kwin.h"

#include <chrono>

namespace tessum {
namespace {

using KWinRecording = KWinTest<KWin>;

TEST_F(KWinRecording, WritesWhatAPersonDoes) {
  record();
  const auto dialog = showDialog("Question");
  ASSERT_TRUE(shows(dialogRow_));
  TerminalWindow xterm(*desktop_, "xterm", "an X11 window");
  ASSERT_TRUE(shows(xtermRow_ + "an X11 window"));
  xterm.setTitle("another title");
  ASSERT_TRUE(showsAgain(xtermRow_ + "another title"));

  desktop_->activate("Question");
  ASSERT_TRUE(shows(dialogRow_));
  desktop_->script("Question", "window.fullScreen = true; window.fullScreen = false");
  desktop_->script("Question", "window.minimized = true");
  ASSERT_TRUE(shows(xtermRow_ + "another title"));
  desktop_->activate("Question");
  ASSERT_TRUE(shows(dialogRow_));
  desktop_->script("Question",
                   "workspace.createDesktop(1, 'other'); moveTo(window, 2); "
                   "showDesktop(2); showDesktop(1)");
  ASSERT_TRUE(shows(xtermRow_ + "another title"));
  desktop_->script("another title", "window.minimized = true");
  ASSERT_TRUE(showsNothing());
  desktop_->activate("another title");
  ASSERT_TRUE(shows(xtermRow_ + "another title"));
  xterm.close();
  ASSERT_TRUE(showsNothing());
  desktop_->script("Question", "showDesktop(2)");
  ASSERT_TRUE(shows(dialogRow_));
  dialog->kill();
  ASSERT_TRUE(showsNothing());
  stopRecorder();

  const std::string dialogLine = R"(\n• zenity – Question)";
  const std::string xtermLine = R"(\n• X Terminal of the Test – another title)";
  EXPECT_EQ(recorder_->report(), "Activities (8 sessions):" + dialogLine + xtermLine + xtermLine +
                                     dialogLine + xtermLine + dialogLine + xtermLine + dialogLine);
}

TEST_F(KWinRecording, EndsWithTheLastInputAndBeginsWithTheNext) {
  const auto dialog = showDialog("Question");
  record();
  ASSERT_TRUE(shows(dialogRow_)) << "it takes its time";
  stopRecorder();
  record({"--away-after", "2s"});
  ASSERT_TRUE(shows(dialogRow_));
  // KWin may count up to a twentieth less time without input: the session must not end before it
  // begins.
  const auto start = std::chrono::steady_clock::now();
  const auto hasLasted = [&] {
    return std::chrono::steady_clock::now() - start > std::chrono::milliseconds(500);
  };
  ASSERT_TRUE(eventually(hasLasted));
  desktop_->touch();
  ASSERT_TRUE(showsNothing());
  desktop_->touch();
  EXPECT_TRUE(shows(dialogRow_));
  stopRecorder();
}

TEST_F(KWinRecording, NothingIsInFrontWhileTheScreenIsLocked) {
  const auto dialog = showDialog("Question");
  record({"--away-after", "never"});
  ASSERT_TRUE(shows(dialogRow_));
  desktop_->lock();
  ASSERT_TRUE(showsNothing());
  desktop_->unlock();
  ASSERT_TRUE(shows(dialogRow_));
  stopRecorder();
}

TEST_F(KWinRecording, SaysWhatToDoWhereKWinHidesItsWindows) {
  const auto recorder =
      desktop_->start(TESSUM_PROGRAM, {"record", "--no-update-check"},
                      {"DISPLAY=", "DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent"});
  EXPECT_EQ(recorder->wait(), kFailure);
  EXPECT_EQ(recorder->errors(),
            "Tessum: This is a Wayland session without X11: the focused window cannot be seen "
            "here. KDE Plasma shows its windows over the session bus, which does not answer here, "
            "and to programs that a desktop entry permits; \"Tessum setup\" writes that entry.\n");
}

TEST_F(KWinRecording, EndsWithTheCompositorAndSaysSo) {
  const auto dialog = showDialog("Question");
  record();
  ASSERT_TRUE(shows(dialogRow_));
  desktop_->kill();
  EXPECT_EQ(recorder_->process().wait(), kFailure);
  EXPECT_EQ(recorder_->process().errors(),
            "Tessum: The Wayland display has gone away; nothing more can be recorded.\n");
  EXPECT_TRUE(showsNothing());
}

}  // namespace
}  // namespace tessum
