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

  // The queue's name, as given to the constructor.
  [[nodiscard]] virtual const std::string& label() const = 0;

  // Runs `task` on the queue after all tasks posted before it. Any thread.
  virtual void post(Task task) = 0;

  // Whether the caller runs on this queue.
  [[nodiscard]] virtual bool isCurrent() const = 0;
};

// A queue on its own thread, which starts with the first task. Every posted task runs: the
// destructor waits for the remaining ones. If one of its own tasks destroys the queue, it does not
// wait and they run afterwards.
class ThreadQueue final : public SerialQueue {
 public:
  explicit ThreadQueue(std::string label);
  ~ThreadQueue() override;
  ThreadQueue(const ThreadQueue&) = delete;
  ThreadQueue& operator=(const ThreadQueue&) = delete;

  [[nodiscard]] const std::string& label() const override { return label_; }

  // Throws std::system_error when the thread cannot be started; the task is then not posted.
  void post(Task task) override;

  [[nodiscard]] bool isCurrent() const override;

 private:
  struct State;

  const std::string label_;
  const std::shared_ptr<State> state_;  // shared with the thread, which may outlive the queue
};

}  // namespace tessum
