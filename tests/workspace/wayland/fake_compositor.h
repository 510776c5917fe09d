// A compositor that reports whatever a test wants.

#pragma once

#include <wayland-server-core.h>

#include <cstdint>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/environment.h"
#include "tests/support/temporary_folder.h"

namespace tessum {

// It offers the windows of wlroots, and idleness by the protocol that the test chooses. It runs on
// a thread of its own, as its client waits for it; XDG_RUNTIME_DIR leads to it while it lives.
class FakeCompositor {
 public:
  static constexpr const char* kDisplay = "fake";

  enum class Idle { none, common, kwin };

  explicit FakeCompositor(Idle idle = Idle::none);
  ~FakeCompositor();
  FakeCompositor(const FakeCompositor&) = delete;
  FakeCompositor& operator=(const FakeCompositor&) = delete;

  // Windows are numbered from 0 on, including those made before a client comes.
  std::size_t addWindow();

  // Each sends the client one event; without a client, or for a closed window, none.
  void tellTitle(std::size_t window, const std::string& title);
  void tellAppId(std::size_t window, const std::string& appId);
  void tellActive(std::size_t window, bool isActive);
  void tellDone(std::size_t window);
  void tellClosed(std::size_t window);
  void tellFinished();

  // A window of that application, or with that title, all at once.
  std::size_t showWindow(const std::string& appId, const std::string& title, bool isActive);

  // The times in milliseconds for which timers were asked.
  [[nodiscard]] std::vector<std::uint32_t> timers();

  // Tells of the timer asked for last.
  void tellIdle();
  void tellResumed();

  // Ends it.
  void stop();

 private:
  struct Offers;
  struct Window {
    wl_resource* resource = nullptr;
    std::vector<std::function<void(wl_resource*)>> history;  // for clients that come later
  };

  // Runs `task` on the thread, and waits for it.
  void run(const std::function<void()>& task);
  void tell(std::size_t window, const std::function<void(wl_resource*)>& event);
  void introduce(Window& window);

  TemporaryFolder folder_;
  const ScopedVariable variable_{"XDG_RUNTIME_DIR", folder_.path().c_str()};
  wl_display* display_;
  int wakeUp_;
  wl_event_source* wakeUpSource_ = nullptr;
  std::function<void()> task_;
  bool isStopping_ = false;
  wl_resource* manager_ = nullptr;
  std::vector<Window> windows_;
  std::vector<std::uint32_t> timers_;
  wl_resource* timer_ = nullptr;
  bool isKWins_ = false;
  std::thread thread_;
};

}  // namespace tessum
