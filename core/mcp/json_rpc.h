// The JSON-RPC 2.0 messages of the protocol and its error codes.

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "core/json/reader.h"
#include "core/mcp/any_codable.h"

namespace tessum {

// The id of a request, repeated in its response: a number or a text.
using JSONRPCID = std::variant<std::int64_t, std::string>;

// A message from a client. Without an id it is a notification, which gets no answer.
struct JSONRPCRequest {
  std::string jsonrpc;  // any text; it is not compared with anything
  std::optional<JSONRPCID> id;
  std::string method;
  std::optional<AnyCodable> params;  // absent also where the message says null

  // Reads one message. Throws json::DecodingError when it is not JSON, not an object, has no text
  // "jsonrpc" or "method", or an id that is neither a 64-bit integer nor text.
  [[nodiscard]] static JSONRPCRequest decode(json::PaddedView message);
};

namespace error_code {
inline constexpr std::int64_t kParseError = -32700;
inline constexpr std::int64_t kMethodNotFound = -32601;
inline constexpr std::int64_t kInvalidParams = -32602;
inline constexpr std::int64_t kInternalError = -32603;
}  // namespace error_code

struct JSONRPCError {
  std::int64_t code = 0;
  std::string message;  // valid UTF-8
};

// An answer: it carries a result or an error, never both.
class JSONRPCResponse {
 public:
  JSONRPCResponse(std::optional<JSONRPCID> id, AnyCodable result);
  JSONRPCResponse(std::optional<JSONRPCID> id, JSONRPCError error);

  [[nodiscard]] const std::optional<JSONRPCID>& id() const { return id_; }
  [[nodiscard]] const AnyCodable* result() const { return std::get_if<AnyCodable>(&outcome_); }
  [[nodiscard]] const JSONRPCError* error() const { return std::get_if<JSONRPCError>(&outcome_); }

  // The response as one line of JSON. An absent id is left out, never written as null: the answer
  // to an unreadable message has none.
  [[nodiscard]] std::string encode() const;

 private:
  std::optional<JSONRPCID> id_;
  std::variant<AnyCodable, JSONRPCError> outcome_;
};

}  // namespace tessum
