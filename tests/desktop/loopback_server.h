// A server on the loopback interface with one fixed answer.

#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <thread>

namespace tessum {

// Holds the port until destroyed; refuses connections until there is an answer.
class LoopbackServer {
 public:
  explicit LoopbackServer(std::uint16_t port);
  ~LoopbackServer();
  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;

  // Whether the port was free.
  [[nodiscard]] bool isBound() const { return isBound_; }

  // From now on answers each connection's request with `answer` and closes it.
  void answerWith(std::string answer);

 private:
  int socket_;
  bool isBound_ = false;
  std::atomic<bool> isDone_ = false;
  std::thread thread_;
};

}  // namespace tessum
