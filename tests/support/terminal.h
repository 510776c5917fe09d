// A terminal for a program under test; the test reads what appears on its screen.

#pragma once

#include <string>
#include <string_view>

namespace tessum {

// Not thread-safe.
class Terminal {
 public:
  // Throws std::system_error.
  explicit Terminal(unsigned short columns);
  ~Terminal();
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  // The descriptor for a program's standard streams.
  [[nodiscard]] int screen() const { return screen_; }

  // Types `keys`; throws std::system_error.
  void type(std::string_view keys) const;

  // Everything written until the programs on the terminal have ended. Closes the screen.
  [[nodiscard]] std::string readAll();

 private:
  int host_ = -1;
  int screen_ = -1;
};

}  // namespace tessum
