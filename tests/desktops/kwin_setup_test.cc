// `Tessum setup` on KDE Plasma, for a copy of the program that no package has installed.

#include <filesystem>

#include "tests/desktops/kwin.h"

namespace tessum {
namespace {

class KWinSetup : public KWinTest<RefusingKWin> {
 protected:
  // Sets the copy up, with additional variables, and undoes it.
  void expectEntryWritten(std::vector<std::string> environment) {
    environment.emplace_back("XDG_DATA_DIRS=/usr/share");
    const auto dialog = showDialog("Question");
    const auto setup = [&](const std::vector<std::string>& arguments) {
      const auto program =
          desktop_->start(desktop_->recorderProgram(TESSUM_PROGRAM), arguments, environment);
      const std::string output = program->readRest();
      EXPECT_EQ(program->finish(), kSuccess) << output << program->errors();
      return output;
    };
    const std::string entry = desktop_->home().file("data/applications/tessum-windows.desktop");
    const std::string output = setup({"setup", "--yes"});
    EXPECT_NE(output.find("by Wayland (Plasma's window management)"), std::string::npos) << output;
    EXPECT_NE(output.find("First session  zenity – Question"), std::string::npos) << output;
    EXPECT_NE(readFile(entry).find("\nExec=" + desktop_->home().file("bin/Tessum") + "\n"),
              std::string::npos);
    setup({"setup", "--undo", "--yes"});
    EXPECT_FALSE(std::filesystem::exists(entry));
  }
};

TEST_F(KWinSetup, WritesTheEntryThatLetsTheProgramSeeTheWindows) {
  expectEntryWritten({});
}

TEST_F(KWinSetup, WritesThatEntryWithoutASessionBusToo) {
  expectEntryWritten(
      {"DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent", "XDG_CURRENT_DESKTOP=KDE"});
}

}  // namespace
}  // namespace tessum
