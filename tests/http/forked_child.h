// A copy of the test program, for tests that would harm the test program itself.

#pragma once

#include <sys/types.h>

#include <functional>
#include <optional>

namespace tessum {

// Make it before the test starts a thread, as it forks.
class ForkedChild {
 public:
  // The child's end.
  class Link {
   public:
    Link(int in, int out) : in_(in), out_(out) {}

    // Tells the parent a number.
    void report(int number);

    // Returns when the parent calls release() or ends.
    void waitUntilReleased();

   private:
    int in_;
    int out_;
  };

  // Runs `body` in a child, which then ends with status 0.
  explicit ForkedChild(const std::function<void(Link&)>& body);
  ~ForkedChild();
  ForkedChild(const ForkedChild&) = delete;
  ForkedChild& operator=(const ForkedChild&) = delete;

  // The next number from the child; absent when it ended without one.
  [[nodiscard]] std::optional<int> reported();

  // Lets the child end and returns its status; after a signal, the negative number of the signal.
  int release();

  // The processor time that a released child has used.
  [[nodiscard]] double processorSeconds() const { return processorSeconds_; }

 private:
  pid_t process_ = -1;
  int in_ = -1;
  int out_ = -1;
  double processorSeconds_ = 0;
};

}  // namespace tessum
