// One HTTP request, found in the bytes that have arrived on a connection so far.
//
// Only what routing needs is kept: the rest of the head is read to find the body's length. There
// are no chunked bodies, and nothing of the head is answered with an error: bytes that never
// become a request are simply never answered.

#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "core/json/padded.h"

namespace tessum {

// A complete request. It refers to the bytes it was found in.
struct HTTPRequest {
  std::string_view method;  // as sent, case kept
  std::string_view path;    // as sent, with its query
  json::PaddedView body;    // as many bytes as Content-Length says, none without it

  friend bool operator==(const HTTPRequest&, const HTTPRequest&) = default;
};

// The request that `bytes` begin with; absent while it is incomplete and when it can never become
// one (a head that is not UTF-8, a request line of a single word). Bytes behind it are ignored.
// Any thread.
[[nodiscard]] std::optional<HTTPRequest> parseHTTPRequest(json::PaddedView bytes);

// The same for bytes that arrive bit by bit: it keeps its place, so that a request costs time
// linear in its size however it is cut. The outcome is that of parseHTTPRequest() for the same
// bytes. Not thread-safe.
class HTTPRequestParser {
 public:
  // `bytes` are all that have arrived: those of the call before, possibly moved elsewhere in
  // memory, and further ones.
  [[nodiscard]] std::optional<HTTPRequest> parse(json::PaddedView bytes);

  // Whether the head is one that no further bytes can make a request of.
  [[nodiscard]] bool isUnreadable() const { return state_ == State::unreadable; }

 private:
  enum class State { inHead, inBody, unreadable };

  void readHead(std::string_view head);

  State state_ = State::inHead;
  std::size_t searched_ = 0;  // in the head: bytes that hold no terminator
  std::size_t methodEnd_ = 0;
  std::size_t pathEnd_ = 0;
  std::size_t bodyStart_ = 0;
  std::size_t bodySize_ = 0;
};

}  // namespace tessum
