#include "core/http/http_listener.h"

#include <fcntl.h>

#include <asio/ip/v6_only.hpp>
#include <chrono>
#include <utility>

namespace tessum {
namespace {

using asio::ip::tcp;

// How long accepting pauses when the system has no descriptor or memory for another connection.
constexpr auto kPause = std::chrono::milliseconds(20);

// Asio's own category does not compare equal to std::errc everywhere.
std::error_code systemError(const asio::error_code& error) {
  return {error.value(), std::system_category()};
}

void openForEveryInterface(tcp::acceptor& acceptor) {
  asio::error_code error;
  acceptor.open(tcp::v6(), error);
  if (error == asio::error::address_family_not_supported) {
    acceptor.open(tcp::v4(), error);
  } else if (!error) {
    acceptor.set_option(asio::ip::v6_only(false), error);
  }
  if (error) throw std::system_error(systemError(error), "Cannot open a socket");
}

// Keeps the socket from programs that this one starts, which Asio does not.
template <typename Socket>
void closeOnExec(Socket& socket) {
  fcntl(socket.native_handle(), F_SETFD, FD_CLOEXEC);
}

}  // namespace

HTTPListener::HTTPListener(asio::io_context& context, OnConnection onConnection)
    : acceptor_(context), pauseTimer_(context), onConnection_(std::move(onConnection)) {
  openForEveryInterface(acceptor_);
  closeOnExec(acceptor_);
  acceptor_.set_option(tcp::acceptor::reuse_address(true));  // a restart binds the port at once
}

void HTTPListener::listen(std::uint16_t port) {
  const tcp protocol = acceptor_.local_endpoint().protocol();
  asio::error_code error;
  acceptor_.bind(tcp::endpoint(protocol, port), error);
  if (!error) acceptor_.listen(tcp::acceptor::max_listen_connections, error);
  error_ = systemError(error);
  if (error_) return close();
  accept();
}

void HTTPListener::close() {
  asio::error_code ignored;
  acceptor_.close(ignored);
  pauseTimer_.cancel();
}

void HTTPListener::accept() {
  acceptor_.async_accept(
      [self = shared_from_this()](const asio::error_code& error, tcp::socket socket) {
        if (!self->acceptor_.is_open()) return;
        if (error) return self->pause();
        closeOnExec(socket);
        self->onConnection_(std::move(socket));
        self->accept();
      });
}

void HTTPListener::pause() {
  pauseTimer_.expires_after(kPause);
  pauseTimer_.async_wait([self = shared_from_this()](const asio::error_code& cancelled) {
    if (!cancelled && self->acceptor_.is_open()) self->accept();
  });
}

}  // namespace tessum
