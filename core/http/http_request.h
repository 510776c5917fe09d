// One HTTP request, found in the bytes that have arrived on a connection so far.
//
// Only what routing needs is kept; of the headers only the body's length is read. Chunked bodies
// are not supported. A malformed head gets no error: bytes that never become a request are never
// answered.

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

// The request at the start of `bytes`; absent while it is incomplete, and when no further bytes can
// complete it (a head that is not UTF-8, a request line of a single word). Bytes after it are
// ignored. Any thread.
[[nodiscard]] std::optional<HTTPRequest> parseHTTPRequest(json::PaddedView bytes);

// Does the same for bytes that arrive in pieces. It remembers its place, so the time is linear in
// the size of the request however it is cut. The result is that of parseHTTPRequest() for the same
// bytes. Not thread-safe.
class HTTPRequestParser {
 public:
  // `bytes` are all that have arrived: those of the previous call, possibly elsewhere in memory,
  // and more.
  [[nodiscard]] std::optional<HTTPRequest> parse(json::PaddedView bytes);

  // The request line and the headers, without the empty line: a part of `bytes`, those of the last
  // parse(). Empty until they are complete, and when the head is malformed.
  [[nodiscard]] std::string_view head(json::PaddedView bytes) const;

  // Whether the head is malformed, so that no further bytes help.
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
