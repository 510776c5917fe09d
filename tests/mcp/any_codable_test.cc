#include "core/mcp/any_codable.h"

#include <gtest/gtest.h>

namespace tessum {
namespace {

AnyCodable reading(std::string_view text) {
  return AnyCodable(json::PaddedString(text).view());
}

using Kind = AnyCodable::Kind;

struct KindCase {
  const char* text;
  Kind kind;
};

class AnyCodableKind : public testing::TestWithParam<KindCase> {};

TEST_P(AnyCodableKind, IsTheFirstThatTheValueReadsAs) {
  EXPECT_EQ(reading(GetParam().text).kind(), GetParam().kind);
}

INSTANTIATE_TEST_SUITE_P(
    Values, AnyCodableKind,
    testing::Values(KindCase{"null", Kind::null}, KindCase{"true", Kind::boolean},
                    KindCase{"false", Kind::boolean}, KindCase{"0", Kind::integer},
                    KindCase{"10.0", Kind::integer}, KindCase{"1e2", Kind::integer},
                    KindCase{"9223372036854775807", Kind::integer},
                    KindCase{"9223372036854775808", Kind::real}, KindCase{"2.5", Kind::real},
                    KindCase{"1e308", Kind::real}, KindCase{"1e400", Kind::null},
                    KindCase{"-1e400", Kind::null}, KindCase{"\"10\"", Kind::text},
                    KindCase{"[1]", Kind::array}, KindCase{"{}", Kind::object}));

TEST(AnyCodable, GivesIntegersHoweverTheyAreWritten) {
  EXPECT_EQ(reading("10").integer(), 10);
  EXPECT_EQ(reading("10.0").integer(), 10);
  EXPECT_EQ(reading("1e1").integer(), 10);
  for (const char* other : {"2.5", "\"10\"", "true", "null", "[10]", "9223372036854775808"}) {
    EXPECT_FALSE(reading(other).integer().has_value()) << other;
  }
}

TEST(AnyCodable, GivesTextsWithoutEscapes) {
  EXPECT_EQ(reading(R"("a\/b\u00e9")").text(), "a/bé");
  for (const char* other : {"1", "true", "null", "[\"a\"]", "{}"}) {
    EXPECT_FALSE(reading(other).text().has_value()) << other;
  }
}

TEST(AnyCodable, GivesTheLastMemberOfAKey) {
  const AnyCodable object = reading(R"({"a":1,"b":{"a":2},"a":3,"\u0063":4})");
  EXPECT_EQ(object.member("a")->integer(), 3);
  EXPECT_EQ(object.member("b")->member("a")->integer(), 2);
  EXPECT_EQ(object.member("c")->integer(), 4);
  EXPECT_FALSE(object.member("d").has_value());
  EXPECT_FALSE(reading("[1]").member("a").has_value());
  EXPECT_FALSE(reading("null").member("a").has_value());
}

TEST(AnyCodable, IsNullToBeginWith) {
  EXPECT_EQ(AnyCodable().kind(), Kind::null);
  EXPECT_EQ(AnyCodable().json(), "null");
}

TEST(AnyCodable, WritesAnEncodedValueAsItWasEncoded) {
  EXPECT_EQ(AnyCodable::encoded(R"({"a":"x\/y"})").json(), R"({"a":"x\/y"})");
}

}  // namespace
}  // namespace tessum
