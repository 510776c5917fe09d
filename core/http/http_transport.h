// Serves an engine to HTTP clients of this computer and its network: one request a connection.
//
// Everything runs on one serial queue, so the engine is never entered concurrently and nothing is
// locked. While the transport lives, one task of it occupies that queue: the loop that waits for
// the connections. The queue must be used for nothing else.

#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <system_error>

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

  // From now on `handleBody` is not called. Connections without a complete request are closed;
  // answers on their way have a bounded moment left, during which the queue stays occupied.
  ~HTTPTransport();

  HTTPTransport(const HTTPTransport&) = delete;
  HTTPTransport& operator=(const HTTPTransport&) = delete;

  // Listens on `port` of every interface, in place of the port listened on before. Throws
  // std::system_error when there can be no socket; everything is then as it was. A port that is
  // taken or forbidden is no error here: nothing is listened on, and listeningError() says why.
  void listen(std::uint16_t port);

  // Accepts no connection from now on. Those accepted before are served.
  void stop();

  // What keeps the last listen() from listening; no error when it listens, or was stopped.
  [[nodiscard]] std::error_code listeningError() const;

 private:
  struct State;

  const std::shared_ptr<State> state_;  // shared with the loop
};

}  // namespace tessum
