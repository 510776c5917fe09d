// Checks the assistant applications and the HTTP endpoint.

#include <string>
#include <system_error>

#include "core/base/limits.h"
#include "core/http/endpoint_state.h"
#include "core/http/endpoint_url.h"
#include "desktop/clients/assistants.h"
#include "desktop/clients/registration.h"
#include "desktop/doctor/finding.h"

namespace tessum {
namespace {

std::string remedyFor(const EntryReport& report, const Assistant& assistant) {
  if (report.form == "HTTP") return "Start \"Tessum record --http\", or register anew.";
  return "Register again: Tessum install " + std::string(assistant.id);
}

std::vector<Finding> checkClientFile(const Host& host, const Assistant& assistant,
                                     const std::string& file) {
  const std::string name(assistant.name);
  try {
    const Registration found = registrationIn({file, assistant.format}, host);
    if (!found.problem.empty()) {
      return {
          {name + ": " + file + " cannot be made out: " + found.problem + ".",
           "Fix the file, or see what \"Tessum install " + std::string(assistant.id) + "\" says."}};
    }
    if (!found.entry) return {};
    const EntryReport& report = *found.entry;
    if (report.problem.empty()) return {{name + " is registered in " + file + ".", ""}};
    return {{name + ": the entry in " + file + " does not work: " + report.problem + ".",
             remedyFor(report, assistant)}};
  } catch (const std::system_error& error) {
    return {{name + ": " + error.what(), "Look at the file's permissions."}};
  }
}

}  // namespace

std::vector<Finding> checkClients(const Host& host) {
  std::vector<Finding> findings;
  for (const Assistant& assistant : knownAssistants(host.locations)) {
    for (const std::string& file : assistant.files) {
      for (auto& finding : checkClientFile(host, assistant, file)) findings.push_back(finding);
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
