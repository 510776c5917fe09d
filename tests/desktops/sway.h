// sway, a compositor of the wlroots family.

#pragma once

#include <string>

#include "tests/desktops/compositor.h"

namespace tessum {

class Sway final : public Compositor {
 public:
  static constexpr const char* kProgram = "sway";

  Sway();

  // Makes sway run a command of its configuration language. Throws std::runtime_error when it
  // fails.
  void command(const std::string& command) const {
    run("swaymsg", {"--quiet", "--socket", socket_, "--", command});
  }

  // Whether a window has that title.
  [[nodiscard]] bool hasWindow(const std::string& title) const {
    const auto tree = run("swaymsg", {"--raw", "--socket", socket_, "--type", "get_tree"});
    return tree.find("\"" + title + "\"") != std::string::npos;
  }

  // Simulates input.
  void touch() const { command("seat seat0 cursor move 1 1"); }

 private:
  const std::string socket_ = runtimeFile("sway.sock");
};

}  // namespace tessum
