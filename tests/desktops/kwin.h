// KWin, the compositor of KDE Plasma.

#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/desktops/compositor.h"

namespace tessum {

class KWin : public Compositor {
 public:
  static constexpr const char* kProgram = "kwin_wayland";

  // Whether KWin lets the recorder see its windows on Wayland.
  enum class Permission { granted, refused };

  KWin() : KWin(Permission::granted) {}
  explicit KWin(Permission permission);

  // The copy that a desktop entry lets see the windows, if any does.
  [[nodiscard]] std::string recorderProgram(const std::string&) const override {
    return home().file("bin/Tessum");
  }

  // Has KWin run a script on `window`, the one with that title. Besides KWin's own names it may use
  // activate(window), showDesktop(number) and moveTo(window, number).
  void script(const std::string& title, const std::string& statements) const;

  void activate(const std::string& title) const { script(title, "activate(window)"); }

  // Somebody touches the computer.
  void touch() const { run(home().file("bin/fake_input"), {}); }

 private:
  void allow(const std::string& program, const std::string& interface) const;
  [[nodiscard]] std::string call(const std::string& member,
                                 const std::vector<std::string>& arguments) const;
};

// One that does not let the recorder see its windows on Wayland.
class RefusingKWin final : public KWin {
 public:
  RefusingKWin() : KWin(Permission::refused) {}
};

// A test with a recorder, whose windows are dialogs, which are native, and X11 terminals.
template <typename Desktop>
class KWinTest : public CompositorTest<Desktop> {
 protected:
  void SetUp() override {
    CompositorTest<Desktop>::SetUp();
    if (this->IsSkipped()) return;
    this->desktop_->addDesktopEntry("debian-xterm", "X Terminal of the Test",
                                    "StartupWMClass=XTerm");
  }

  [[nodiscard]] std::unique_ptr<ChildProcess> showDialog(const std::string& title) {
    return this->desktop_->start("zenity", {"--info", "--title", title, "--text", "What?"});
  }

  const std::string dialogRow_ = "zenity|zenity|Question";
  const std::string xtermRow_ = "X Terminal of the Test|debian-xterm|";
};

}  // namespace tessum
