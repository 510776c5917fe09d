#include "core/mcp/json_rpc.h"

#include <string_view>
#include <utility>

#include "core/json/number.h"
#include "core/json/writer.h"

namespace tessum {
namespace {

// A member that is kept until the whole message has been read: a later one of the same key
// replaces it.
struct Kept {
  explicit Kept(const json::Member& member) : source(member.source), text(member.text) {}

  json::PaddedView source;
  std::optional<std::string> text;
};

std::string requiredText(std::optional<Kept> member, const char* key) {
  if (!member) throw json::DecodingError(std::string("missing member ") + key);
  if (!member->text) throw json::DecodingError(std::string("expected text at ") + key);
  return *std::move(member->text);
}

bool isNull(json::PaddedView source) {
  return source.text() == "null";
}

JSONRPCID decodeID(Kept member) {
  if (member.text) return *std::move(member.text);
  if (const auto integer = json::integralValue(member.source.text())) return *integer;
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
  std::optional<Kept> jsonrpc;
  std::optional<Kept> id;
  std::optional<Kept> method;
  std::optional<json::PaddedView> params;
  json::forEachMember(message, [&](const json::Member& member) {
    if (member.key == "jsonrpc") jsonrpc.emplace(member);
    if (member.key == "id") id.emplace(member);
    if (member.key == "method") method.emplace(member);
    if (member.key == "params") params = member.source;
  });

  JSONRPCRequest request;
  request.jsonrpc = requiredText(std::move(jsonrpc), "jsonrpc");
  request.method = requiredText(std::move(method), "method");
  if (id && !isNull(id->source)) request.id = decodeID(*std::move(id));
  if (params && !isNull(*params)) request.params = AnyCodable(*params);
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
