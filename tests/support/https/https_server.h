// A real HTTPS server on the loopback interface whose answers a test decides.

#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/https/throw_away_authority.h"

namespace tessum {

// A client that has sent its request. The connection is closed properly when the answer function
// returns. One thread at a time.
class HttpsConnection {
 public:
  virtual ~HttpsConnection() = default;

  // The request line and the headers, with line ends.
  [[nodiscard]] virtual const std::string& request() const = 0;

  // Sends `bytes` as they are. False when the client is gone.
  virtual bool send(std::string_view bytes) = 0;

  // Sends a whole answer: status line, `headers` (each with its line end), length and `body`.
  bool respond(std::string_view body, std::string_view headers = "",
               std::string_view status = "200 OK");

  // Breaks the connection without closing TLS.
  virtual void cut() = 0;

  // Sends nothing until the client disconnects or the server stops.
  virtual void waitUntilClosed() = 0;
};

// Serves until it is destroyed, and then breaks open connections. Each answer runs on its own
// thread. A client may also use it as its proxy: whatever host it asks for, this server answers.
class HttpsServer {
 public:
  using Answer = std::function<void(HttpsConnection&)>;

  HttpsServer(const ThrowAwayAuthority::Identity& identity, Answer answer);
  ~HttpsServer();
  HttpsServer(const HttpsServer&) = delete;
  HttpsServer& operator=(const HttpsServer&) = delete;

  // https://127.0.0.1:port
  [[nodiscard]] std::string url() const;

  // http://127.0.0.1:port, for a client that uses it as its proxy.
  [[nodiscard]] std::string proxyUrl() const;

  // The requested paths, in order.
  [[nodiscard]] std::vector<std::string> paths() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

// An address of the loopback interface where nobody listens.
[[nodiscard]] std::string unreachableUrl();

}  // namespace tessum
