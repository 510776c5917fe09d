#include "tests/desktops/kwin.h"

#include <filesystem>
#include <sstream>

namespace tessum {
namespace {

// What KWin 5 and 6 call by different names.
constexpr char kNames[] = R"(
const isSix = 'windowList' in workspace;
const list = isSix ? workspace.windowList : workspace.clientList;
function activate(window) {
  if (isSix) workspace.activeWindow = window;
  else workspace.activeClient = window;
}
function showDesktop(number) {
  workspace.currentDesktop = isSix ? workspace.desktops[number - 1] : number;
}
function moveTo(window, number) {
  if (isSix) window.desktops = [workspace.desktops[number - 1]];
  else window.desktop = number;
}
)";

}  // namespace

// The program as it is installed has a power that not every container can grant, so a copy without
// it runs. KWin passes the name of its X11 display to the programs that it starts.
KWin::KWin(Permission permission) {
  startBuses();
  run("mkdir", {"-p", home().file("bin"), home().file("data/applications")});
  const std::string program = home().file("bin/kwin_wayland");
  std::filesystem::copy_file(run("sh", {"-c", "command -v kwin_wayland"}), program);
  std::filesystem::copy_file(TESSUM_PROGRAM, recorderProgram(TESSUM_PROGRAM));
  std::filesystem::copy_file(TESSUM_FAKE_INPUT, home().file("bin/fake_input"));
  if (permission == Permission::granted) allow("bin/Tessum", "org_kde_plasma_window_management");
  allow("bin/fake_input", "org_kde_kwin_fake_input");

  // Plasma brings this file; without it, KWin 6 finds no desktop entries.
  run("mkdir", {"-p", home().file("config/menus")});
  writeFile(home().file("config/menus/applications.menu"),
            "<Menu><Name>Applications</Name><DefaultAppDirs/><Include><All/></Include></Menu>\n");

  const std::string told = home().file("display");
  const std::string tell = home().file("bin/tell");
  writeFile(tell, "#!/bin/sh\necho \"$DISPLAY\" > " + told + ".new && mv " + told + ".new " + told +
                      "\n");
  std::filesystem::permissions(tell, std::filesystem::perms{0755});
  launch(program,
         {"--virtual", "--xwayland", "--width", "1280", "--height", "800", "--no-global-shortcuts",
          "--socket", "wayland-test", tell},
         {"KWIN_COMPOSE=Q"}, [&] { return std::filesystem::exists(told); });
  std::string x11;
  std::istringstream(readFile(told)) >> x11;
  setDisplays("wayland-test", x11);
}

void KWin::allow(const std::string& program, const std::string& interface) const {
  writeFile(home().file("data/applications/" + interface + ".desktop"),
            "[Desktop Entry]\nType=Application\nName=" + program +
                "\nExec=" + home().file(program) +
                "\nNoDisplay=true\nX-KDE-Wayland-Interfaces=" + interface + "\n");
}

void KWin::script(const std::string& title, const std::string& statements) const {
  const std::string path = home().file("script.js");
  writeFile(path, std::string(kNames) +
                      "for (const window of list()) {\n  if (window.caption == '" + title +
                      "') { " + statements + " }\n}\n");
  // KWin reads the file in the background, so the script stays until the next one.
  static_cast<void>(call("unloadScript", {"string:test"}));
  static_cast<void>(call("loadScript", {"string:" + path, "string:test"}));
  static_cast<void>(call("start", {}));
}

std::string KWin::call(const std::string& member, const std::vector<std::string>& arguments) const {
  std::vector<std::string> all{"--session", "--print-reply", "--dest=org.kde.KWin", "/Scripting",
                               "org.kde.kwin.Scripting." + member};
  all.insert(all.end(), arguments.begin(), arguments.end());
  return run("dbus-send", all);
}

}  // namespace tessum
