#include "core/mcp/json_rpc.h"

#include <gtest/gtest.h>

#include <limits>

namespace tessum {
namespace {

JSONRPCRequest decodedRequest(std::string_view text) {
  return JSONRPCRequest::decode(json::PaddedString(text).view());
}

std::string failureOf(std::string_view text) {
  try {
    static_cast<void>(decodedRequest(text));
  } catch (const json::DecodingError& error) {
    return error.description();
  }
  return "no failure";
}

TEST(JSONRPCRequest, ReadsItsMembersAndIgnoresOthers) {
  const auto request =
      decodedRequest(R"({"more":[1],"params":{"a":1},"method":"m","id":7,"jsonrpc":"1.0"})");
  EXPECT_EQ(request.jsonrpc, "1.0");
  EXPECT_EQ(request.id, JSONRPCID(std::int64_t{7}));
  EXPECT_EQ(request.method, "m");
  EXPECT_EQ(request.params->json(), R"({"a":1})");
}

TEST(JSONRPCRequest, TakesNullForAbsent) {
  const auto request = decodedRequest(R"({"jsonrpc":"2.0","id":null,"method":"m","params":null})");
  EXPECT_FALSE(request.id.has_value());
  EXPECT_FALSE(request.params.has_value());
}

TEST(JSONRPCRequest, TakesTheLastOfDuplicateKeys) {
  const auto request =
      decodedRequest(R"({"jsonrpc":"2.0","id":1,"method":"a","method":"b","id":2})");
  EXPECT_EQ(request.method, "b");
  EXPECT_EQ(request.id, JSONRPCID(std::int64_t{2}));
}

TEST(JSONRPCRequest, ReadsIdsThatAreIntegersOrTexts) {
  const auto id = [](const char* text) {
    return decodedRequest(std::string(R"({"jsonrpc":"2.0","method":"m","id":)") + text + "}").id;
  };
  EXPECT_EQ(id("0"), JSONRPCID(std::int64_t{0}));
  EXPECT_EQ(id("-1"), JSONRPCID(std::int64_t{-1}));
  EXPECT_EQ(id("1e2"), JSONRPCID(std::int64_t{100}));
  EXPECT_EQ(id("9223372036854775807"), JSONRPCID(std::numeric_limits<std::int64_t>::max()));
  EXPECT_EQ(id("\"7\""), JSONRPCID("7"));
  EXPECT_EQ(id("\"\""), JSONRPCID(""));
}

TEST(JSONRPCRequest, RefusesOtherIds) {
  for (const char* text :
       {"1.5", "true", "false", "{}", "[]", "[1]", "9223372036854775808", "1e400"}) {
    EXPECT_EQ(failureOf(std::string(R"({"jsonrpc":"2.0","method":"m","id":)") + text + "}"),
              "id must be int or string")
        << text;
  }
}

TEST(JSONRPCRequest, NeedsJsonrpcAndMethodAsTexts) {
  EXPECT_EQ(failureOf(R"({"method":"m","id":1})"), "missing member jsonrpc");
  EXPECT_EQ(failureOf(R"({"jsonrpc":2.0,"method":"m"})"), "expected text at jsonrpc");
  EXPECT_EQ(failureOf(R"({"jsonrpc":null,"method":"m"})"), "expected text at jsonrpc");
  EXPECT_EQ(failureOf(R"({"jsonrpc":"2.0","id":1})"), "missing member method");
  EXPECT_EQ(failureOf(R"({"jsonrpc":"2.0","method":5})"), "expected text at method");
  EXPECT_EQ(failureOf(R"([])"), "expected an object");
}

TEST(JSONRPCResponse, CarriesAResult) {
  const JSONRPCResponse response(JSONRPCID(std::int64_t{7}), AnyCodable::encoded("true"));
  EXPECT_EQ(response.encode(), R"({"jsonrpc":"2.0","id":7,"result":true})");
  EXPECT_EQ(response.error(), nullptr);
}

TEST(JSONRPCResponse, WritesANullResult) {
  EXPECT_EQ(JSONRPCResponse(JSONRPCID("a/b"), AnyCodable()).encode(),
            R"({"jsonrpc":"2.0","id":"a\/b","result":null})");
}

TEST(JSONRPCResponse, CarriesAnError) {
  const JSONRPCResponse response(JSONRPCID("7"), JSONRPCError{-32601, "Method not found: \"x\""});
  EXPECT_EQ(
      response.encode(),
      R"({"jsonrpc":"2.0","id":"7","error":{"code":-32601,"message":"Method not found: \"x\""}})");
  EXPECT_EQ(response.result(), nullptr);
}

TEST(JSONRPCResponse, LeavesAnAbsentIdOut) {
  EXPECT_EQ(JSONRPCResponse(std::nullopt, JSONRPCError{-32700, "x"}).encode(),
            R"({"jsonrpc":"2.0","error":{"code":-32700,"message":"x"}})");
}

}  // namespace
}  // namespace tessum
