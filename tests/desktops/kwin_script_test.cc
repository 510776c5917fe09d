// `Tessum record` on a KWin that does not let it see the windows on Wayland: a script tells of
// them.

#include <gtest/gtest.h>

#include <string>

#include "tests/desktops/kwin.h"
#include "tests/support/eventually.h"

namespace tessum {
namespace {

using KWinScriptRecording = KWinTest<RefusingKWin>;

TEST_F(KWinScriptRecording, WritesWhatAPersonDoes) {
  record({"--away-after", "never"});
  const auto dialog = showDialog("Question");
  ASSERT_TRUE(shows(dialogRow_));
  TerminalWindow xterm(*desktop_, "xterm", "an X11 window");
  ASSERT_TRUE(shows(xtermRow_ + "an X11 window"));
  xterm.setTitle("another title");
  ASSERT_TRUE(showsAgain(xtermRow_ + "another title"));
  desktop_->activate("Question");
  ASSERT_TRUE(shows(dialogRow_));
  desktop_->script("Question", "window.minimized = true");
  ASSERT_TRUE(shows(xtermRow_ + "another title"));
  desktop_->script("another title", "window.minimized = true");
  ASSERT_TRUE(showsNothing());
  desktop_->activate("another title");
  ASSERT_TRUE(shows(xtermRow_ + "another title"));
  xterm.close();
  ASSERT_TRUE(showsNothing());
  stopRecorder();
}

TEST_F(KWinScriptRecording, GoesOnAfterARecorderThatWasKilled) {
  const auto dialog = showDialog("Question");
  record({"--away-after", "never"});
  ASSERT_TRUE(shows(dialogRow_));
  recorder_->process().kill(SIGKILL);
  static_cast<void>(recorder_->process().wait());
  record({"--away-after", "never"});
  const TerminalWindow xterm(*desktop_, "xterm", "an X11 window");
  EXPECT_TRUE(eventually([&] {
    const auto sessions = recorder_->sessions();
    return !sessions.empty() && sessions.back() == xtermRow_ + "an X11 window|open";
  }));
}

TEST_F(KWinScriptRecording, GoesOnBesideADoctor) {
  const auto dialog = showDialog("Question");
  record({"--away-after", "never"});
  ASSERT_TRUE(shows(dialogRow_));
  const auto doctor = desktop_->start(desktop_->recorderProgram(TESSUM_PROGRAM), {"doctor"});
  const std::string findings = doctor->readRest();
  EXPECT_NE(findings.find("a script in KWin"), std::string::npos) << findings;
  const TerminalWindow xterm(*desktop_, "xterm", "an X11 window");
  ASSERT_TRUE(shows(xtermRow_ + "an X11 window"));
  stopRecorder();
}

}  // namespace
}  // namespace tessum
