// A transport that listens on a free port, with a function in place of the engine.

#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "core/http/http_transport.h"
#include "core/loop/serial_queue.h"
#include "tests/http/loopback.h"

namespace tessum {

inline const std::string kGetRoot = "GET / HTTP/1.1\r\n\r\n";
inline const std::string kGreetingAnswer =
    answerOf("HTTP/1.1 200 OK", "text/plain",
             "Tessum MCP Server \xE2\x80\x93 POST /mcp with a JSON-RPC 2.0 request.");

[[nodiscard]] inline std::optional<std::string> echo(json::PaddedView body) {
  return std::string(body.text());
}

// More than the buffers of a socket hold.
inline const std::string kLongAnswer(16 << 20, 'x');

[[nodiscard]] inline std::optional<std::string> answerAtLength(json::PaddedView) {
  return kLongAnswer;
}

class HTTPServer {
 public:
  explicit HTTPServer(HTTPTransport::HandleBody handleBody = echo)
      : transport_(std::make_unique<HTTPTransport>(queue_, std::move(handleBody))) {
    transport_->listen(port_);
    EXPECT_FALSE(transport_->listeningError()) << transport_->listeningError().message();
  }

  [[nodiscard]] std::uint16_t port() const { return port_; }
  [[nodiscard]] HTTPTransport& transport() { return *transport_; }
  [[nodiscard]] SerialQueue& queue() { return queue_; }
  void destroyTransport() { transport_.reset(); }

 private:
  const std::uint16_t port_ = freePort();
  ThreadQueue queue_{"com.example.http"};
  std::unique_ptr<HTTPTransport> transport_;
};

}  // namespace tessum
