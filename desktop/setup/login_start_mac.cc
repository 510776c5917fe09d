#include "desktop/setup/login_start.h"

#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <system_error>

#include "desktop/host/own_program.h"
#include "desktop/setup/program_run.h"
#include "desktop/setup/start_files.h"

namespace tessum {
namespace {

constexpr char kLabel[] = "com.tessum.record";

std::string agentPath(const Host& host) {
  return host.locations.homeFolder() + "/Library/LaunchAgents/" + kLabel + ".plist";
}

// The user's graphical session, as launchctl names it.
std::string domain() {
  return "gui/" + std::to_string(getuid());
}

bool hasAgent(const Host& host) {
  std::error_code ignored;
  return std::filesystem::exists(agentPath(host), ignored);
}

void writeAgent(const Host& host, SetupChanges& changes) {
  changes.makeFile(agentPath(host), agentFor(ownProgram(host.locations)));
  changes.add({.kind = SetupChange::Kind::service, .target = kLabel});
}

// Loading the agent starts it, as it runs at load.
void startAgent(const Host& host, SetupChanges& changes) {
  changes.add({.kind = SetupChange::Kind::service, .target = kLabel});
  if (runProgram({"launchctl", "bootstrap", domain(), agentPath(host)}).hasSucceeded) return;
  if (runProgram({"launchctl", "kickstart", domain() + "/" + kLabel}).hasSucceeded) return;
  throw std::runtime_error("launchd does not start the agent " + agentPath(host) + ".");
}

}  // namespace

std::optional<std::string> loginStart(const Host& host) {
  return hasAgent(host) ? std::optional("by launchd, " + agentPath(host)) : std::nullopt;
}

std::vector<SetupStep> loginSteps(const Host& host, bool startsNow) {
  std::vector<SetupStep> steps;
  if (!hasAgent(host)) {
    steps.push_back({.plan = "start recording with each login, by launchd",
                     .details = {agentPath(host)},
                     .carryOut = [&host](SetupChanges& changes) { writeAgent(host, changes); }});
  }
  if (startsNow) {
    steps.push_back({.plan = "start recording now",
                     .details = {},
                     .carryOut = [&host](SetupChanges& changes) { startAgent(host, changes); }});
  }
  return steps;
}

std::string loginAdvice(const Host&) {
  return "";
}

void stopService(const std::string& name) {
  static_cast<void>(runProgram({"launchctl", "bootout", domain() + "/" + name}));
}

void rereadServices() {}

}  // namespace tessum
