#include "desktop/setup/assistant_steps.h"

#include <stdexcept>
#include <string_view>
#include <system_error>

#include "desktop/clients/assistants.h"
#include "desktop/clients/registration.h"
#include "desktop/reports/text_layout.h"

namespace tessum {
namespace {

using Outcome = RegistrationChange::Outcome;

// The file that the assistant reads.
RegistrationFile fileOf(const Assistant& assistant) {
  return {assistant.files.front(), assistant.format};
}

bool isInformed(const Assistant& assistant, const Host& host) {
  try {
    const auto entry = registrationIn(fileOf(assistant), host).entry;
    return entry && (entry->problem.empty() || entry->form == "HTTP");
  } catch (const std::system_error&) {
    return false;  // the attempt to register says what is wrong
  }
}

std::vector<std::string> differenceLines(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const auto end = text.find('\n');
    lines.emplace_back(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
  return lines;
}

// What registering, or `unregisterFrom`, would change; nothing where it would fail, because the
// attempt itself says why.
std::vector<std::string> differenceBy(decltype(registerIn) change, const Assistant& assistant,
                                      const Host& host) {
  try {
    return differenceLines(change(fileOf(assistant), {.isDryRun = true}, host).difference);
  } catch (const std::exception&) {
    return {};
  }
}

void inform(const Assistant& assistant, const Host& host, SetupChanges& changes) {
  changes.add({.kind = SetupChange::Kind::assistant, .target = std::string(assistant.id)});
  const auto change = registerIn(fileOf(assistant), {}, host);
  if (change.outcome == Outcome::refused) throw std::runtime_error(change.problem);
}

// Those that are here and are not informed.
std::vector<Assistant> uninformed(const Host& host) {
  std::vector<Assistant> found;
  for (const Assistant& assistant : knownAssistants(host.locations)) {
    if (isPresent(assistant, host.files) && !isInformed(assistant, host)) {
      found.push_back(assistant);
    }
  }
  return found;
}

}  // namespace

std::vector<SetupStep> assistantSteps(const Host& host) {
  std::vector<SetupStep> steps;
  for (const Assistant& assistant : uninformed(host)) {
    steps.push_back({.plan = "tell " + std::string(assistant.name) + " of Tessum",
                     .details = {assistant.files.front()},
                     .difference = differenceBy(registerIn, assistant, host),
                     .carryOut = [&host, assistant](SetupChanges& changes) {
                       inform(assistant, host, changes);
                     }});
  }
  return steps;
}

std::vector<std::string> undoDifference(const SetupChange& change, const Host& host) {
  const auto assistant = assistantNamed(change.target, host.locations);
  if (!assistant) return {};
  return differenceBy(unregisterFrom, *assistant, host);
}

std::string assistantName(const SetupChange& change, const Host& host) {
  const auto assistant = assistantNamed(change.target, host.locations);
  return assistant ? std::string(assistant->name) : change.target;
}

void takeBackRegistration(const SetupChange& change, const Host& host) {
  const auto assistant = assistantNamed(change.target, host.locations);
  if (!assistant) return;
  const auto taken = unregisterFrom(fileOf(*assistant), {}, host);
  if (taken.outcome == Outcome::refused) throw std::runtime_error(taken.problem);
}

std::vector<std::string> uninformedAssistants(const Host& host) {
  std::vector<std::string> names;
  for (const Assistant& assistant : uninformed(host)) names.emplace_back(assistant.name);
  return names;
}

}  // namespace tessum
