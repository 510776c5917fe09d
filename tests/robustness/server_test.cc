#include "tests/robustness/server_test.h"

#include "core/json/reader.h"
#include "core/json/value.h"
#include "tests/support/sql.h"

namespace tessum {
namespace {

const json::Value& at(const json::Value& object, std::string_view key) {
  return object.object()->find(key)->second;
}

}  // namespace

std::string toolCall(std::int64_t id, std::string_view tool, std::string_view arguments) {
  std::string request = R"({"jsonrpc":"2.0","id":)" + std::to_string(id);
  request += R"(,"method":"tools/call","params":{"name":")";
  request += tool;
  request += R"(","arguments":)";
  request += arguments;
  request += "}}";
  return request;
}

std::string annotation(std::int64_t id, std::string_view text) {
  return toolCall(id, "annotate", R"({"text":")" + std::string(text) + "\"}");
}

Answer toAnswer(std::string_view line) {
  const json::Value answer = json::parse(line);
  const json::Value& result = at(answer, "result");
  return {.id = std::stoll(at(answer, "id").number()->text),
          .isError = *at(result, "isError").boolean(),
          .text = *at(at(result, "content").array()->front(), "text").text()};
}

bool isStoreError(const Answer& answer) {
  return answer.isError && answer.text.starts_with("Error: Failed to ");
}

void ServerTest::makeStore() const {
  ChildProcess server(serverProgram());
  EXPECT_FALSE(ask(server, annotation(1, "the first")).isError);
  EXPECT_EQ(server.finish(), kSuccess);
}

std::vector<std::string> ServerTest::storedAnnotations() const {
  return Sql(databasePath()).rows("SELECT text FROM annotations ORDER BY id");
}

void ServerTest::expectWholeDatabase() const {
  EXPECT_EQ(Sql(databasePath()).row("PRAGMA integrity_check"), "ok");
}

Answer ask(ChildProcess& server, const std::string& request) {
  server.writeLine(request);
  const auto line = server.readLine();
  if (!line) {
    ADD_FAILURE() << "no answer to " << request << "\n" << server.errors();
    return {};
  }
  return toAnswer(*line);
}

}  // namespace tessum
