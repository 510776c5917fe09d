// A person who sets Tessum up.

#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tests/desktop/user.h"
#include "tests/support/desktop/x11_desktop.h"
#include "tests/support/eventually.h"
#include "tests/support/sql.h"

namespace tessum {

// Each path below `folder`, with its permissions and what it holds.
inline std::map<std::string, std::string> listing(const std::string& folder) {
  std::map<std::string, std::string> entries;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    struct stat status {};
    lstat(entry.path().c_str(), &status);
    std::string text = std::to_string(status.st_mode) + " ";
    if (entry.is_symlink()) {
      text += std::filesystem::read_symlink(entry.path()).string();
    } else if (entry.is_regular_file()) {
      text += readFile(entry.path());
    }
    entries[entry.path().lexically_relative(folder).string()] = text;
  }
  return entries;
}

// A person on an X11 desktop with a terminal in front, and without systemd: the program that speaks
// to it is not there, or is `systemctl` where a test writes one.
class Setup : public testing::Test {
 protected:
  Setup() {
    std::filesystem::create_directory(desktop.home().file("bin"));
    std::filesystem::create_symlink("/usr/bin/cat", tool("cat"));
  }

  // Ends a recorder that a test has left behind.
  ~Setup() override { run({"setup", "--undo", "--yes"}); }

  std::string tool(const std::string& name) const { return desktop.home().file("bin/" + name); }
  std::string config(const std::string& name) const {
    return desktop.home().file("config/" + name);
  }

  void openTerminal() {
    desktop.startWindowManager();
    terminal_ = desktop.start("xterm", {"-T", "Letter"});
    ASSERT_TRUE(eventually([&] { return desktop.activeWindow() != 0; }));
  }

  std::unique_ptr<ChildProcess> start(const std::string& program,
                                      const std::vector<std::string>& arguments,
                                      const std::vector<std::string>& more = {}) const {
    std::vector<std::string> environment = more;  // of two values the first counts
    environment.push_back("PATH=" + desktop.home().file("bin"));
    environment.push_back("XDG_RUNTIME_DIR=" + desktop.home().file("run"));
    environment.push_back("DBUS_SESSION_BUS_ADDRESS=unix:path=" + desktop.home().file("run/bus"));
    environment.push_back("XDG_DATA_DIRS=" + desktop.home().file("share"));
    return desktop.start(program, arguments, environment);
  }

  Outcome run(const std::vector<std::string>& arguments, std::string_view input = "",
              const std::vector<std::string>& more = {}) const {
    const auto program = start(hostProgram(), arguments, more);
    program->write(input);
    return outcomeOf(*program);
  }

  // What setup and its undoing must leave as it is: all but the history.
  std::map<std::string, std::string> home() const {
    auto entries = listing(desktop.home().path());
    for (const char* path :
         {"data", "data/Tessum", "data/Tessum/activities.db", "data/Tessum/recorder.lock"}) {
      entries.erase(path);
    }
    return entries;
  }

  bool isRecording() const { return bool(contains(run({"status"}).output, "Recording  yes")); }

  Desktop desktop;

 private:
  std::unique_ptr<ChildProcess> terminal_;
};

}  // namespace tessum
