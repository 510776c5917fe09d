// sway, a compositor of the wlroots family.

#pragma once

#include <string>

#include "tests/desktops/compositor.h"

namespace tessum {

class Sway final : public Compositor {
 public:
  static constexpr const char* kProgram = "sway";

  Sway();

  // Has sway carry out a command of its configuration's language. Throws std::runtime_error when it
  // fails.
  void command(const std::string& command) const {
    run("swaymsg", {"--quiet", "--socket", socket_, "--", command});
  }

  // Somebody touches the computer.
  void touch() const { command("seat seat0 cursor move 1 1"); }

 private:
  const std::string socket_ = runtimeFile("sway.sock");
};

}  // namespace tessum
