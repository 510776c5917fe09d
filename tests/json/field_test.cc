#include "core/json/field.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "core/json/reader.h"

namespace tessum::json {
namespace {

const Value kDocument = parse(
    R"({"name":"x","count":3,"ratio":0.5,"flag":true,"none":null,"assets":[{"name":"a"},{"name":1}]})");

std::string failureOf(const std::function<void()>& read) {
  try {
    read();
  } catch (const DecodingError& error) {
    return error.description();
  }
  return "no failure";
}

TEST(Field, ReadsEachKind) {
  const Field top(kDocument);
  EXPECT_EQ(top.required("name").text(), "x");
  EXPECT_EQ(top.required("count").integer(), 3);
  EXPECT_EQ(top.required("count").real(), 3.0);
  EXPECT_EQ(top.required("ratio").real(), 0.5);
  EXPECT_TRUE(top.required("flag").boolean());
  EXPECT_EQ(top.required("assets").elements().at(0).required("name").text(), "a");
}

TEST(Field, TreatsNullAndMissingAlikeWhereAMemberIsOptional) {
  const Field top(kDocument);
  EXPECT_FALSE(top.optional("none").has_value());
  EXPECT_FALSE(top.optional("missing").has_value());
  EXPECT_TRUE(top.optional("name").has_value());
}

TEST(Field, SaysWhereDecodingFailed) {
  const Field top(kDocument);
  EXPECT_EQ(failureOf([&] { static_cast<void>(top.required("missing")); }),
            "missing member missing");
  EXPECT_EQ(failureOf([&] { static_cast<void>(top.required("none").text()); }),
            "expected text at none");
  EXPECT_EQ(failureOf([&] {
              static_cast<void>(top.required("assets").elements().at(1).required("name").text());
            }),
            "expected text at assets[1].name");
  EXPECT_EQ(failureOf([&] { static_cast<void>(top.required("ratio").integer()); }),
            "expected a 64-bit integer at ratio");
  EXPECT_EQ(failureOf([&] { static_cast<void>(top.text()); }), "expected text at the top level");
  EXPECT_EQ(failureOf([&] { static_cast<void>(top.required("name").required("x")); }),
            "expected an object at name");
  EXPECT_EQ(failureOf([&] { static_cast<void>(top.required("name").boolean()); }),
            "expected true or false at name");
  EXPECT_EQ(failureOf([&] { static_cast<void>(top.required("name").elements()); }),
            "expected an array at name");
  EXPECT_EQ(failureOf([&] { static_cast<void>(top.required("name").real()); }),
            "expected a number at name");
}

}  // namespace
}  // namespace tessum::json
