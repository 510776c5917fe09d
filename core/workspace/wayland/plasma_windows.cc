// Windows of KDE's KWin. It offers them only to programs that a desktop entry permits, and reports
// each property by itself: first all that there are, then "initial_state".

#include <plasma-window-management.h>
#include <wayland-client.h>

#include <map>
#include <utility>

#include "core/workspace/wayland/windows.h"

namespace tessum {
namespace {

using PlasmaManager = org_kde_plasma_window_management;
using PlasmaHandle = org_kde_plasma_window;

constexpr std::uint32_t kOldestVersion = 13;  // of Plasma 5.23
constexpr std::uint32_t kKnownVersion = 16;

class PlasmaWindows final : public WaylandWindows {
 public:
  PlasmaWindows(WaylandConnection& connection, WaylandToplevels& toplevels)
      : toplevels_(toplevels),
        manager_(connection.bind<PlasmaManager>(org_kde_plasma_window_management_interface,
                                                kKnownVersion)) {
    org_kde_plasma_window_management_add_listener(manager_.get(), &kManagerListener, this);
  }

  [[nodiscard]] std::string way() const override { return "Wayland (Plasma's window management)"; }
  [[nodiscard]] int roundTrips() const override { return 2; }
  [[nodiscard]] bool hasEnded() const override { return false; }

 private:
  struct Window {
    WaylandOwned<PlasmaHandle> handle;
    WaylandToplevels::Id id;
    bool isKnown;  // as a whole
  };

  static PlasmaWindows& from(void* self) { return *static_cast<PlasmaWindows*>(self); }

  template <typename Object, typename... Arguments>
  static void ignore(void*, Object*, Arguments...) noexcept {}

  static void onWindow(void* self, PlasmaManager* manager, std::uint32_t,
                       const char* uuid) noexcept {
    PlasmaHandle* handle = org_kde_plasma_window_management_get_window_by_uuid(manager, uuid);
    org_kde_plasma_window_add_listener(handle, &kWindowListener, self);
    from(self).windows_.emplace(
        handle, Window{WaylandOwned<PlasmaHandle>(handle), from(self).toplevels_.add(), false});
  }

  static void onTitle(void* self, PlasmaHandle* handle, const char* title) noexcept {
    from(self).change(handle, [&](auto& toplevels, auto id) { toplevels.setTitle(id, title); });
  }

  static void onAppId(void* self, PlasmaHandle* handle, const char* appId) noexcept {
    from(self).change(handle, [&](auto& toplevels, auto id) { toplevels.setAppId(id, appId); });
  }

  static void onProcess(void* self, PlasmaHandle* handle, std::uint32_t process) noexcept {
    from(self).change(handle, [&](auto& toplevels, auto id) { toplevels.setProcess(id, process); });
  }

  static void onState(void* self, PlasmaHandle* handle, std::uint32_t flags) noexcept {
    const bool isActive = (flags & ORG_KDE_PLASMA_WINDOW_MANAGEMENT_STATE_ACTIVE) != 0;
    from(self).change(handle, [&](auto& toplevels, auto id) { toplevels.setActive(id, isActive); });
  }

  static void onInitialState(void* self, PlasmaHandle* handle) noexcept {
    from(self).windows_.at(handle).isKnown = true;
    from(self).change(handle, [](auto&, auto) {});
  }

  static void onUnmapped(void* self, PlasmaHandle* handle) noexcept {
    Window window = std::move(from(self).windows_.extract(handle).mapped());
    from(self).toplevels_.remove(window.id);
    org_kde_plasma_window_destroy(window.handle.release());
  }

  // The library passes on events of existing objects only.
  template <typename Change>
  void change(PlasmaHandle* handle, Change set) {
    const Window& window = windows_.at(handle);
    set(toplevels_, window.id);
    if (window.isKnown) toplevels_.commit(window.id);
  }

  static constexpr org_kde_plasma_window_management_listener kManagerListener{
      .show_desktop_changed = ignore,
      .window = ignore,
      .stacking_order_changed = ignore,
      .stacking_order_uuid_changed = ignore,
      .window_with_uuid = onWindow};
  static constexpr org_kde_plasma_window_listener kWindowListener{
      .title_changed = onTitle,
      .app_id_changed = onAppId,
      .state_changed = onState,
      .virtual_desktop_changed = ignore,
      .themed_icon_name_changed = ignore,
      .unmapped = onUnmapped,
      .initial_state = onInitialState,
      .parent_window = ignore,
      .geometry = ignore,
      .icon_changed = ignore,
      .pid_changed = onProcess,
      .virtual_desktop_entered = ignore,
      .virtual_desktop_left = ignore,
      .application_menu = ignore,
      .activity_entered = ignore,
      .activity_left = ignore,
      .resource_name_changed = ignore};

  WaylandToplevels& toplevels_;
  const WaylandOwned<PlasmaManager> manager_;
  std::map<PlasmaHandle*, Window> windows_;
};

}  // namespace

std::unique_ptr<WaylandWindows> openPlasmaWindows(WaylandConnection& connection,
                                                  WaylandToplevels& toplevels) {
  if (!connection.offers(org_kde_plasma_window_management_interface.name, kOldestVersion)) {
    return nullptr;
  }
  return std::make_unique<PlasmaWindows>(connection, toplevels);
}

}  // namespace tessum
