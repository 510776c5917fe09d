#include "core/mcp/mcp_server.h"

#include "tests/mcp/engine_fixture.h"

namespace tessum {
namespace {

constexpr char kInitializeResult[] =
    R"({"protocolVersion":"2024-11-05","capabilities":{"tools":{},"resources":{}},)"
    R"("serverInfo":{"name":"tessum","version":"1.0.0"}})";

TEST_F(EngineTest, KnowsItsPort) {
  EXPECT_EQ(server_.port(), 7384);
}

TEST_F(EngineTest, InitializeSaysTheSameWhateverTheParamsHold) {
  const auto expected =
      json::parse(std::string(R"({"jsonrpc":"2.0","id":1,"result":)") + kInitializeResult + "}");
  EXPECT_EQ(answer(R"({"jsonrpc":"2.0","id":1,"method":"initialize"})"), expected);
  for (const char* params :
       {"null", "{}", "[]", "5", R"({"protocolVersion":"2099-01-01","capabilities":{"x":1}})"}) {
    EXPECT_EQ(call(R"("initialize")", params), expected) << params;
  }
}

TEST_F(EngineTest, DropsNotificationsWithoutLookingAtThem) {
  for (
      const char* message :
      {R"({"jsonrpc":"2.0","method":"tools/list"})", R"({"jsonrpc":"2.0","method":"unknown"})",
       R"({"jsonrpc":"2.0","method":"notifications/initialized"})",
       R"({"jsonrpc":"2.0","id":null,"method":"initialize"})",
       R"({"jsonrpc":"2.0","method":"tools/call","params":{"name":"annotate","arguments":{"text":"x"}}})"}) {
    EXPECT_FALSE(server_.handleBody(json::PaddedString(message).view()).has_value()) << message;
  }
  EXPECT_EQ(sql_.row("SELECT count(*) FROM annotations"), "0");
}

TEST_F(EngineTest, RepeatsTheIdOfTheRequest) {
  const auto id = [&](const char* text) {
    return *member(
        answer(std::string(R"({"jsonrpc":"2.0","method":"initialize","id":)") + text + "}"), "id");
  };
  EXPECT_EQ(id("42"), json::Value(42));
  EXPECT_EQ(id("\"abc\""), json::Value("abc"));
  EXPECT_EQ(id("\"42\""), json::Value("42"));
  EXPECT_EQ(id("-9223372036854775808"), json::Value(std::numeric_limits<std::int64_t>::min()));
}

TEST_F(EngineTest, AcceptsAnyJsonrpcTextAndAnswersWithItsOwn) {
  const auto response = answer(R"({"jsonrpc":"banana","id":1,"method":"initialize"})");
  EXPECT_EQ(*member(response, "jsonrpc"), json::Value("2.0"));
  EXPECT_EQ(*member(response, "result"), json::parse(kInitializeResult));
}

struct UnknownMethod : EngineTest, testing::WithParamInterface<const char*> {};

TEST_P(UnknownMethod, IsAnErrorWithTheMethodAsReceived) {
  const std::string method = GetParam();
  EXPECT_EQ(call("\"" + method + "\"", "{}"),
            json::parse(R"({"jsonrpc":"2.0","id":1,"error":{"code":-32601,)"
                        R"("message":"Method not found: )" +
                        method + "\"}}"));
}

INSTANTIATE_TEST_SUITE_P(Methods, UnknownMethod,
                         testing::Values("ping", "Initialize", "initialize ", "", "tools/List",
                                         "prompts/list", "notifications/initialized", "tools",
                                         R"(a\u0000b)"));

struct UnreadableMessage : EngineTest, testing::WithParamInterface<const char*> {};

TEST_P(UnreadableMessage, IsAParseErrorWithoutId) {
  const json::Value response = answer(GetParam());
  ASSERT_EQ(response.object()->size(), 2u);
  EXPECT_EQ(*member(response, "jsonrpc"), json::Value("2.0"));
  const json::Value* error = member(response, "error");
  ASSERT_NE(error, nullptr);
  EXPECT_EQ(error->object()->size(), 2u);
  EXPECT_EQ(*member(*error, "code"), json::Value(-32700));
  EXPECT_TRUE(member(*error, "message")->text()->starts_with("Parse error: "));
  EXPECT_EQ(member(*error, "message")->text()->find('\n'), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(
    Messages, UnreadableMessage,
    testing::Values(" ", "x", "{", "null", "5", "\"text\"", "[]",
                    R"([{"jsonrpc":"2.0","id":1,"method":"initialize"}])",
                    R"({"id":1,"method":"initialize"})", R"({"jsonrpc":"2.0","id":1})",
                    R"({"jsonrpc":"2.0","id":1.5,"method":"initialize"})",
                    R"({"jsonrpc":"2.0","id":true,"method":"initialize"})",
                    R"({"jsonrpc":"2.0","id":{},"method":"initialize"})",
                    R"({"jsonrpc":"2.0","id":9223372036854775808,"method":"initialize"})",
                    R"({"jsonrpc":"2.0","id":1,"method":"initialize"} x)",
                    R"({"jsonrpc":"2.0","id":1,"method":"init\ud800"})",
                    "{\"jsonrpc\":\"2.0\",\"id\":1,\"method\":\"\xFF\"}",
                    R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":01})"));

TEST_F(EngineTest, RefusesAMessageThatIsNestedTooDeeply) {
  const auto message = [](std::size_t levels) {
    return R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":)" + std::string(levels, '[') +
           std::string(levels, ']') + "}";
  };
  EXPECT_NE(member(answer(message(511)), "result"), nullptr);
  EXPECT_NE(member(answer(message(512)), "error"), nullptr);
}

TEST_F(EngineTest, AnswersAfterAnError) {
  static_cast<void>(answer("x"));
  EXPECT_NE(member(answer(R"({"jsonrpc":"2.0","id":1,"method":"initialize"})"), "result"), nullptr);
}

}  // namespace
}  // namespace tessum
