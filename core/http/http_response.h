// What is answered to a request, and how the answer's head reads.

#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "core/http/http_request.h"
#include "core/json/padded.h"

namespace tessum {

// An answer. Absent and empty bodies look alike on the wire.
struct HTTPResponse {
  int status = 200;
  std::string_view contentType;  // without parameters; a constant
  std::string body;

  friend bool operator==(const HTTPResponse&, const HTTPResponse&) = default;
};

// Everything before the body, up to and with the empty line. Any thread.
[[nodiscard]] std::string responseHead(const HTTPResponse& response);

// Answers the body of a message to the engine; absent where there is nothing to say.
using AnswerMessage = std::function<std::optional<std::string>(json::PaddedView body)>;

// The answer to `request`. `answerMessage` is called for what is posted to /mcp only; method and
// path are compared byte by byte.
[[nodiscard]] HTTPResponse respond(const HTTPRequest& request, const AnswerMessage& answerMessage);

}  // namespace tessum
