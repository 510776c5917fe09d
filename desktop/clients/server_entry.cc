#include "desktop/clients/server_entry.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>
#include <utility>

#include "core/http/endpoint_url.h"
#include "core/install/mcp_installer.h"
#include "desktop/clients/entry_check.h"

namespace tessum {
namespace {

using Object = json::Value::Object;

// The members that decide whether an entry works, and how. The entry may have only those of them
// that `wanted` has; of other members it must have all that `wanted` has.
constexpr std::array<std::string_view, 5> kDeciding{"command", "url", "httpUrl", "disabled",
                                                    "enabled"};

}  // namespace

json::Value serverEntry(const ServerFormat& format, EntryForm form, const Host& host) {
  const MCPInstaller installer(usualEndpointURL(), host.files, host.locations);
  const bool isStdio = form == EntryForm::stdio;
  const Object config = installer.setTessumEntry({}, isStdio);
  Object entry = *config.at("mcpServers").object()->at("tessum").object();
  if (isStdio && !checkEntry(entry).problem.empty()) {
    throw std::runtime_error(
        "there is no TessumMCP beside this program, so no application could start it");
  }
  if (isStdio && format.hasStdioType) entry["type"] = "stdio";
  if (isStdio && format.hasEnvironment) entry["env"] = Object();
  if (!isStdio && format.hasHttpType) entry["type"] = "http";
  if (!isStdio && format.urlKey != "url") {
    auto url = entry.extract("url");
    url.key() = format.urlKey;
    entry.insert(std::move(url));
  }
  return entry;
}

bool worksLike(const json::Value& entry, const json::Value& wanted) {
  const Object* is = entry.object();
  const Object* ought = wanted.object();
  if (is == nullptr || ought == nullptr) return entry == wanted;
  const auto isWanted = [&](const auto& member) {
    const auto found = is->find(member.first);
    return found != is->end() && found->second == member.second;
  };
  const auto isAddedAgainstIt = [&](std::string_view key) {
    return is->contains(key) && !ought->contains(key);
  };
  return std::all_of(ought->begin(), ought->end(), isWanted) &&
         std::none_of(kDeciding.begin(), kDeciding.end(), isAddedAgainstIt);
}

}  // namespace tessum
