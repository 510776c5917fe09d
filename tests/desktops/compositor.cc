#include "tests/desktops/compositor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <stdexcept>

#include "tests/support/eventually.h"

namespace tessum {

bool isInstalled(const std::string& program) {
  const char* path = std::getenv("PATH");
  std::istringstream folders(path == nullptr ? "" : path);
  for (std::string folder; std::getline(folders, folder, ':');) {
    if (access((folder + "/" + program).c_str(), X_OK) == 0) return true;
  }
  return false;
}

Compositor::Compositor() : TestDesktop(User::ordinary) {
  setBuses("unix:path=/nonexistent", "unix:path=/nonexistent");
  run("mkdir", {"-m", "700", home().file("run")});
}

void Compositor::addDesktopEntry(const std::string& id, const std::string& name,
                                 const std::string& keys) const {
  std::filesystem::create_directories(home().file("share/applications"));
  writeFile(home().file("share/applications/" + id + ".desktop"),
            "[Desktop Entry]\nType=Application\nName=" + name + "\n" + keys + "\n");
}

void Compositor::launch(const std::string& program, const std::vector<std::string>& arguments,
                        const std::vector<std::string>& environment,
                        const std::function<bool()>& isReady) {
  process_ = start(program, arguments, environment);
  if (!eventually(isReady)) throw std::runtime_error(program + ": " + process_->errors());
}

void Compositor::setDisplays(const std::string& wayland, const std::string& x11) {
  displays_ = {"WAYLAND_DISPLAY=" + wayland, "DISPLAY=" + x11};
}

void Compositor::setBuses(const std::string& session, const std::string& system) {
  buses_ = {"DBUS_SESSION_BUS_ADDRESS=" + session, "DBUS_SYSTEM_BUS_ADDRESS=" + system};
}

// Without a bus GTK would look for the one of accessibility, and wait.
std::vector<std::string> Compositor::variables() const {
  std::vector<std::string> all{"XDG_RUNTIME_DIR=" + home().file("run"), "NO_AT_BRIDGE=1"};
  all.insert(all.end(), displays_.begin(), displays_.end());
  all.insert(all.end(), buses_.begin(), buses_.end());
  return all;
}

Terminal::Terminal(const Compositor& compositor, const std::string& program,
                   const std::string& title) {
  static int number = 0;
  const std::string path = compositor.home().file("titles" + std::to_string(++number));
  compositor.run("mkfifo", {path});
  pipe_ = open(path.c_str(), O_RDWR | O_CLOEXEC);
  process_ = compositor.start(
      program, {"-T", title, "-e", "sh", "-c",
                "while read -r title; do printf '\\033]2;%s\\007' \"$title\"; done < " + path});
}

Terminal::~Terminal() {
  ::close(pipe_);
}

void Terminal::setTitle(const std::string& title) {
  if (dprintf(pipe_, "%s\n", title.c_str()) < 0) throw std::runtime_error("no terminal");
}

}  // namespace tessum
