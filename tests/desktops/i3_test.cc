// `Tessum record` on i3.

#include "tests/desktops/i3.h"

namespace tessum {
namespace {

class I3Recording : public CompositorTest<I3> {
 protected:
  static constexpr char kXterm[] = "XTerm|NULL|";
};

TEST_F(I3Recording, WritesWhatAPersonDoes) {
  record({"--away-after", "never"});
  TerminalWindow first(*desktop_, "xterm", "first");
  ASSERT_TRUE(shows(std::string(kXterm) + "first"));
  const TerminalWindow second(*desktop_, "xterm", "second");
  ASSERT_TRUE(shows(std::string(kXterm) + "second"));
  desktop_->command("focus left");
  ASSERT_TRUE(shows(std::string(kXterm) + "first"));
  first.setTitle("another title");
  ASSERT_TRUE(showsAgain(std::string(kXterm) + "another title"));
  desktop_->command("fullscreen toggle");
  desktop_->command("fullscreen toggle");
  desktop_->command("workspace 2");
  ASSERT_TRUE(showsNothing());
  desktop_->command("workspace 1");
  ASSERT_TRUE(shows(std::string(kXterm) + "another title"));
  first.close();
  ASSERT_TRUE(shows(std::string(kXterm) + "second"));
  stopRecorder();
}

// i3 shows nameless windows in place of all others until it manages them again.
TEST_F(I3Recording, ARestartIsNoChange) {
  const TerminalWindow first(*desktop_, "xterm", "first");
  record({"--away-after", "never"});
  ASSERT_TRUE(shows(std::string(kXterm) + "first"));
  for (int i = 0; i < 3; ++i) desktop_->restart();
  TerminalWindow second(*desktop_, "xterm", "second");
  ASSERT_TRUE(shows(std::string(kXterm) + "second"));
  stopRecorder();
}

}  // namespace
}  // namespace tessum
