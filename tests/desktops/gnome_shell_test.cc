// `Tessum record` on GNOME.

#include "tests/desktops/gnome_shell.h"
#include "tests/support/eventually.h"

namespace tessum {
namespace {

// Keysyms.
constexpr std::uint32_t kEscape = 0xFF1B;
constexpr std::uint32_t kPageUp = 0xFF55;
constexpr std::uint32_t kPageDown = 0xFF56;
constexpr std::uint32_t kF11 = 0xFFC8;
constexpr std::uint32_t kShift = 0xFFE1;
constexpr std::uint32_t kAlt = 0xFFE9;
constexpr std::uint32_t kSuper = 0xFFEB;

class GnomeRecording : public CompositorTest<GnomeShell> {
 protected:
  void addEntries() {
    desktop_->addDesktopEntry("foot", "Foot of the Test");
    desktop_->addDesktopEntry("debian-xterm", "X Terminal of the Test", "StartupWMClass=XTerm");
  }

  // Whether the recorder says that.
  [[nodiscard]] testing::AssertionResult says(const std::string& part) {
    const auto errors = [&] { return recorder_->process().errors(); };
    if (eventually([&] { return errors().find(part) != std::string::npos; })) {
      return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << errors();
  }

  static constexpr char kFoot[] = "Foot of the Test|foot|";
  static constexpr char kXterm[] = "X Terminal of the Test|debian-xterm|";
};

TEST_F(GnomeRecording, WritesWhatAPersonDoes) {
  addEntries();
  record({"--away-after", "never"});
  TerminalWindow foot(*desktop_, "foot", "first title");
  ASSERT_TRUE(shows(std::string(kFoot) + "first title"));
  foot.setTitle("second title");
  ASSERT_TRUE(showsAgain(std::string(kFoot) + "second title"));
  TerminalWindow xterm(*desktop_, "xterm", "an X11 window");
  ASSERT_TRUE(shows(std::string(kXterm) + "an X11 window"));
  xterm.setTitle("another title");
  ASSERT_TRUE(showsAgain(std::string(kXterm) + "another title"));

  desktop_->press({kAlt, kEscape});
  ASSERT_TRUE(shows(std::string(kFoot) + "second title"));
  desktop_->press({kF11});  // over the whole screen
  desktop_->press({kF11});
  desktop_->setOverview(true);
  ASSERT_TRUE(showsNothing()) << "no window takes the input of the overview";
  desktop_->setOverview(false);
  ASSERT_TRUE(shows(std::string(kFoot) + "second title"));
  desktop_->press({kSuper, 'h'});
  ASSERT_TRUE(shows(std::string(kXterm) + "another title")) << "the other one is minimised";
  desktop_->press({kSuper, kShift, kPageDown});
  desktop_->press({kSuper, kPageUp});
  ASSERT_TRUE(showsNothing()) << "the only window that is shown is on another workspace";
  desktop_->press({kSuper, kPageDown});
  ASSERT_TRUE(shows(std::string(kXterm) + "another title"));
  xterm.close();
  ASSERT_TRUE(showsNothing());
  stopRecorder();

  const std::string footLine = R"(\n• Foot of the Test – second title)";
  const std::string xtermLine = R"(\n• X Terminal of the Test – another title)";
  EXPECT_EQ(recorder_->report(), "Activities (6 sessions):" + xtermLine + xtermLine + footLine +
                                     footLine + xtermLine + footLine);
}

TEST_F(GnomeRecording, EndsWithoutInputAndBeginsWithTheNext) {
  addEntries();
  const TerminalWindow foot(*desktop_, "foot", "a title");
  desktop_->touch();
  record({"--away-after", "3s"});
  ASSERT_TRUE(shows(std::string(kFoot) + "a title"));
  for (int i = 0; i < 2; ++i) {
    desktop_->touch();
    ASSERT_TRUE(showsNothing()) << "nobody touches anything";
    desktop_->touch();
    ASSERT_TRUE(shows(std::string(kFoot) + "a title"));
  }
  stopRecorder();
}

TEST_F(GnomeRecording, EndsWhileTheScreenIsLocked) {
  addEntries();
  record({"--away-after", "never"});
  const TerminalWindow foot(*desktop_, "foot", "a title");
  ASSERT_TRUE(shows(std::string(kFoot) + "a title"));
  desktop_->lock();
  ASSERT_TRUE(showsNothing());
  desktop_->unlock();
  ASSERT_TRUE(shows(std::string(kFoot) + "a title"));
  stopRecorder();
}

TEST_F(GnomeRecording, EndsWithTheShell) {
  addEntries();
  record({"--away-after", "never"});
  const TerminalWindow foot(*desktop_, "foot", "a title");
  ASSERT_TRUE(shows(std::string(kFoot) + "a title"));
  desktop_->kill();
  ASSERT_TRUE(showsNothing());
  EXPECT_EQ(recorder_->process().wait(), kFailure);
  EXPECT_EQ(recorder_->process().errors(),
            "Tessum: GNOME Shell has ended; nothing more can be recorded.\n");
}

TEST_F(GnomeRecording, WaitsUntilTheExtensionIsTurnedOn) {
  desktop_.reset();
  desktop_.emplace(GnomeShell::Extension::turnedOff);
  addEntries();
  record({"--away-after", "never"});
  const TerminalWindow foot(*desktop_, "foot", "a title");
  ASSERT_TRUE(says("it is turned off. Run \"Tessum setup\"."));
  ASSERT_TRUE(recorder_->sessions().empty());
  desktop_->enableExtension();
  ASSERT_TRUE(shows(std::string(kFoot) + "a title"));
  desktop_->disableExtension();
  ASSERT_TRUE(showsNothing());
  desktop_->enableExtension();
  ASSERT_TRUE(shows(std::string(kFoot) + "a title"));
}

TEST_F(GnomeRecording, TellsThatTheShellFindsANewExtensionAtTheNextLogin) {
  desktop_.reset();
  desktop_.emplace(GnomeShell::Extension::none);
  record({"--away-after", "never"});
  ASSERT_TRUE(says("it is not installed. Run \"Tessum setup\""));
  recorder_.reset();
  desktop_->installExtensions();
  record({"--away-after", "never"});
  ASSERT_TRUE(says("the shell finds it at your next login. Log out"));
  EXPECT_NE(desktop_->run(TESSUM_PROGRAM, {"status"}).find("at your next login"),
            std::string::npos);
}

}  // namespace
}  // namespace tessum
