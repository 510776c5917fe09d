// The presence of the user who has started the program.
//
// On Linux these are seen:
//
//   locked      logind's LockedHint, and another session in front; the ActiveChanged of
//               org.freedesktop.ScreenSaver and of the screen savers of GNOME, Cinnamon, MATE and
//               Xfce; logind's signal Lock for five seconds, by when a locker has said so itself
//   asleep      logind's PrepareForSleep
//   ended       logind's SessionRemoved, a session that is "closing", and PrepareForShutdown
//   kept awake  logind's inhibitors of this user against "idle", in block mode; those of the GNOME
//               session manager, which Cinnamon's and MATE's are alike, and of KDE's power
//               management. A call of org.freedesktop.ScreenSaver.Inhibit is seen where the desktop
//               passes it on to one of these, as GNOME and KDE do.
//
// Not seen are a screen locker that tells none of these, and what keeps the screen awake by way of
// the window system: the idle-inhibit protocol of Wayland where the compositor keeps that to
// itself, XScreenSaverSuspend, and programs that pretend to be input.
//
// On macOS the lock and the computer's sleep are seen, from the first change on.

#pragma once

#include <memory>

#include "core/loop/system_main_loop.h"
#include "core/platform/steady_clock.h"
#include "core/presence/presence_source.h"

namespace tessum {

// A source driven by `loop`; both arguments must outlive it. Where the system tells nothing it is
// silent, and where a service comes later it is found. Throws nothing. Main thread only.
[[nodiscard]] std::unique_ptr<PresenceSource> openSystemPresence(SystemMainLoop& loop,
                                                                 const SteadyClock& clock);

}  // namespace tessum
