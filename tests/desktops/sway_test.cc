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
  Terminal foot(*desktop_, "foot", "first title");
  const std::string footRow = "Foot of the Test|foot|";
  ASSERT_TRUE(shows(footRow + "first title"));
  foot.setTitle("second title");
  ASSERT_TRUE(showsAgain(footRow + "second title"));

  const auto dialog =
      desktop_->start("zenity", {"--info", "--title", "Question", "--text", "What?"});
  const std::string dialogRow = "zenity|zenity|Question";
  ASSERT_TRUE(shows(dialogRow));
  Terminal xterm(*desktop_, "xterm", "an X11 window");
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

}  // namespace
}  // namespace tessum
