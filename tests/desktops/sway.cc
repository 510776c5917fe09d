#include "tests/desktops/sway.h"

#include <filesystem>
#include <sstream>

namespace tessum {

// sway chooses the names of its displays, and passes them to the programs that it starts.
Sway::Sway() {
  const std::string told = home().file("displays");
  writeFile(home().file("sway.conf"), "exec echo \"$WAYLAND_DISPLAY $DISPLAY\" > " + told +
                                          ".new && mv " + told + ".new " + told + "\n");
  launch(kProgram, {"--config", home().file("sway.conf")},
         {"WLR_BACKENDS=headless", "WLR_RENDERER=pixman", "WLR_LIBINPUT_NO_DEVICES=1",
          "SWAYSOCK=" + socket_},
         [&] { return std::filesystem::exists(told); });
  std::istringstream displays(readFile(told));
  std::string wayland;
  std::string x11;
  displays >> wayland >> x11;
  setDisplays(wayland, x11);
}

}  // namespace tessum
