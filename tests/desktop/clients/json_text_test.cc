#include "desktop/clients/edit/json_text.h"

#include <gtest/gtest.h>

#include <string>

namespace tessum {
namespace {

const JsonText kJson("mcpServers", "tessum");
const json::Value kJsonEntry = json::Value::Object{{"url", "http://x/y"}};

struct Insertion {
  const char* before;
  const char* after;
};

class AddingAnEntry : public testing::TestWithParam<Insertion> {};

TEST_P(AddingAnEntry, FollowsTheFilesStyleAndComesOutAgain) {
  const EditedText edited = kJson.withEntry(GetParam().before, kJsonEntry, {});
  EXPECT_EQ(edited.text, GetParam().after);
  EXPECT_FALSE(edited.isReplaced);
  EXPECT_EQ(kJson.withoutEntry(edited.text, edited.addition), GetParam().before);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, AddingAnEntry,
    testing::Values(
        Insertion{"",
                  "{\n  \"mcpServers\": {\n    \"tessum\": {\n      \"url\": \"http://x/y\"\n"
                  "    }\n  }\n}\n"},
        Insertion{"{}",
                  "{\n  \"mcpServers\": {\n    \"tessum\": {\n      \"url\": \"http://x/y\"\n"
                  "    }\n  }\n}"},
        Insertion{R"({"a":1})", R"({"a":1, "mcpServers": {"tessum": {"url": "http://x/y"}}})"},
        Insertion{R"({"mcpServers":{"b":{}},"c":"}"})",
                  R"({"mcpServers":{"b":{}, "tessum": {"url": "http://x/y"}},"c":"}"})"},
        Insertion{R"({"mcpServers":{},})", R"({"mcpServers":{"tessum": {"url": "http://x/y"}},})"},
        // The entry goes behind a comment on the last member's line, its comma before it.
        Insertion{"{\r\n\t\"mcpServers\": {\r\n\t\t\"b\": {} // \"b\",\r\n\t}\r\n}",
                  "{\r\n\t\"mcpServers\": {\r\n\t\t\"b\": {}, // \"b\",\r\n\t\t\"tessum\": {\r\n"
                  "\t\t\t\"url\": \"http://x/y\"\r\n\t\t}\r\n\t}\r\n}"},
        // A trailing comma has a trailing comma behind it.
        Insertion{"{\n   \"mcpServers\": {\n      \"b\": {},\n   },\n}",
                  "{\n   \"mcpServers\": {\n      \"b\": {},\n      \"tessum\": {\n"
                  "         \"url\": \"http://x/y\"\n      },\n   },\n}"},
        Insertion{"{\n  \"mcpServers\": { // none\n  }\n}",
                  "{\n  \"mcpServers\": { // none\n    \"tessum\": {\n"
                  "      \"url\": \"http://x/y\"\n    }\n  }\n}"},
        Insertion{"// nothing",
                  "// nothing\n{\n  \"mcpServers\": {\n    \"tessum\": {\n"
                  "      \"url\": \"http://x/y\"\n    }\n  }\n}\n"},
        Insertion{"\xEF\xBB\xBF{\"a\":1}",
                  "\xEF\xBB\xBF{\"a\":1, \"mcpServers\": {\"tessum\": {\"url\": "
                  "\"http://x/y\"}}}"}));

TEST(JsonText, ReplacesAnEntryInItsPlace) {
  const std::string before = R"({"mcpServers": {"tess\u0075m": [1, /* x */ 2,], "b": {}}} // c)";
  const EditedText edited = kJson.withEntry(before, kJsonEntry, {});
  EXPECT_TRUE(edited.isReplaced);
  EXPECT_EQ(edited.text, R"({"mcpServers": {"tess\u0075m": {"url": "http://x/y"}, "b": {}}} // c)");
}

class Refusal : public testing::TestWithParam<const char*> {};

TEST_P(Refusal, IsForWhatCannotBeEditedSafely) {
  EXPECT_THROW(static_cast<void>(kJson.withEntry(GetParam(), kJsonEntry, {})), CannotEdit);
  EXPECT_THROW(static_cast<void>(kJson.entry(GetParam())), CannotEdit);
}

INSTANTIATE_TEST_SUITE_P(Texts, Refusal,
                         testing::Values("[]", "null", "1", "\"a\"", "{", "}", "{]", "{,}",
                                         "{\"a\":1,,}", "{\"a\"}", "{\"a\":,}", "{a:1}", "{'a':1}",
                                         "{\"a\":1 \"b\":2}", "{} {}", "/* {}", "// {}\n/",
                                         "{\"a\":\"\n\"}", "{\"a\":\"\xFF\"}", "{} // \xFF",
                                         "{\"mcpServers\":[]}", "{\"mcpServers\":null}",
                                         "{\"mcpServers\":{},\"mcp\\u0053ervers\":{}}",
                                         "{\"mcpServers\":{\"tessum\":1,\"tessum\":2}}",
                                         "{\"a\":01}", "{\"a\":[1,]]}", "{\"a\":1}}"));

struct Removal {
  const char* before;
  bool hasContainer;
  const char* after;
};

class RemovingAnEntry : public testing::TestWithParam<Removal> {};

TEST_P(RemovingAnEntry, LeavesTheRestWhenNothingElseIsKnown) {
  EXPECT_EQ(
      kJson.withoutEntry(GetParam().before, Addition{.hasContainer = GetParam().hasContainer}),
      GetParam().after);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, RemovingAnEntry,
    testing::Values(
        Removal{R"({"mcpServers":{"tessum":{}}})", false, R"({"mcpServers":{}})"},
        Removal{R"({"mcpServers":{"tessum":{}}})", true, R"({})"},
        Removal{R"({"a":1,"mcpServers":{"tessum":{}}})", true, R"({"a":1})"},
        Removal{R"({"mcpServers":{"tessum":{}},"a":1})", true, R"({"a":1})"},
        Removal{R"({"mcpServers":{"b":1,"tessum":{}}})", true, R"({"mcpServers":{"b":1}})"},
        Removal{R"({"mcpServers":{"b":1,"tessum":{},}})", true, R"({"mcpServers":{"b":1,}})"},
        Removal{R"({"mcpServers":{"tessum":{},"b":1}})", true, R"({"mcpServers":{"b":1}})"},
        Removal{"{\"mcpServers\":{\"tessum\":{} // mine\n}}", true,
                "{\"mcpServers\":{ // mine\n}}"},
        Removal{"{\"mcpServers\":{// b\n\"tessum\":{},\"b\":1}}", false,
                "{\"mcpServers\":{// b\n\"b\":1}}"}));

TEST(JsonText, KnowsAnEmptyText) {
  for (const char* text : {"", " \n", "{}", "{ }\n"}) EXPECT_TRUE(kJson.isEmpty(text)) << text;
  for (const char* text : {"{\"a\":1}", "// a", "{/**/}", "[]"}) {
    EXPECT_FALSE(kJson.isEmpty(text)) << text;
  }
}

}  // namespace
}  // namespace tessum
