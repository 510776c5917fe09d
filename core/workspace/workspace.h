// What the user has in front: the active application and its focused window.

#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace tessum {

// What is known about a running application. Each member is absent when the desktop does not report
// it; texts are valid UTF-8.
struct RunningApplication {
  std::optional<std::string> localizedName;     // for display, in the user's language
  std::optional<std::string> bundleIdentifier;  // permanent name, such as org.example.Editor
  std::optional<std::int32_t> processIdentifier;

  friend bool operator==(const RunningApplication&, const RunningApplication&) = default;
};

// The desktop of the session. Unknown values are absent, never an error: a window may close before
// it is queried, and the desktop itself may disappear. Main thread only.
class Workspace {
 public:
  // Receives the application that became active; absent when none is active any more.
  using ActivationHandler = std::function<void(const std::optional<RunningApplication>&)>;

  // Identifies one registration of one workspace; never reused.
  enum class ObserverToken : std::uint64_t {};

  virtual ~Workspace() = default;

  // Calls `handler` from the main loop at each activation from now on. The registration lasts
  // until it is removed or the workspace is destroyed, whether or not its token is kept.
  virtual ObserverToken addActivationObserver(ActivationHandler handler) = 0;

  // Ends a registration: its handler is not called again. Does nothing if it has already ended.
  virtual void removeObserver(ObserverToken token) = 0;

  // The active application; absent when there is none.
  [[nodiscard]] virtual std::optional<RunningApplication> frontmostApplication() = 0;

  // The title of the focused window of `application`, unchanged even when empty. Absent when it has
  // no such window or the system does not let the program see it.
  [[nodiscard]] virtual std::optional<std::string> focusedWindowTitle(
      const RunningApplication& application) = 0;
};

}  // namespace tessum
