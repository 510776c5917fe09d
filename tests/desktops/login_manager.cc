// A logind for a compositor, and GNOME's display manager, without which its shell locks no screen.
// Each line of input is a signal that the session sends: Lock or Unlock.

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>

#include "tests/support/bus/fake_logind_linux.h"

int main() {
  using tessum::FakeLogind;
  tessum::SystemMainLoop loop;
  FakeLogind logind(loop, std::getenv("DBUS_SYSTEM_BUS_ADDRESS"));
  logind.peer().answer(FakeLogind::kSessionPath, "org.freedesktop.login1.Session", "SetLockedHint",
                       [&](sd_bus_message* call) {
                         int isLocked = 0;
                         sd_bus_message_read(call, "b", &isLocked);
                         sd_bus_reply_method_return(call, "");
                         logind.changeSession("LockedHint", isLocked != 0);
                       });
  logind.peer().setProperty("/org/gnome/DisplayManager/Manager", "org.gnome.DisplayManager.Manager",
                            "Version", std::string("43.0"));
  logind.peer().takeName("org.gnome.DisplayManager");
  std::puts("ready");
  std::fflush(stdout);
  loop.watchReadable(0, [&] {
    std::string signal;
    if (std::getline(std::cin, signal)) {
      logind.emitFromSession(signal);
    } else {
      loop.quit();
    }
  });
  loop.run();
  return 0;
}
