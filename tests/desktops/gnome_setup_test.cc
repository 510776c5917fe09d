// `Tessum setup` on GNOME.

#include <filesystem>

#include "core/workspace/gnome/shell_extension.h"
#include "tests/desktops/gnome_shell.h"
#include "tests/support/eventually.h"

namespace tessum {
namespace {

class GnomeSetup : public CompositorTest<GnomeShell> {
 protected:
  void restart(GnomeShell::Extension extension) {
    desktop_.reset();
    desktop_.emplace(extension);
    extension_ = shellExtensionFor(desktop_->run(GnomeShell::kProgram, {"--version"}).substr(12));
  }

  // What setup says; it finds only what is in the user's folders.
  std::string setUp(const std::vector<std::string>& arguments) {
    const auto setup = desktop_->start(
        TESSUM_PROGRAM, arguments,
        {"GSETTINGS_BACKEND=keyfile", "XDG_DATA_DIRS=/usr/share", "XDG_CURRENT_DESKTOP=GNOME"});
    const std::string output = setup->readRest();
    EXPECT_EQ(setup->finish(), kSuccess) << output << setup->errors();
    return output;
  }

  [[nodiscard]] std::string enabled() const {
    return readFile(desktop_->home().file("config/glib-2.0/settings/keyfile"));
  }

  std::string extension_;
};

TEST_F(GnomeSetup, TurnsOnTheExtension) {
  restart(GnomeShell::Extension::turnedOff);
  const TerminalWindow foot(*desktop_, "foot", "a title");
  const std::string output = setUp({"setup", "--yes"});
  EXPECT_NE(output.find("First session  Foot"), std::string::npos) << output;
  EXPECT_NE(enabled().find("'" + extension_ + "'"), std::string::npos);
  setUp({"setup", "--undo", "--yes"});
  EXPECT_EQ(enabled().find("'" + extension_ + "'"), std::string::npos);
}

TEST_F(GnomeSetup, InstallsTheExtensionForTheNextLogin) {
  restart(GnomeShell::Extension::none);
  const TerminalWindow foot(*desktop_, "foot", "a title");
  const std::string output = setUp({"setup", "--yes"});
  EXPECT_NE(output.find("the shell finds it at your next login"), std::string::npos) << output;
  const std::string folder = desktop_->home().file("data/gnome-shell/extensions/" + extension_);
  const std::string built = std::string(TESSUM_SHELL_EXTENSIONS) + "/" + extension_;
  for (const char* file : {"/extension.js", "/metadata.json"}) {
    EXPECT_EQ(readFile(folder + file), readFile(built + file));
  }
  EXPECT_NE(enabled().find("'" + extension_ + "'"), std::string::npos);
  setUp({"setup", "--undo", "--yes"});
  EXPECT_FALSE(std::filesystem::exists(folder));
  EXPECT_EQ(enabled().find("'" + extension_ + "'"), std::string::npos);
}

}  // namespace
}  // namespace tessum
