#include "desktop/clients/entry_check.h"

#include <unistd.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#include "core/http/endpoint_state.h"
#include "core/http/endpoint_url.h"

namespace tessum {
namespace {

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
  return endpointState() == EndpointState::answers ? "" : "\"Tessum record --http\" is not running";
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
    for (const char* key : {"url", "httpUrl"}) {
      if (const auto* url = textMember(*object, key)) return {"HTTP", problemOfURL(*url)};
    }
  }
  return {"unknown", "it names neither a program nor a URL"};
}

}  // namespace tessum
