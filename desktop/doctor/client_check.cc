// Checks the assistant applications and the HTTP endpoint.

#include <string>
#include <system_error>

#include "core/base/limits.h"
#include "core/install/mcp_client.h"
#include "desktop/clients/client_files.h"
#include "desktop/clients/config_file.h"
#include "desktop/clients/endpoint_state.h"
#include "desktop/clients/entry_check.h"
#include "desktop/doctor/finding.h"

namespace tessum {
namespace {

std::string remedyFor(const EntryReport& report, const MCPClient client) {
  if (report.form == "HTTP") return "Start \"Tessum record --http\", or register anew.";
  return "Register anew: Tessum install \"" + std::string(client.rawValue()) + "\"";
}

std::vector<Finding> checkClientFile(const Host& host, MCPClient client, const std::string& file) {
  const std::string name(client.displayName());
  try {
    const ConfigFile config = lookAt(host.files, file);
    if (config.isDamaged()) {
      return {{name + ": " + file +
                   " is not plain JSON, so registering the application would "
                   "replace it.",
               "Fix the file; comments and trailing commas are not plain JSON."}};
    }
    const json::Value* entry = config.object ? tessumEntry(*config.object) : nullptr;
    if (entry == nullptr) return {};
    const EntryReport report = checkEntry(*entry);
    if (report.problem.empty()) return {{name + " is registered in " + file + ".", ""}};
    return {{name + ": the entry in " + file + " does not work: " + report.problem + ".",
             remedyFor(report, client)}};
  } catch (const std::system_error& error) {
    return {{name + ": " + error.what(), "Look at the file's permissions."}};
  }
}

}  // namespace

std::vector<Finding> checkClients(const Host& host) {
  std::vector<Finding> findings;
  for (const MCPClient client : MCPClient::allCases()) {
    for (const std::string& file : clientFiles(client, host.locations)) {
      for (auto& finding : checkClientFile(host, client, file)) findings.push_back(finding);
    }
  }
  return findings;
}

std::vector<Finding> checkEndpoint() {
  const std::string port = std::to_string(limits::kDefaultPort);
  switch (endpointState()) {
    case EndpointState::answers:
      return {{"The endpoint " + usualEndpointURL() + " answers.", ""}};
    case EndpointState::silent:
      return {{"The port " + port + " is free for \"Tessum record --http\".", ""}};
    case EndpointState::taken:
      break;
  }
  return {{"Another program uses port " + port +
               ", so \"Tessum record --http\" "
               "cannot.",
           "End that program; \"ss -ltnp\" shows which it is."}};
}

}  // namespace tessum
