#include "core/mcp/any_codable.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace tessum {
namespace {

AnyCodable reading(std::string_view text) {
  return AnyCodable(json::PaddedString(text).view());
}

std::vector<std::string> membersOf(const AnyCodable& value) {
  std::vector<std::string> members;
  value.forEachMember([&](const json::Member& member) {
    members.push_back(std::string(member.key) + "=" + std::string(member.source.text()));
  });
  return members;
}

TEST(AnyCodable, GivesTheMembersOfAnObjectWithDuplicates) {
  EXPECT_EQ(membersOf(reading(R"({"a":1,"b":{"a":2},"a":"3","\u0063":[4]})")),
            (std::vector<std::string>{"a=1", "b={\"a\":2}", "a=\"3\"", "c=[4]"}));
  EXPECT_EQ(membersOf(reading("{}")), std::vector<std::string>{});
}

TEST(AnyCodable, HasNoMembersWhenItIsNoObject) {
  for (const char* other : {"null", "true", "10", "\"{}\"", R"([{"a":1}])"}) {
    EXPECT_EQ(membersOf(reading(other)), std::vector<std::string>{}) << other;
  }
}

TEST(AnyCodable, IsNullToBeginWith) {
  EXPECT_EQ(AnyCodable().json(), "null");
}

TEST(AnyCodable, KeepsTheTextOfAValueAsItWasRead) {
  for (const char* text : {"10.0", "1e400", "9223372036854775808", R"("a\/b\u00e9")", "{ }"}) {
    EXPECT_EQ(reading(text).json(), text);
  }
}

TEST(AnyCodable, WritesAnEncodedValueAsItWasEncoded) {
  EXPECT_EQ(AnyCodable::encoded(R"({"a":"x\/y"})").json(), R"({"a":"x\/y"})");
}

}  // namespace
}  // namespace tessum
