#include "tests/desktops/gnome_shell.h"

#include <systemd/sd-bus.h>

#include <filesystem>
#include <regex>
#include <stdexcept>

#include "core/workspace/gnome/shell_extension.h"
#include "tests/support/eventually.h"

namespace tessum {
namespace {

constexpr char kSettings[] = "GSETTINGS_BACKEND=keyfile";  // in the home folder
constexpr char kShell[] = "org.gnome.Shell";
constexpr char kShellPath[] = "/org/gnome/Shell";
constexpr char kRemoteDesktop[] = "org.gnome.Mutter.RemoteDesktop";
constexpr char kInputSession[] = "org.gnome.Mutter.RemoteDesktop.Session";

// It follows "GNOME Shell ".
constexpr std::size_t kVersionStart = 12;

// Calls a method without an interesting answer; false when it fails.
template <typename... Values>
bool call(sd_bus* bus, const std::string& path, const char* destination, const char* interface,
          const char* method, const char* types, Values... values) {
  return sd_bus_call_method(bus, destination, path.c_str(), interface, method, nullptr, nullptr,
                            types, values...) >= 0;
}

void expect(bool hasSucceeded, const char* what) {
  if (!hasSucceeded) throw std::runtime_error(std::string("gnome-shell: ") + what);
}

}  // namespace

void GnomeShell::Close::operator()(sd_bus* bus) const {
  sd_bus_close(bus);
  sd_bus_unref(bus);
}

GnomeShell::GnomeShell(Extension extension)
    : extension_(shellExtensionFor(run(kProgram, {"--version"}).substr(kVersionStart))) {
  connect(startBuses());

  run("mkdir", {"-p", home().file("config/glib-2.0/settings")});
  const std::string enabled = extension == Extension::turnedOn ? "'" + extension_ + "'" : "";
  // The user's programs may change the settings, so the file is the user's.
  run("sh", {"-c", "printf %s \"$1\" > \"$2\"", "sh",
             "[org/gnome/shell]\nenabled-extensions=@as [" + enabled +
                 "]\nwelcome-dialog-last-shown-version='99'\n"
                 "[org/gnome/desktop/interface]\nenable-animations=false\n",
             home().file("config/glib-2.0/settings/keyfile")});
  if (extension != Extension::none) installExtensions();

  launch(kProgram,
         {"--headless", "--wayland", "--virtual-monitor", "1280x800", "--wayland-display", "gnome"},
         {kSettings, "LIBGL_ALWAYS_SOFTWARE=1", "XDG_CURRENT_DESKTOP=GNOME"},
         [this] { return isOverviewShown(); });
  const std::string said = errors();
  std::smatch x11;
  expect(std::regex_search(said, x11, std::regex("public X11 display (:[0-9]+)")), "no X11");
  setDisplays("gnome", x11.str(1));
  startInput();
  setOverview(false);
}

GnomeShell::~GnomeShell() {
  kill();
}

std::vector<std::string> GnomeShell::variables() const {
  auto all = Compositor::variables();
  std::error_code ignored;
  for (const auto& file : std::filesystem::directory_iterator(runtimeFile(""), ignored)) {
    if (file.path().filename().string().starts_with(".mutter-Xwaylandauth")) {
      all.push_back("XAUTHORITY=" + file.path().string());
    }
  }
  return all;
}

void GnomeShell::installExtensions() const {
  const std::string folder = home().file("data/gnome-shell");
  run("mkdir", {"-p", folder});
  run("cp", {"-r", TESSUM_SHELL_EXTENSIONS, folder + "/extensions"});
}

void GnomeShell::enableExtension() const {
  run("env", {kSettings, "gnome-extensions", "enable", extension_});
}

void GnomeShell::disableExtension() const {
  run("env", {kSettings, "gnome-extensions", "disable", extension_});
}

void GnomeShell::touch() const {
  expect(call(bus_.get(), input_, kRemoteDesktop, kInputSession, "NotifyPointerMotionRelative",
              "dd", 1.0, 1.0),
         "no motion");
}

void GnomeShell::press(std::initializer_list<std::uint32_t> keys) const {
  for (const int isDown : {1, 0}) {
    for (const auto key : keys) {
      expect(call(bus_.get(), input_, kRemoteDesktop, kInputSession, "NotifyKeyboardKeysym", "ub",
                  key, isDown),
             "no key");
    }
  }
}

void GnomeShell::setOverview(bool isShown) const {
  expect(sd_bus_set_property(bus_.get(), kShell, kShellPath, kShell, "OverviewActive", nullptr, "b",
                             static_cast<int>(isShown)) >= 0,
         "no overview");
  expect(eventually([&] { return isOverviewShown() == isShown; }), "the overview stays");
}

bool GnomeShell::isOverviewShown() const {
  int isShown = 0;
  return sd_bus_get_property_trivial(bus_.get(), kShell, kShellPath, kShell, "OverviewActive",
                                     nullptr, 'b', &isShown) >= 0 &&
         isShown != 0;
}

void GnomeShell::connect(const std::string& address) {
  sd_bus* made = nullptr;
  bool isDone = sd_bus_new(&made) >= 0;
  bus_.reset(made);
  isDone = isDone && sd_bus_set_address(made, address.c_str()) >= 0 &&
           sd_bus_set_bus_client(made, 1) >= 0 && sd_bus_start(made) >= 0;
  expect(isDone, "cannot connect to the bus");
}

// The shell ends the session when the connection that asked for it ends.
void GnomeShell::startInput() {
  sd_bus_message* reply = nullptr;
  expect(sd_bus_call_method(bus_.get(), kRemoteDesktop, "/org/gnome/Mutter/RemoteDesktop",
                            kRemoteDesktop, "CreateSession", nullptr, &reply, "") >= 0,
         "no input");
  const char* path = "";
  expect(sd_bus_message_read(reply, "o", &path) > 0, "no session for input");
  input_ = path;
  sd_bus_message_unref(reply);
  expect(call(bus_.get(), input_, kRemoteDesktop, kInputSession, "Start", ""), "no input");
}

}  // namespace tessum
