#include "core/http/http_response.h"

#include <utility>

#include "core/http/endpoint_url.h"

namespace tessum {
namespace {

constexpr int kForbidden = 403;

constexpr std::string_view kJson = "application/json";
constexpr std::string_view kPlainText = "text/plain";
constexpr std::string_view kNotFound = "Not found";

std::string_view reasonPhrase(int status) {
  if (status == 204) return "No Content";
  if (status == kForbidden) return "Forbidden";
  if (status == 404) return "Not Found";
  return "OK";
}

}  // namespace

std::string responseHead(const HTTPResponse& response) {
  std::string head = "HTTP/1.1 " + std::to_string(response.status) + " ";
  head += reasonPhrase(response.status);
  head += "\r\nContent-Type: ";
  head += response.contentType;
  head += "; charset=utf-8\r\nContent-Length: " + std::to_string(response.body.size());
  if (response.status != kForbidden) {
    head +=
        "\r\nAccess-Control-Allow-Origin: *"
        "\r\nAccess-Control-Allow-Methods: POST, GET, OPTIONS"
        "\r\nAccess-Control-Allow-Headers: Content-Type";
  }
  head += "\r\nConnection: close\r\n\r\n";
  return head;
}

HTTPResponse refuse(std::string reason) {
  return {kForbidden, kPlainText, std::move(reason)};
}

HTTPResponse respond(const HTTPRequest& request, const AnswerMessage& answerMessage) {
  if (request.method == "OPTIONS") return {204, kJson, ""};
  if (request.method == "POST" && request.path == kEndpointPath) {
    return {200, kJson, answerMessage(request.body).value_or("")};
  }
  if (request.method == "GET" && request.path == "/") {
    return {200, kPlainText, std::string(kGreeting)};
  }
  return {404, kPlainText, std::string(kNotFound)};
}

}  // namespace tessum
