// A queue of tasks that run one after another, in the order of posting.

#pragma once

#include <functional>
#include <memory>
#include <string>

namespace tessum {

class SerialQueue {
 public:
  using Task = std::function<void()>;

  virtual ~SerialQueue() = default;

  // The name the queue was made with.
  [[nodiscard]] virtual const std::string& label() const = 0;

  // Runs `task` on the queue after all that were posted before it. Any thread.
  virtual void post(Task task) = 0;

  // Whether the caller runs on this queue.
  [[nodiscard]] virtual bool isCurrent() const = 0;
};

}  // namespace tessum
