#include <unistd.h>

#include <asio/ip/tcp.hpp>
#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#include "core/base/limits.h"
#include "desktop/clients/entry_check.h"

namespace tessum {
namespace {

// Our transport describes itself in the answer to this request.
constexpr std::string_view kRequest =
    "GET / HTTP/1.1\r\n"
    "Host: localhost\r\n"
    "Connection: close\r\n"
    "\r\n";
constexpr std::string_view kSelfDescription = "Tessum MCP Server";
constexpr auto kPatience = std::chrono::seconds(2);

bool isOurEndpointUp() {
  asio::ip::tcp::iostream stream;
  stream.expires_after(kPatience);
  stream.connect("localhost", std::to_string(limits::kDefaultPort));
  stream << kRequest << std::flush;
  for (std::string line; std::getline(stream, line);) {
    if (line.starts_with(kSelfDescription)) return true;
  }
  return false;
}

bool isProgram(const std::string& path) {
  std::error_code error;
  return std::filesystem::is_regular_file(path, error) && access(path.c_str(), X_OK) == 0;
}

std::string problemOfCommand(const std::string& command) {
  if (!command.starts_with('/')) return "its program is not given by its full path";
  return isProgram(command) ? "" : "its program is missing";
}

std::string problemOfURL(const std::string& url) {
  if (url != usualEndpointURL()) return "its URL is not Tessum's";
  return isOurEndpointUp() ? "" : "\"Tessum record --http\" is not running";
}

const std::string* textMember(const json::Value::Object& object, std::string_view key) {
  const auto member = object.find(key);
  return member == object.end() ? nullptr : member->second.text();
}

}  // namespace

EntryReport checkEntry(const json::Value& entry) {
  if (const auto* object = entry.object()) {
    if (const auto* command = textMember(*object, "command")) {
      return {"stdio", problemOfCommand(*command)};
    }
    if (const auto* url = textMember(*object, "url")) return {"HTTP", problemOfURL(*url)};
  }
  return {"unknown", "it names neither a program nor a URL"};
}

std::string usualEndpointURL() {
  return "http://localhost:" + std::to_string(limits::kDefaultPort) + "/mcp";
}

}  // namespace tessum
