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

std::string Compositor::startBuses() {
  session_ = startBus("session");
  system_ = startBus("system");
  logind_ = start(TESSUM_LOGIN_MANAGER, {});
  if (!logind_->readLine()) throw std::runtime_error("no logind: " + logind_->errors());
  return session_;
}

std::string Compositor::startBus(const std::string& name) {
  const std::string address = "unix:path=" + runtimeFile(name);
  writeFile(home().file(name + ".conf"),
            "<busconfig><listen>" + address +
                "</listen><policy context='default'><allow user='*'/><allow send_destination='*' "
                "eavesdrop='true'/><allow eavesdrop='true'/><allow own='*'/></policy></busconfig>");
  buses_.push_back(start("dbus-daemon", {"--config-file=" + home().file(name + ".conf"), "--nofork",
                                         "--nopidfile", "--print-address"}));
  if (!buses_.back()->readLine()) throw std::runtime_error("no bus: " + buses_.back()->errors());
  return address;
}

// Without a bus GTK would look for the one of accessibility, and wait.
std::vector<std::string> Compositor::variables() const {
  std::vector<std::string> all{"XDG_RUNTIME_DIR=" + home().file("run"), "NO_AT_BRIDGE=1",
                               "DBUS_SESSION_BUS_ADDRESS=" + session_,
                               "DBUS_SYSTEM_BUS_ADDRESS=" + system_, "XDG_SESSION_ID=7"};
  all.insert(all.end(), displays_.begin(), displays_.end());
  return all;
}

TerminalWindow::TerminalWindow(const Compositor& compositor, const std::string& program,
                               const std::string& title) {
  static int number = 0;
  const std::string path = compositor.home().file("titles" + std::to_string(++number));
  compositor.run("mkfifo", {path});
  pipe_ = open(path.c_str(), O_RDWR | O_CLOEXEC);
  process_ = compositor.start(
      program, {"-T", title, "-e", "sh", "-c",
                "while read -r title; do printf '\\033]2;%s\\007' \"$title\"; done < " + path});
}

TerminalWindow::~TerminalWindow() {
  ::close(pipe_);
}

void TerminalWindow::setTitle(const std::string& title) {
  if (dprintf(pipe_, "%s\n", title.c_str()) < 0) throw std::runtime_error("no terminal");
}

}  // namespace tessum
