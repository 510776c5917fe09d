// i3, a window manager of X11 that restarts in place.

#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/desktops/compositor.h"

namespace tessum {

class I3 final : public Compositor {
 public:
  static constexpr const char* kProgram = "i3";

  I3();
  ~I3() override;

  // Sends a command to i3, such as "workspace 2".
  void command(const std::string& text) const { run("i3-msg", {"--socket", socket(), text}); }

  // Restarts it, and waits until it answers again. Meanwhile each window has a placeholder.
  void restart() const;

 private:
  [[nodiscard]] std::string socket() const { return runtimeFile("i3.sock"); }
  [[nodiscard]] bool answers() const;

  std::unique_ptr<ChildProcess> server_;
};

}  // namespace tessum
