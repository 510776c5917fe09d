// The answer to a request, and the head that goes before its body.

#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "core/http/http_request.h"
#include "core/json/padded.h"

namespace tessum {

// What "GET /" answers.
inline constexpr std::string_view kGreeting =
    "Tessum MCP Server \xE2\x80\x93 POST /mcp with a JSON-RPC 2.0 request.";

// An answer. Absent and empty bodies look alike on the wire.
struct HTTPResponse {
  int status = 200;
  std::string_view contentType;  // without parameters; a constant
  std::string body;

  friend bool operator==(const HTTPResponse&, const HTTPResponse&) = default;
};

// Everything before the body, the empty line included. Any thread.
[[nodiscard]] std::string responseHead(const HTTPResponse& response);

// Answers a message to the engine; absent when there is no answer.
using AnswerMessage = std::function<std::optional<std::string>(json::PaddedView body)>;

// The answer to a request that is refused for `reason`. No page of another origin may read it.
[[nodiscard]] HTTPResponse refuse(std::string reason);

// The answer to `request`. `answerMessage` is called only for what is posted to /mcp. Method and
// path are compared byte by byte.
[[nodiscard]] HTTPResponse respond(const HTTPRequest& request, const AnswerMessage& answerMessage);

}  // namespace tessum
