#include "core/mcp/json_rpc.h"

#include <string_view>
#include <utility>

#include "core/json/number.h"
#include "core/json/writer.h"

namespace tessum {
namespace {

std::string requiredText(const std::optional<json::PaddedView>& value, const char* key) {
  if (!value) throw json::DecodingError(std::string("missing member ") + key);
  if (json::kindOf(*value) != json::Kind::text) {
    throw json::DecodingError(std::string("expected text at ") + key);
  }
  return json::decodeString(*value);
}

bool isPresent(const std::optional<json::PaddedView>& value) {
  return value && json::kindOf(*value) != json::Kind::null;
}

JSONRPCID decodeID(json::PaddedView value) {
  if (const auto integer = json::integralValue(value.text())) return *integer;
  if (json::kindOf(value) == json::Kind::text) return json::decodeString(value);
  throw json::DecodingError("id must be int or string");
}

void appendID(std::string& out, const JSONRPCID& id) {
  if (const auto* integer = std::get_if<std::int64_t>(&id)) {
    out += std::to_string(*integer);
  } else {
    json::appendString(out, std::get<std::string>(id));
  }
}

}  // namespace

JSONRPCRequest JSONRPCRequest::decode(json::PaddedView message) {
  std::optional<json::PaddedView> jsonrpc;
  std::optional<json::PaddedView> id;
  std::optional<json::PaddedView> method;
  std::optional<json::PaddedView> params;
  json::forEachMember(message, [&](std::string_view key, json::PaddedView value) {
    if (key == "jsonrpc") jsonrpc = value;
    if (key == "id") id = value;
    if (key == "method") method = value;
    if (key == "params") params = value;
  });

  JSONRPCRequest request;
  request.jsonrpc = requiredText(jsonrpc, "jsonrpc");
  request.method = requiredText(method, "method");
  if (isPresent(id)) request.id = decodeID(*id);
  if (isPresent(params)) request.params = AnyCodable(*params);
  return request;
}

JSONRPCResponse::JSONRPCResponse(std::optional<JSONRPCID> id, AnyCodable result)
    : id_(std::move(id)), outcome_(std::move(result)) {}

JSONRPCResponse::JSONRPCResponse(std::optional<JSONRPCID> id, JSONRPCError error)
    : id_(std::move(id)), outcome_(std::move(error)) {}

std::string JSONRPCResponse::encode() const {
  constexpr std::size_t kRoomForTheRest = 128;
  std::string out;
  out.reserve(kRoomForTheRest + (result() != nullptr ? result()->json().size() : 0));
  out += "{\"jsonrpc\":\"2.0\"";
  if (id_) {
    out += ",\"id\":";
    appendID(out, *id_);
  }
  if (const AnyCodable* value = result()) {
    out += ",\"result\":";
    out += value->json();
  } else {
    out += ",\"error\":{\"code\":";
    out += std::to_string(error()->code);
    out += ",\"message\":";
    json::appendString(out, error()->message);
    out += '}';
  }
  out += '}';
  return out;
}

}  // namespace tessum
