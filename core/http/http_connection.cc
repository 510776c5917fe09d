// How a connection ends. Closing a socket that holds unread bytes makes the system reset the
// connection, and a reset destroys what the peer has not read yet: a peer that sent more than it
// declared would lose its answer. So only the sending side is closed, which tells the peer that the
// answer is complete. Whatever else arrives is discarded until the peer closes too, for at most a
// second.

#include "core/http/http_connection.h"

#include <asio/buffer.hpp>
#include <asio/ip/address.hpp>
#include <asio/write.hpp>
#include <chrono>
#include <new>
#include <utility>

namespace tessum {
namespace {

// How long a peer may take to close, and how long an answer may take once the server is gone.
constexpr auto kLastMoment = std::chrono::seconds(1);

bool wouldBlock(const asio::error_code& error) {
  return error == asio::error::would_block || error == asio::error::try_again;
}

// A peer that has gone has the address 0.0.0.0. On a socket for both families, an address of IPv4
// comes as one of IPv6.
bool isLoopback(const asio::ip::address& address) {
  if (address.is_v4()) return address.is_loopback();
  const asio::ip::address_v6 v6 = address.to_v6();
  if (!v6.is_v4_mapped()) return v6.is_loopback();
  return asio::ip::make_address_v4(asio::ip::v4_mapped, v6).is_loopback();
}

}  // namespace

HTTPConnection::HTTPConnection(asio::ip::tcp::socket socket, std::shared_ptr<HTTPService> service)
    : socket_(std::move(socket)),
      deadline_(socket_.get_executor()),
      service_(std::move(service)),
      admission_(service_->admission),
      number_(++service_->lastNumber),
      isAdmitted_(admission_ == nullptr) {
  service_->connections.emplace(number_, this);
}

HTTPConnection::~HTTPConnection() {
  service_->connections.erase(number_);
}

void HTTPConnection::start() {
  if (admission_ && service_->connections.size() > admission_->mostConnections) {
    service_->connections.begin()->second->close();
  }
  asio::error_code error;
  socket_.non_blocking(true, error);
  if (error) return close();
  closeAfterPatience();
  receive();
}

void HTTPConnection::serverIsGone() {
  if (!isAnswered_) return close();
  if (socket_.is_open()) closeAfter(kLastMoment);
}

void HTTPConnection::receiveWhenReadable() {
  socket_.async_wait(asio::ip::tcp::socket::wait_read,
                     [self = shared_from_this()](const asio::error_code& error) {
                       if (!error) self->receive();
                     });
}

void HTTPConnection::receive() {
  json::PaddedBuffer& received = service_->received;
  asio::error_code error;
  const std::size_t size =
      socket_.read_some(asio::buffer(received.data(), received.capacity()), error);
  if (wouldBlock(error)) return receiveWhenReadable();
  if (error) return close();
  try {
    take(received.view(0, size));
  } catch (const std::bad_alloc&) {
    close();  // a message that does not fit into memory costs only its sender the connection
  }
}

void HTTPConnection::take(json::PaddedView received) {
  if (pieces_) pieces_->append(received.text());
  const json::PaddedView arrived = pieces_ ? pieces_->view() : received;
  const auto request = parser_.parse(arrived);
  if (!isAdmitted_ && !admits(arrived)) return;
  if (request) return answer(*request);
  if (parser_.isUnreadable()) {
    pieces_.reset();  // no further bytes help
  } else if (!pieces_) {
    pieces_.emplace(received.text());
  }
  receiveWhenReadable();
}

// False when the connection has been refused or closed.
bool HTTPConnection::admits(json::PaddedView arrived) {
  const std::string_view head = parser_.head(arrived);
  if (head.empty()) {
    const bool isBearable = arrived.text().size() <= admission_->mostHeadBytes;
    if (!isBearable) close();
    return isBearable;
  }
  if (auto reason = admission_->refusal(visitor(head))) {
    isAnswered_ = true;
    send(refuse(std::move(*reason)));
    return false;
  }
  isAdmitted_ = true;
  return true;
}

HTTPVisitor HTTPConnection::visitor(std::string_view head) const {
  asio::error_code error;
  const bool isOnThisComputer = isLoopback(socket_.remote_endpoint(error).address());
  const std::uint16_t port = socket_.local_endpoint(error).port();
  return {.isOnThisComputer = isOnThisComputer, .port = port, .head = head};
}

void HTTPConnection::answer(const HTTPRequest& request) {
  isAnswered_ = true;
  const auto handleBody = service_->handleBody;  // a copy, as the call may destroy the server
  send(respond(request, handleBody));
}

void HTTPConnection::send(HTTPResponse response) {
  pieces_.reset();
  head_ = responseHead(response);
  body_ = std::move(response.body);
  closeAfterPatience();
  sendAnswer();
}

void HTTPConnection::sendAnswer() {
  const std::array<asio::const_buffer, 2> buffers = {asio::buffer(head_), asio::buffer(body_)};
  asio::async_write(socket_, buffers,
                    [self = shared_from_this()](const asio::error_code& error, std::size_t) {
                      if (error) return self->close();
                      self->head_ = {};
                      self->body_ = {};
                      self->closeAfter(kLastMoment);
                      asio::error_code ignored;  // the next receive notices when the peer is gone
                      self->socket_.shutdown(asio::ip::tcp::socket::shutdown_send, ignored);
                      self->drain();
                    });
}

void HTTPConnection::drain() {
  json::PaddedBuffer& received = service_->received;
  asio::error_code error;
  socket_.read_some(asio::buffer(received.data(), received.capacity()), error);
  if (error && !wouldBlock(error)) return close();
  socket_.async_wait(asio::ip::tcp::socket::wait_read,
                     [self = shared_from_this()](const asio::error_code& waitError) {
                       if (!waitError) self->drain();
                     });
}

void HTTPConnection::closeAfterPatience() {
  if (!admission_) return;
  const std::chrono::duration<double> patience(admission_->patienceSeconds);
  closeAfter(std::chrono::duration_cast<std::chrono::steady_clock::duration>(patience));
}

void HTTPConnection::closeAfter(std::chrono::steady_clock::duration time) {
  deadline_.expires_after(time);
  deadline_.async_wait([self = shared_from_this()](const asio::error_code& cancelled) {
    if (!cancelled) self->close();
  });
}

void HTTPConnection::close() {
  asio::error_code ignored;
  socket_.close(ignored);
  deadline_.cancel();
  service_->connections.erase(number_);
}

}  // namespace tessum
