#include "core/json/reader.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "core/json/writer.h"

namespace tessum::json {
namespace {

std::string nested(int levels) {
  return std::string(static_cast<std::size_t>(levels), '[') +
         std::string(static_cast<std::size_t>(levels), ']');
}

class RoundTrip : public testing::TestWithParam<std::pair<const char*, const char*>> {};

TEST_P(RoundTrip, KeepsValuesAndTheTextOfNumbers) {
  EXPECT_EQ(compact(parse(GetParam().first)), GetParam().second);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, RoundTrip,
    testing::Values(std::pair("null", "null"), std::pair(" true ", "true"),
                    std::pair("false", "false"), std::pair("\"a\"", "\"a\""),
                    std::pair("\n12\t", "12"), std::pair("[]", "[]"), std::pair("{}", "{}"),
                    std::pair("[1.0, 0.1000,1e400 , -0]", "[1.0,0.1000,1e400,-0]"),
                    std::pair("[123456789012345678901234567890]",
                              "[123456789012345678901234567890]"),
                    std::pair("{\"b\":1,\"a\":[true,null,{}]}", "{\"a\":[true,null,{}],\"b\":1}"),
                    std::pair("{\"a\":1,\"a\":2}", "{\"a\":2}"),
                    std::pair("{\"a\":{\"x\":1},\"a\":{\"y\":2}}", "{\"a\":{\"y\":2}}"),
                    std::pair("\"\\u00e9\\n\\/\\ud83d\\ude00\"", "\"é\\n\\/😀\""),
                    std::pair("\"\\u0000\"", "\"\\u0000\""),
                    std::pair("\"\xED\x9F\xBF\"", "\"\xED\x9F\xBF\""),  // U+D7FF, just below
                    std::pair("\xEF\xBB\xBF{\"a\":1}", "{\"a\":1}")));

std::vector<std::string> membersOf(std::string_view text) {
  std::vector<std::string> members;
  const PaddedString padded(text);
  forEachMember(padded.view(), [&](const Member& member) {
    members.push_back(std::string(member.key) + "=" + std::string(member.source.text()));
  });
  return members;
}

class Invalid : public testing::TestWithParam<std::string> {};

TEST_P(Invalid, IsADecodingErrorForEveryWayOfReading) {
  EXPECT_THROW(static_cast<void>(parse(GetParam())), DecodingError);
  EXPECT_THROW(membersOf(GetParam()), DecodingError);
  const std::string inside = "{\"a\":" + GetParam() + "}";
  EXPECT_THROW(static_cast<void>(parse(inside)), DecodingError);
  EXPECT_THROW(membersOf(inside), DecodingError);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, Invalid,
    testing::Values("", " ", "{", "}", "[", "]", "[1,]", "[,1]", "[1 2]", "{\"a\"}", "{\"a\":}",
                    "{\"a\":1,}", "{a:1}", "{'a':1}", "{\"a\":1 \"b\":2}", "[1}", "{\"a\":1]",
                    "nul", "nulll", "True", "tru", "falsee", "01", "1.", "+1", "-", "NaN", "0x1",
                    "\"", "\"a", "\"\\x\"", "\"\\u12\"", "\"\\ud800\"", "\"\\udc00\"",
                    "\"\\ud800\\u0041\"", "\"\\ud83dx\"", "\"a\nb\"", "\"a\tb\"", "\"\xFF\"",
                    "\"\xC3\"", "\"\xED\xA0\x80\"", "1 2", "[] []", "{} x", "[1]]", "[[1]", "{}}",
                    "// comment\n1", "[1] // x", "\"a\" \"b\"", "\"a\",\"b\"", "\"a\"],[\"b\"",
                    "true false", "[tru]", "[01]", "[\"\\udc00\"]", "{\"\\udc00\":1}",
                    std::string("[1\0]", 4)));

TEST(Parse, AllowsFiveHundredAndTwelveLevels) {
  EXPECT_EQ(compact(parse(nested(512))), nested(512));
  EXPECT_THROW(static_cast<void>(parse(nested(513))), DecodingError);
  EXPECT_THROW(static_cast<void>(parse(nested(100000))), DecodingError);
}

TEST(ForEachMember, GivesTheSourceTextOfEachValue) {
  EXPECT_EQ(membersOf("{}"), std::vector<std::string>{});
  EXPECT_EQ(
      membersOf(
          "{ \"a\" : 1.50 , \"b\\n\": \"x\\u0041 \" ,\"c\":[ 1, {} ] , \"d\":{ } ,\"e\": null }"),
      (std::vector<std::string>{"a=1.50", "b\n=\"x\\u0041 \"", "c=[ 1, {} ]", "d={ }", "e=null"}));
}

TEST(ForEachMember, VisitsDuplicatesInOrder) {
  EXPECT_EQ(membersOf("{\"a\":1,\"a\":[2]}"), (std::vector<std::string>{"a=1", "a=[2]"}));
}

TEST(ForEachMember, RefusesOtherKinds) {
  for (const char* text : {"[]", "1", "\"a\"", "null", "true"}) {
    EXPECT_THROW(membersOf(text), DecodingError) << text;
  }
}

TEST(ForEachMember, CountsItsOwnLevel) {
  EXPECT_EQ(membersOf("{\"a\":" + nested(511) + "}").size(), 1u);
  EXPECT_THROW(membersOf("{\"a\":" + nested(512) + "}"), DecodingError);
}

TEST(ForEachMember, DecodesTexts) {
  const auto textOf = [](const std::string& value) {
    std::optional<std::string> text;
    const PaddedString object("{\"a\":" + value + "}");
    forEachMember(object.view(), [&](const Member& member) { text = member.text; });
    return text;
  };
  EXPECT_EQ(textOf("\"\""), "");
  EXPECT_EQ(textOf("\"a\\n\\u00e9\""), "a\né");
  EXPECT_EQ(textOf("\"a\\u0000b\""), std::string("a\0b", 3));
  for (const char* other : {"null", "true", "10", "[\"a\"]", "{\"a\":\"b\"}"}) {
    EXPECT_EQ(textOf(other), std::nullopt) << other;
  }
}

}  // namespace
}  // namespace tessum::json
