// Internal to core/http: includes Asio, so it is not installed and no other folder includes it.
//
// One connection: it reads one request, answers it and closes.

#pragma once

#include <asio/ip/tcp.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/http/http_admission.h"
#include "core/http/http_request.h"
#include "core/http/http_response.h"
#include "core/json/padded.h"

namespace tessum {

class HTTPConnection;

// How many bytes one receive takes at most.
inline constexpr std::size_t kReceiveSize = 65536;

// What the connections of one transport share. Server queue only.
struct HTTPService {
  // The engine; empty once the server is gone. This is how connections hold it weakly.
  AnswerMessage handleBody;

  // Every receive goes here first, so idle connections need no buffer of their own, and a request
  // that arrives in one piece is answered from here.
  json::PaddedBuffer received{kReceiveSize};

  // Of the connections to come; none where everyone is admitted.
  std::shared_ptr<const HTTPAdmission> admission;

  // The open ones, oldest first.
  std::map<std::uint64_t, HTTPConnection*> connections;
  std::uint64_t lastNumber = 0;
};

// Lives as long as it waits for its peer. Server queue only.
class HTTPConnection : public std::enable_shared_from_this<HTTPConnection> {
 public:
  HTTPConnection(asio::ip::tcp::socket socket, std::shared_ptr<HTTPService> service);
  ~HTTPConnection();
  HTTPConnection(const HTTPConnection&) = delete;
  HTTPConnection& operator=(const HTTPConnection&) = delete;

  // Serves its peer. Replaces the oldest connection if too many are open.
  void start();

  // Closes a connection without a complete request; an answer on its way has one more second.
  void serverIsGone();

 private:
  void receiveWhenReadable();
  void receive();
  void take(json::PaddedView received);
  [[nodiscard]] bool admits(json::PaddedView arrived);
  [[nodiscard]] HTTPVisitor visitor(std::string_view head) const;
  void answer(const HTTPRequest& request);
  void send(HTTPResponse response);
  void sendAnswer();
  void drain();
  void closeAfterPatience();
  void closeAfter(std::chrono::steady_clock::duration time);
  void close();

  asio::ip::tcp::socket socket_;
  asio::steady_timer deadline_;
  const std::shared_ptr<HTTPService> service_;
  const std::shared_ptr<const HTTPAdmission> admission_;
  const std::uint64_t number_;
  HTTPRequestParser parser_;
  std::optional<json::PaddedString> pieces_;  // of a request that did not arrive whole
  bool isAdmitted_;
  bool isAnswered_ = false;
  std::string head_;
  std::string body_;
};

}  // namespace tessum
