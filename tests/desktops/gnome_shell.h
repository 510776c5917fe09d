// GNOME Shell, with the extension that tells the recorder what is in front.

#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "tests/desktops/compositor.h"

struct sd_bus;

namespace tessum {

class GnomeShell final : public Compositor {
 public:
  static constexpr const char* kProgram = "gnome-shell";

  // Which of our extensions the shell finds when it starts.
  enum class Extension { none, turnedOff, turnedOn };

  GnomeShell() : GnomeShell(Extension::turnedOn) {}
  explicit GnomeShell(Extension extension);
  ~GnomeShell() override;

  // Puts the extensions into the user's folder, as a package would into the system's.
  void installExtensions() const;

  // Turns our extension on, as a person does by hand, or off.
  void enableExtension() const;
  void disableExtension() const;

  // Somebody touches the computer.
  void touch() const;

  // Somebody presses these keys, given as keysyms, all together.
  void press(std::initializer_list<std::uint32_t> keys) const;

  // Shows the overview, or leaves it.
  void setOverview(bool isShown) const;

 protected:
  [[nodiscard]] std::vector<std::string> variables() const override;

 private:
  struct Close {
    void operator()(sd_bus* bus) const;
  };

  void connect(const std::string& address);
  void startInput();
  [[nodiscard]] bool isOverviewShown() const;

  const std::string extension_;         // that fits the shell
  std::unique_ptr<sd_bus, Close> bus_;  // a connection to the session's
  std::string input_;                   // the path of a remote desktop's session
};

}  // namespace tessum
