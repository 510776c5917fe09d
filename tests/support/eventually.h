// Waits for another thread or process.

#pragma once

#include <chrono>
#include <thread>

namespace tessum {

// Whether `isDone` holds, now or within a minute.
template <typename Predicate>
[[nodiscard]] bool eventually(Predicate isDone) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (!isDone()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return true;
}

}  // namespace tessum
