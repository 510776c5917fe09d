// The presence of the user who has started the program.
//
// On Linux it uses:
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
// It does not see a screen locker that notifies none of these, nor programs that keep the screen on
// through the window system: Wayland's idle-inhibit protocol where the compositor does not forward
// it, XScreenSaverSuspend, and programs that simulate input.
//
// On macOS it sees the lock and the computer's sleep, from the first change on.

#pragma once

#include <memory>

#include "core/loop/system_main_loop.h"
#include "core/platform/steady_clock.h"
#include "core/presence/presence_source.h"

namespace tessum {

// Creates a source driven by `loop`; both arguments must outlive it. Where the system reports
// nothing, it calls no handler; it finds services that start later. Throws nothing. Main thread
// only.
[[nodiscard]] std::unique_ptr<PresenceSource> openSystemPresence(SystemMainLoop& loop,
                                                                 const SteadyClock& clock);

}  // namespace tessum
