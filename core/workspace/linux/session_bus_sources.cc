#include "core/workspace/linux/session_bus_sources.h"

#include <memory>
#include <utility>

#include "core/bus/bus_names.h"
#include "core/workspace/gnome/front_source.h"
#include "core/workspace/gnome/idle_source.h"
#include "core/workspace/kwin/front_source.h"
#include "core/workspace/linux/environment.h"

namespace tessum {

DesktopSources openSessionBusSources(SystemMainLoop& loop, const SteadyClock& clock,
                                     WorkspaceNoticeHandler notice) {
  const auto names = namesOnBus(Bus::Kind::session);
  const auto session = std::make_shared<Bus>(loop, Bus::Kind::session);
  DesktopSources sources;
  if (names.contains("org.kde.KWin")) {
    sources.front =
        openKWinFrontSource(loop, clock, session, systemDesktopEntries(), std::move(notice));
  } else if (names.contains("org.gnome.Shell")) {
    sources.idle = openGnomeIdleSource(clock, session);
    sources.front = openGnomeFrontSource(loop, clock, session, systemDesktopEntries(),
                                         systemDataFolders(), std::move(notice));
  }
  return sources;
}

}  // namespace tessum
