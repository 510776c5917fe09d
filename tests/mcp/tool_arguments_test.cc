#include "core/mcp/tool_arguments.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <string>

namespace tessum {
namespace {

ToolCall decodedCall(const std::string& params) {
  return ToolCall::decode(AnyCodable::encoded(params));
}

ToolArguments decodeArguments(const std::string& arguments) {
  return decodedCall(R"({"name":"t","arguments":)" + arguments + "}").arguments;
}

TEST(ToolCall, ReadsNameAndArguments) {
  const ToolCall call =
      decodedCall(R"({"more":[1],"arguments":{"date":"d","duration":"1h","limit":7,"query":"q\n",)"
                  R"("text":"a\u0000b","more":{"date":"x"}},"name":"annotate"})");
  EXPECT_EQ(call.name, "annotate");
  EXPECT_EQ(call.arguments.date, "d");
  EXPECT_EQ(call.arguments.duration, "1h");
  EXPECT_EQ(call.arguments.limit, 7);
  EXPECT_EQ(call.arguments.query, "q\n");
  EXPECT_EQ(call.arguments.text, std::string("a\0b", 3));
}

TEST(ToolCall, HasNoNameUnlessItIsAText) {
  for (const char* params : {"null", "[]", "\"name\"", "5", "{}", R"({"name":5})",
                             R"({"name":null})", R"({"name":["x"]})", R"({"Name":"x"})"}) {
    EXPECT_EQ(decodedCall(params).name, std::nullopt) << params;
  }
  EXPECT_EQ(decodedCall(R"({"name":""})").name, "");
}

TEST(ToolCall, TakesArgumentsThatAreNoObjectForNone) {
  for (const char* arguments : {"null", "5", "[1]", "\"date\"", R"([{"date":"d"}])"}) {
    EXPECT_EQ(decodeArguments(arguments).date, std::nullopt) << arguments;
  }
}

TEST(ToolArguments, AreAbsentWhenTheyAreOfAnotherKind) {
  for (const char* value : {"5", "null", "true", "[\"d\"]", "{}"}) {
    const ToolArguments arguments =
        decodeArguments(std::string(R"({"date":)") + value + R"(,"text":)" + value + "}");
    EXPECT_EQ(arguments.date, std::nullopt) << value;
    EXPECT_EQ(arguments.text, std::nullopt) << value;
  }
}

TEST(ToolArguments, TakeAnyIntegralNumberForALimit) {
  const auto limit = [](const std::string& number) {
    return decodeArguments(R"({"limit":)" + number + "}").limit;
  };
  EXPECT_EQ(limit("10"), 10);
  EXPECT_EQ(limit("10.0"), 10);
  EXPECT_EQ(limit("1e1"), 10);
  EXPECT_EQ(limit("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
  for (const char* other : {"2.5", "\"10\"", "true", "null", "[10]", "9223372036854775808"}) {
    EXPECT_EQ(limit(other), std::nullopt) << other;
  }
}

TEST(ToolArguments, AreThoseThatComeLast) {
  EXPECT_EQ(decodeArguments(R"({"date":"a","date":"b"})").date, "b");
  EXPECT_EQ(decodeArguments(R"({"date":"a","date":5})").date, std::nullopt);
  EXPECT_EQ(decodeArguments(R"({"limit":1,"limit":"2"})").limit, std::nullopt);
  const ToolCall call =
      decodedCall(R"({"name":"a","arguments":{"date":"d"},"name":"b","arguments":{"query":"q"}})");
  EXPECT_EQ(call.name, "b");
  EXPECT_EQ(call.arguments.date, std::nullopt);
  EXPECT_EQ(call.arguments.query, "q");
  EXPECT_EQ(decodedCall(R"({"arguments":{"date":"d"},"arguments":null})").arguments.date,
            std::nullopt);
}

}  // namespace
}  // namespace tessum
