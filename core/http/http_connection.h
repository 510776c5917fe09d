// Internal to core/http: includes Asio, so it is not installed and no other folder includes it.
//
// One connection: it reads one request, answers it and goes.

#pragma once

#include <array>
#include <asio/ip/tcp.hpp>
#include <asio/steady_timer.hpp>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

#include "core/http/http_request.h"
#include "core/http/http_response.h"
#include "core/json/reader.h"

namespace tessum {

class HTTPConnection;

// How many bytes one receive takes at most.
inline constexpr std::size_t kReceiveSize = 65536;

// What the connections of one transport share. Server queue only.
struct HTTPService {
  // The engine; empty once the server is gone. This is how connections hold it weakly.
  std::function<std::optional<std::string>(json::PaddedView)> handleBody;

  // Every receive lands here first: idle connections then need no buffer of their own, and a
  // request that arrives in one piece is answered from here.
  std::array<char, kReceiveSize + json::kPadding> received{};

  std::unordered_set<HTTPConnection*> connections;
};

// Lives as long as it waits for its peer. Server queue only.
class HTTPConnection : public std::enable_shared_from_this<HTTPConnection> {
 public:
  HTTPConnection(asio::ip::tcp::socket socket, std::shared_ptr<HTTPService> service);
  ~HTTPConnection();
  HTTPConnection(const HTTPConnection&) = delete;
  HTTPConnection& operator=(const HTTPConnection&) = delete;

  void start();

  // Ends a connection that has no complete request; an answer on its way has a bounded moment.
  void serverIsGone();

 private:
  void receiveWhenReadable();
  void receive();
  void take(std::string_view received);
  void answer(const HTTPRequest& request, const char* readableEnd);
  void sendAnswer();
  void drain();
  void closeAfterLastMoment();
  void close();

  asio::ip::tcp::socket socket_;
  asio::steady_timer lastMoment_;
  const std::shared_ptr<HTTPService> service_;
  HTTPRequestParser parser_;
  std::string bytes_;  // those of a request in several pieces, with json::kPadding behind them
  bool isAnswered_ = false;
  std::string head_;
  std::string body_;
};

}  // namespace tessum
