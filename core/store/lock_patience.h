// Waiting for the locks of other programs.

#pragma once

#include <chrono>
#include <thread>

#include "core/store/database_error.h"

namespace tessum {

// How long a program waits for other programs' locks at its start, the recorder at its end, and a
// command that writes the database anew.
inline constexpr double kLockPatienceSeconds = 5;

// Runs `action` again every 20 ms while it throws a DatabaseError of a lock, for up to `seconds`,
// and gives its result. Throws what it throws otherwise, and its last error after that time. It
// blocks: only for a command, or the start of a program.
template <typename Action>
auto outlastingLocks(double seconds, Action action) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  while (true) {
    try {
      return action();
    } catch (const DatabaseError& error) {
      if (!error.isLocked() || std::chrono::steady_clock::now() >= deadline) throw;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
}

}  // namespace tessum
