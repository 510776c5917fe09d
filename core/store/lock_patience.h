// Waiting for the locks of other programs.

#pragma once

#include <chrono>
#include <thread>

#include "core/store/database_error.h"

namespace tessum {

// How long a program waits at its start, and the recorder at its end, for other programs' locks.
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
