// Serves an engine to HTTP clients of this computer and its network: one request per connection.
//
// Everything runs on one serial queue, so the engine is never entered concurrently and nothing is
// locked. While the transport lives, its event loop occupies that queue as one task, so the queue
// must serve nothing else.

#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <system_error>

#include "core/http/http_admission.h"
#include "core/json/padded.h"
#include "core/loop/serial_queue.h"

namespace tessum {

// One thread at a time, which may be any, the queue's included. Each call waits for the request
// that is being answered.
class HTTPTransport {
 public:
  using HandleBody = std::function<std::optional<std::string>(json::PaddedView)>;

  // `handleBody` is called on `queue`, which must outlive the transport. Throws std::system_error
  // when the system has no descriptors or no thread for it.
  HTTPTransport(SerialQueue& queue, HandleBody handleBody);

  // Afterwards `handleBody` is not called. Connections without a complete request are closed;
  // answers on their way have one more second, during which the queue stays occupied.
  ~HTTPTransport();

  HTTPTransport(const HTTPTransport&) = delete;
  HTTPTransport& operator=(const HTTPTransport&) = delete;

  // Listens on `port` of every interface instead of the previous port. Clients that connect from
  // now on are served as `admission` says; without one all of them are. Throws std::system_error
  // when the system gives no socket, and then changes nothing. A port that is taken or forbidden
  // throws nothing: the transport then listens on none, and listeningError() says why.
  void listen(std::uint16_t port, std::optional<HTTPAdmission> admission = std::nullopt);

  // Accepts no more connections. Those accepted before are served.
  void stop();

  // Why the last listen() failed; no error when it succeeded, and after stop().
  [[nodiscard]] std::error_code listeningError() const;

 private:
  struct State;

  const std::shared_ptr<State> state_;  // shared with the loop
};

}  // namespace tessum
