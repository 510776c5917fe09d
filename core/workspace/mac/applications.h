// Reports the active application on macOS.

#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "core/workspace/workspace.h"

namespace tessum {

// The active application; absent when there is none. Main thread only.
[[nodiscard]] std::optional<RunningApplication> activeApplication();

// Reports each activation during its lifetime. Main thread only.
class ActivationObserver {
 public:
  // Receives the application that became active; absent when the system does not say which.
  using Handler = std::function<void(const std::optional<RunningApplication>&)>;

  // Calls `handler` from the main loop.
  explicit ActivationObserver(Handler handler);
  ~ActivationObserver();
  ActivationObserver(const ActivationObserver&) = delete;
  ActivationObserver& operator=(const ActivationObserver&) = delete;

 private:
  struct Registration;
  const std::unique_ptr<Registration> registration_;
};

}  // namespace tessum
