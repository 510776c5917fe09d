// A terminal as a program sees it; the test reads its screen from the other end.

#pragma once

#include <string>

namespace tessum {

// Not thread-safe.
class Terminal {
 public:
  // Throws std::system_error.
  explicit Terminal(unsigned short columns);
  ~Terminal();
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  // What a program takes for its standard streams.
  [[nodiscard]] int screen() const { return screen_; }

  // All that is written until the programs on the terminal have ended. The screen is closed here.
  [[nodiscard]] std::string readAll();

 private:
  int host_ = -1;
  int screen_ = -1;
};

}  // namespace tessum
