// Internal to core/http: includes Asio, so it is not installed and no other folder includes it.
//
// One listening port, for IPv4 and IPv6.

#pragma once

#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/steady_timer.hpp>
#include <cstdint>
#include <functional>
#include <memory>
#include <system_error>

namespace tessum {

// Server queue only.
class HTTPListener : public std::enable_shared_from_this<HTTPListener> {
 public:
  using OnConnection = std::function<void(asio::ip::tcp::socket)>;

  // Makes the socket, for IPv4 and IPv6, or for IPv4 alone on a host without IPv6. Throws
  // std::system_error.
  HTTPListener(asio::io_context& context, OnConnection onConnection);

  // Listens on `port` of every interface and accepts until close(). Failures are not thrown: see
  // error().
  void listen(std::uint16_t port);

  // Why listen() did not succeed; no error when it did.
  [[nodiscard]] std::error_code error() const { return error_; }

  // Accepts nothing from now on.
  void close();

 private:
  void accept();
  void pause();

  asio::ip::tcp::acceptor acceptor_;
  asio::steady_timer pauseTimer_;
  OnConnection onConnection_;
  std::error_code error_;
};

}  // namespace tessum
