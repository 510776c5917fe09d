#include "core/http/http_response.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>

namespace tessum {
namespace {

const json::PaddedString kMessage("message");

HTTPResponse answerTo(std::string_view method, std::string_view path) {
  return respond({method, path, kMessage.view()},
                 [](json::PaddedView body) { return "answer to " + std::string(body.text()); });
}

const HTTPResponse kNotFound{404, "text/plain", "Not found"};

TEST(Respond, AnswersAMessageThatIsPostedToMcp) {
  EXPECT_EQ(answerTo("POST", "/mcp"), (HTTPResponse{200, "application/json", "answer to message"}));
}

TEST(Respond, HasNoBodyWhenTheEngineGivesNoAnswer) {
  const auto response =
      respond({"POST", "/mcp", kMessage.view()}, [](json::PaddedView) { return std::nullopt; });
  EXPECT_EQ(response, (HTTPResponse{200, "application/json", ""}));
}

TEST(Respond, AllowsPreFlightsOnAnyPath) {
  const HTTPResponse allowed{204, "application/json", ""};
  EXPECT_EQ(answerTo("OPTIONS", "/mcp"), allowed);
  EXPECT_EQ(answerTo("OPTIONS", "/"), allowed);
  EXPECT_EQ(answerTo("OPTIONS", "/anything"), allowed);
  EXPECT_EQ(answerTo("OPTIONS", ""), allowed);
}

TEST(Respond, GreetsWhoeverGetsTheRoot) {
  const auto response = answerTo("GET", "/");
  EXPECT_EQ(response, (HTTPResponse{200, "text/plain",
                                    "Tessum MCP Server – POST /mcp with a JSON-RPC 2.0 request."}));
  EXPECT_EQ(response.body.size(), 60U);
}

TEST(Respond, FindsNothingElse) {
  EXPECT_EQ(answerTo("GET", "/mcp"), kNotFound);
  EXPECT_EQ(answerTo("GET", ""), kNotFound);
  EXPECT_EQ(answerTo("GET", "/favicon.ico"), kNotFound);
  EXPECT_EQ(answerTo("GET", "/?"), kNotFound);
  EXPECT_EQ(answerTo("POST", "/"), kNotFound);
  EXPECT_EQ(answerTo("POST", "/mcp/"), kNotFound);
  EXPECT_EQ(answerTo("POST", "/mcp?"), kNotFound);
  EXPECT_EQ(answerTo("POST", "/mcp?x=1"), kNotFound);
  EXPECT_EQ(answerTo("POST", "/MCP"), kNotFound);
  EXPECT_EQ(answerTo("POST", "http://localhost/mcp"), kNotFound);
  EXPECT_EQ(answerTo("post", "/mcp"), kNotFound);
  EXPECT_EQ(answerTo("Post", "/mcp"), kNotFound);
  EXPECT_EQ(answerTo("get", "/"), kNotFound);
  EXPECT_EQ(answerTo("options", "/mcp"), kNotFound);
  EXPECT_EQ(answerTo("HEAD", "/"), kNotFound);
  EXPECT_EQ(answerTo("PUT", "/mcp"), kNotFound);
  EXPECT_EQ(answerTo("DELETE", "/mcp"), kNotFound);
  EXPECT_EQ(answerTo("", ""), kNotFound);
}

TEST(Respond, LeavesTheEngineAloneForAnythingButAMessage) {
  int calls = 0;
  const AnswerMessage count = [&](json::PaddedView) -> std::optional<std::string> {
    ++calls;
    return std::nullopt;
  };
  const json::PaddedView body = kMessage.view();
  for (const HTTPRequest& request :
       {HTTPRequest{"OPTIONS", "/mcp", body}, {"GET", "/", body}, {"POST", "/", body}}) {
    static_cast<void>(respond(request, count));
  }
  EXPECT_EQ(calls, 0);
}

TEST(ResponseHead, NamesTheLengthOfTheBodyInBytes) {
  EXPECT_EQ(responseHead({200, "application/json", "{\"é\":1}"}),
            "HTTP/1.1 200 OK\r\n"
            "Content-Type: application/json; charset=utf-8\r\n"
            "Content-Length: 8\r\n"
            "Access-Control-Allow-Origin: *\r\n"
            "Access-Control-Allow-Methods: POST, GET, OPTIONS\r\n"
            "Access-Control-Allow-Headers: Content-Type\r\n"
            "Connection: close\r\n"
            "\r\n");
}

TEST(ResponseHead, HasAReasonPhraseForEachStatus) {
  const auto statusLine = [](int status) {
    const std::string head = responseHead({status, "text/plain", ""});
    return head.substr(0, head.find("\r\n"));
  };
  EXPECT_EQ(statusLine(200), "HTTP/1.1 200 OK");
  EXPECT_EQ(statusLine(204), "HTTP/1.1 204 No Content");
  EXPECT_EQ(statusLine(404), "HTTP/1.1 404 Not Found");
  EXPECT_EQ(statusLine(500), "HTTP/1.1 500 OK");
}

}  // namespace
}  // namespace tessum
