#include "core/json/writer.h"

#include <gtest/gtest.h>

#include <limits>

namespace tessum::json {
namespace {

TEST(AppendString, EscapesSlashesQuotesAndControls) {
  std::string out;
  appendString(out, std::string_view("a/b\"\\\b\f\n\r\t\x01\x1f\x7f\0é😀", 20));
  EXPECT_EQ(out, "\"a\\/b\\\"\\\\\\b\\f\\n\\r\\t\\u0001\\u001f\x7f\\u0000é😀\"");
}

// Bytes are tested eight at a time, so this tries every byte at every place among other bytes.
TEST(AppendString, EscapesAByteWhereverItStands) {
  for (int byte = 0; byte < 256; ++byte) {
    std::string alone;
    appendString(alone, std::string(1, static_cast<char>(byte)));
    const std::string escaped = alone.substr(1, alone.size() - 2);
    for (const char other : {' ', '\x7f', '\x80', '\xff', '!', '#', '.', '0', '[', ']'}) {
      for (std::size_t at = 0; at < 20; ++at) {
        std::string text(20, other);
        text[at] = static_cast<char>(byte);
        std::string out;
        appendString(out, text);
        EXPECT_EQ(out, "\"" + text.substr(0, at) + escaped + text.substr(at + 1) + "\"");
      }
    }
  }
}

TEST(ObjectWriter, WritesMembersInTheOrderOfTheCalls) {
  std::string out = "[";
  ObjectWriter writer(out);
  writer.text("b", "x/y");
  writer.boolean("a", false);
  ObjectWriter inner(writer.member("\""));
  inner.end();
  writer.boolean("c", true);
  writer.end();
  EXPECT_EQ(out, R"([{"b":"x\/y","a":false,"\"":{},"c":true})");
}

TEST(Compact, HasNoWhiteSpace) {
  const Value value(Value::Object{{"list", Value::Array{1, Value(), true, "x y", false}},
                                  {"none", Value::Array{}},
                                  {"object", Value::Object{}},
                                  {"real", Value::real(2.5)}});
  EXPECT_EQ(compact(value),
            "{\"list\":[1,null,true,\"x y\",false],\"none\":[],\"object\":{},\"real\":2.5}");
}

TEST(Compact, WritesTheLastIntegers) {
  EXPECT_EQ(compact(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
  EXPECT_EQ(compact(std::numeric_limits<std::int64_t>::max()), "9223372036854775807");
}

TEST(Pretty, IndentsAndSortsByCodePoints) {
  const Value value(Value::Object{{"b", 1},
                                  {"a", Value::Array{1, Value::Array{}, Value::Object{}}},
                                  {"é", "/"},
                                  {"B", Value()}});
  EXPECT_EQ(pretty(value),
            "{\n"
            "  \"B\": null,\n"
            "  \"a\": [\n"
            "    1,\n"
            "    [],\n"
            "    {}\n"
            "  ],\n"
            "  \"b\": 1,\n"
            "  \"é\": \"\\/\"\n"
            "}");
}

}  // namespace
}  // namespace tessum::json
