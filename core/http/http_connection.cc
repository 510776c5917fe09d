// How a connection ends. Closing a socket that holds unread bytes makes the system reset the
// connection, and a reset destroys what the peer has not read yet: a peer that sent more than it
// declared would lose its answer. So only the sending side is closed, which tells the peer that the
// answer is complete. Whatever else arrives is discarded until the peer closes too, for at most a
// second.

#include "core/http/http_connection.h"

#include <asio/buffer.hpp>
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

}  // namespace

HTTPConnection::HTTPConnection(asio::ip::tcp::socket socket, std::shared_ptr<HTTPService> service)
    : socket_(std::move(socket)),
      lastMoment_(socket_.get_executor()),
      service_(std::move(service)) {
  service_->connections.insert(this);
}

HTTPConnection::~HTTPConnection() {
  service_->connections.erase(this);
}

void HTTPConnection::start() {
  asio::error_code error;
  socket_.non_blocking(true, error);
  if (!error) receive();
}

void HTTPConnection::serverIsGone() {
  if (!isAnswered_) return close();
  if (socket_.is_open()) closeAfterLastMoment();
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
  if (const auto request = parser_.parse(pieces_ ? pieces_->view() : received)) {
    return answer(*request);
  }
  if (parser_.isUnreadable()) {
    pieces_.reset();  // no further bytes help
  } else if (!pieces_) {
    pieces_.emplace(received.text());
  }
  receiveWhenReadable();
}

void HTTPConnection::answer(const HTTPRequest& request) {
  isAnswered_ = true;
  const auto handleBody = service_->handleBody;  // a copy, as the call may destroy the server
  HTTPResponse response = respond(request, handleBody);
  pieces_.reset();
  head_ = responseHead(response);
  body_ = std::move(response.body);
  sendAnswer();
}

void HTTPConnection::sendAnswer() {
  const std::array<asio::const_buffer, 2> buffers = {asio::buffer(head_), asio::buffer(body_)};
  asio::async_write(socket_, buffers,
                    [self = shared_from_this()](const asio::error_code& error, std::size_t) {
                      if (error) return self->close();
                      self->head_ = {};
                      self->body_ = {};
                      self->closeAfterLastMoment();
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

void HTTPConnection::closeAfterLastMoment() {
  lastMoment_.expires_after(kLastMoment);
  lastMoment_.async_wait([self = shared_from_this()](const asio::error_code& cancelled) {
    if (!cancelled) self->close();
  });
}

void HTTPConnection::close() {
  asio::error_code ignored;
  socket_.close(ignored);
  lastMoment_.cancel();
}

}  // namespace tessum
