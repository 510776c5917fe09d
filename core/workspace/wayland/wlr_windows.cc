// Windows of compositors built on wlroots. What is reported of a window counts once "done" follows.

#include <wayland-client.h>
#include <wlr-foreign-toplevel-management-unstable-v1.h>

#include <algorithm>
#include <map>
#include <utility>

#include "core/workspace/wayland/windows.h"

namespace tessum {
namespace {

using WlrManager = zwlr_foreign_toplevel_manager_v1;
using WlrHandle = zwlr_foreign_toplevel_handle_v1;

bool isActivated(const wl_array& states) {
  const auto* begin = static_cast<const std::uint32_t*>(states.data);
  const auto* end = begin + states.size / sizeof *begin;
  return std::find(begin, end, ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_ACTIVATED) != end;
}

class WlrWindows final : public WaylandWindows {
 public:
  WlrWindows(WaylandConnection& connection, WaylandToplevels& toplevels)
      : toplevels_(toplevels),
        manager_(connection.bind<WlrManager>(zwlr_foreign_toplevel_manager_v1_interface, 3)) {
    zwlr_foreign_toplevel_manager_v1_add_listener(manager_.get(), &kManagerListener, this);
  }

  [[nodiscard]] std::string way() const override { return "Wayland (wlr-foreign-toplevel)"; }
  [[nodiscard]] int roundTrips() const override { return 1; }
  [[nodiscard]] bool hasEnded() const override { return hasEnded_; }

 private:
  static WlrWindows& from(void* self) { return *static_cast<WlrWindows*>(self); }

  static void onToplevel(void* self, WlrManager*, WlrHandle* handle) noexcept {
    WlrWindows& windows = from(self);
    zwlr_foreign_toplevel_handle_v1_add_listener(handle, &kHandleListener, self);
    windows.handles_.emplace(handle,
                             Window{WaylandOwned<WlrHandle>(handle), windows.toplevels_.add()});
  }

  static void onFinished(void* self, WlrManager*) noexcept { from(self).hasEnded_ = true; }

  static void onTitle(void* self, WlrHandle* handle, const char* title) noexcept {
    from(self).toplevels_.setTitle(from(self).idOf(handle), title);
  }

  static void onAppId(void* self, WlrHandle* handle, const char* appId) noexcept {
    from(self).toplevels_.setAppId(from(self).idOf(handle), appId);
  }

  static void onState(void* self, WlrHandle* handle, wl_array* states) noexcept {
    from(self).toplevels_.setActive(from(self).idOf(handle), isActivated(*states));
  }

  static void onDone(void* self, WlrHandle* handle) noexcept {
    from(self).toplevels_.commit(from(self).idOf(handle));
  }

  static void onClosed(void* self, WlrHandle* handle) noexcept {
    WlrWindows& windows = from(self);
    windows.toplevels_.remove(windows.idOf(handle));
    zwlr_foreign_toplevel_handle_v1_destroy(
        windows.handles_.extract(handle).mapped().handle.release());
  }

  static void onOutput(void*, WlrHandle*, wl_output*) noexcept {}
  static void onParent(void*, WlrHandle*, WlrHandle*) noexcept {}

  // The library passes on events of existing objects only.
  [[nodiscard]] WaylandToplevels::Id idOf(WlrHandle* handle) const {
    return handles_.at(handle).id;
  }

  static constexpr zwlr_foreign_toplevel_manager_v1_listener kManagerListener{
      .toplevel = onToplevel, .finished = onFinished};
  static constexpr zwlr_foreign_toplevel_handle_v1_listener kHandleListener{
      .title = onTitle,
      .app_id = onAppId,
      .output_enter = onOutput,
      .output_leave = onOutput,
      .state = onState,
      .done = onDone,
      .closed = onClosed,
      .parent = onParent};

  struct Window {
    WaylandOwned<WlrHandle> handle;
    WaylandToplevels::Id id;
  };

  WaylandToplevels& toplevels_;
  const WaylandOwned<WlrManager> manager_;
  std::map<WlrHandle*, Window> handles_;
  bool hasEnded_ = false;
};

}  // namespace

std::unique_ptr<WaylandWindows> openWlrWindows(WaylandConnection& connection,
                                               WaylandToplevels& toplevels) {
  if (!connection.offers(zwlr_foreign_toplevel_manager_v1_interface.name)) return nullptr;
  return std::make_unique<WlrWindows>(connection, toplevels);
}

}  // namespace tessum
