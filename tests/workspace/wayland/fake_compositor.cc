#include "tests/workspace/wayland/fake_compositor.h"

#include <ext-idle-notify-v1.h>
#include <idle.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <wayland-server-protocol.h>
#include <wlr-foreign-toplevel-management-unstable-v1.h>

#include <future>
#include <optional>
#include <stdexcept>

namespace tessum {
namespace {

void destroy(wl_client*, wl_resource* resource) {
  wl_resource_destroy(resource);
}

wl_resource* make(wl_client* client, const wl_interface& interface, std::uint32_t version,
                  std::uint32_t id) {
  return wl_resource_create(client, &interface, static_cast<int>(version), id);
}

}  // namespace

// What the library calls for a client.
struct FakeCompositor::Offers {
  static FakeCompositor& from(void* self) { return *static_cast<FakeCompositor*>(self); }

  // The pointer to a resource that is kept is cleared with it.
  template <wl_resource* FakeCompositor::*kept>
  static void forget(wl_resource* resource) {
    auto& compositor = from(wl_resource_get_user_data(resource));
    if (compositor.*kept == resource) compositor.*kept = nullptr;
  }

  static void bindManager(wl_client* client, void* self, std::uint32_t version, std::uint32_t id) {
    auto& compositor = from(self);
    compositor.manager_ = make(client, zwlr_foreign_toplevel_manager_v1_interface, version, id);
    wl_resource_set_implementation(compositor.manager_, nullptr, self,
                                   forget<&FakeCompositor::manager_>);
    for (auto& window : compositor.windows_) compositor.introduce(window);
  }

  static void bindSeat(wl_client* client, void*, std::uint32_t version, std::uint32_t id) {
    wl_resource_set_implementation(make(client, wl_seat_interface, version, id), nullptr, nullptr,
                                   nullptr);
  }

  static void keepTimer(void* self, wl_resource* timer, const void* requests,
                        std::uint32_t milliseconds, bool isKWins) {
    auto& compositor = from(self);
    wl_resource_set_implementation(timer, requests, self, forget<&FakeCompositor::timer_>);
    compositor.timer_ = timer;
    compositor.isKWins_ = isKWins;
    compositor.timers_.push_back(milliseconds);
  }

  static void makeCommonTimer(wl_client* client, wl_resource* notifier, std::uint32_t id,
                              std::uint32_t milliseconds, wl_resource*) {
    static const struct ext_idle_notification_v1_interface kRequests { .destroy = destroy };
    keepTimer(wl_resource_get_user_data(notifier),
              make(client, ext_idle_notification_v1_interface, 1, id), &kRequests, milliseconds,
              false);
  }

  static void bindCommon(wl_client* client, void* self, std::uint32_t version, std::uint32_t id) {
    // Later versions of the protocol have more requests, which stay null.
    static const auto kRequests = [] {
      struct ext_idle_notifier_v1_interface requests {};
      requests.destroy = destroy;
      requests.get_idle_notification = makeCommonTimer;
      return requests;
    }();
    wl_resource_set_implementation(make(client, ext_idle_notifier_v1_interface, version, id),
                                   &kRequests, self, nullptr);
  }

  static void makeKWinTimer(wl_client* client, wl_resource* idle, std::uint32_t id, wl_resource*,
                            std::uint32_t milliseconds) {
    static const struct org_kde_kwin_idle_timeout_interface kRequests {
      .release = destroy, .simulate_user_activity = nullptr
    };
    keepTimer(wl_resource_get_user_data(idle),
              make(client, org_kde_kwin_idle_timeout_interface, 1, id), &kRequests, milliseconds,
              true);
  }

  static void bindKWin(wl_client* client, void* self, std::uint32_t version, std::uint32_t id) {
    static const struct org_kde_kwin_idle_interface kRequests { .get_idle_timeout = makeKWinTimer };
    wl_resource_set_implementation(make(client, org_kde_kwin_idle_interface, version, id),
                                   &kRequests, self, nullptr);
  }

  static int onWakeUp(int descriptor, std::uint32_t, void* self) {
    eventfd_t ignored = 0;
    eventfd_read(descriptor, &ignored);
    from(self).task_();
    return 0;
  }
};

FakeCompositor::FakeCompositor(Idle idle)
    : display_(wl_display_create()), wakeUp_(eventfd(0, EFD_CLOEXEC)) {
  if (wl_display_add_socket(display_, kDisplay) != 0) throw std::runtime_error("no display");
  wakeUpSource_ = wl_event_loop_add_fd(wl_display_get_event_loop(display_), wakeUp_,
                                       WL_EVENT_READABLE, Offers::onWakeUp, this);
  wl_global_create(display_, &zwlr_foreign_toplevel_manager_v1_interface, 3, this,
                   Offers::bindManager);
  wl_global_create(display_, &wl_seat_interface, 5, this, Offers::bindSeat);
  if (idle == Idle::common) {
    wl_global_create(display_, &ext_idle_notifier_v1_interface, 1, this, Offers::bindCommon);
  } else if (idle == Idle::kwin) {
    wl_global_create(display_, &org_kde_kwin_idle_interface, 1, this, Offers::bindKWin);
  }
  thread_ = std::thread([this] { wl_display_run(display_); });
}

FakeCompositor::~FakeCompositor() {
  stop();
  close(wakeUp_);
}

void FakeCompositor::stop() {
  if (isStopping_) return;
  isStopping_ = true;
  run([this] { wl_display_terminate(display_); });
  thread_.join();
  wl_display_destroy_clients(display_);
  wl_event_source_remove(wakeUpSource_);
  wl_display_destroy(display_);
}

void FakeCompositor::run(const std::function<void()>& task) {
  std::promise<void> done;
  task_ = [&] {
    task();
    done.set_value();
  };
  eventfd_write(wakeUp_, 1);
  done.get_future().wait();
}

void FakeCompositor::introduce(Window& window) {
  window.resource =
      make(wl_resource_get_client(manager_), zwlr_foreign_toplevel_handle_v1_interface, 3, 0);
  static const struct zwlr_foreign_toplevel_handle_v1_interface kRequests {
    .set_maximized = nullptr, .unset_maximized = nullptr, .set_minimized = nullptr,
    .unset_minimized = nullptr, .activate = nullptr, .close = nullptr, .set_rectangle = nullptr,
    .destroy = destroy, .set_fullscreen = nullptr, .unset_fullscreen = nullptr
  };
  wl_resource_set_implementation(window.resource, &kRequests, this, nullptr);
  zwlr_foreign_toplevel_manager_v1_send_toplevel(manager_, window.resource);
  for (const auto& event : window.history) event(window.resource);
}

std::size_t FakeCompositor::addWindow() {
  run([this] {
    Window& window = windows_.emplace_back();
    if (manager_ != nullptr) introduce(window);
  });
  return windows_.size() - 1;
}

void FakeCompositor::tell(std::size_t window, const std::function<void(wl_resource*)>& event) {
  run([&] {
    Window& told = windows_.at(window);
    if (manager_ == nullptr) {
      told.history.push_back(event);
    } else if (told.resource != nullptr) {
      event(told.resource);
    }
  });
}

void FakeCompositor::tellTitle(std::size_t window, const std::string& title) {
  tell(window, [title](wl_resource* handle) {
    zwlr_foreign_toplevel_handle_v1_send_title(handle, title.c_str());
  });
}

void FakeCompositor::tellAppId(std::size_t window, const std::string& appId) {
  tell(window, [appId](wl_resource* handle) {
    zwlr_foreign_toplevel_handle_v1_send_app_id(handle, appId.c_str());
  });
}

void FakeCompositor::tellActive(std::size_t window, bool isActive) {
  tell(window, [isActive](wl_resource* handle) {
    std::uint32_t states[] = {ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_MAXIMIZED,
                              ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_ACTIVATED};
    wl_array array{.size = isActive ? sizeof states : sizeof states[0], .alloc = 0, .data = states};
    zwlr_foreign_toplevel_handle_v1_send_state(handle, &array);
  });
}

void FakeCompositor::tellDone(std::size_t window) {
  tell(window, zwlr_foreign_toplevel_handle_v1_send_done);
}

void FakeCompositor::tellClosed(std::size_t window) {
  tell(window, zwlr_foreign_toplevel_handle_v1_send_closed);
  run([&] { windows_.at(window).resource = nullptr; });
}

void FakeCompositor::tellFinished() {
  run([this] { zwlr_foreign_toplevel_manager_v1_send_finished(manager_); });
}

std::size_t FakeCompositor::showWindow(const std::string& appId, const std::string& title,
                                       bool isActive) {
  const auto window = addWindow();
  tellAppId(window, appId);
  tellTitle(window, title);
  tellActive(window, isActive);
  tellDone(window);
  return window;
}

std::vector<std::uint32_t> FakeCompositor::timers() {
  std::vector<std::uint32_t> asked;
  run([&] { asked = timers_; });
  return asked;
}

void FakeCompositor::tellIdle() {
  run([this] {
    isKWins_ ? org_kde_kwin_idle_timeout_send_idle(timer_)
             : ext_idle_notification_v1_send_idled(timer_);
  });
}

void FakeCompositor::tellResumed() {
  run([this] {
    isKWins_ ? org_kde_kwin_idle_timeout_send_resumed(timer_)
             : ext_idle_notification_v1_send_resumed(timer_);
  });
}

}  // namespace tessum
