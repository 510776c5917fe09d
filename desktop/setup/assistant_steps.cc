#include "desktop/setup/assistant_steps.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>
#include <system_error>

#include "desktop/clients/assistants.h"
#include "desktop/clients/edit/text_difference.h"
#include "desktop/clients/registration.h"
#include "desktop/text/text_layout.h"

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

// What registering, or `unregisterFrom`, would change, or why it is refused; nothing where it would
// fail, because the attempt itself says why.
std::vector<std::string> differenceBy(decltype(registerIn) change, const Assistant& assistant,
                                      const Host& host) {
  try {
    const auto planned = change(fileOf(assistant), {.isDryRun = true}, host);
    return differenceLines(planned.outcome == Outcome::refused ? planned.problem
                                                               : planned.difference);
  } catch (const std::exception&) {
    return {};
  }
}

// The change that registering will make. The file is noted as a whole where an entry is replaced,
// because in TOML an entry can be spread over it. Throws where registering is refused.
SetupChange changeBy(const Assistant& assistant, const Host& host) {
  const auto planned = registerIn(fileOf(assistant), {.isDryRun = true}, host);
  if (planned.outcome == Outcome::refused) throw std::runtime_error(planned.problem);
  SetupChange change{.kind = SetupChange::Kind::assistant, .target = std::string(assistant.id)};
  if (registrationIn(fileOf(assistant), host).entry) {
    change.content = planned.text;
    change.before = host.files.read(assistant.files.front());
  }
  return change;
}

bool isNoted(const SetupChange& change, const SetupChanges& changes) {
  return std::any_of(changes.all().begin(), changes.all().end(), [&](const SetupChange& noted) {
    return noted.kind == change.kind && noted.target == change.target;
  });
}

void inform(const Assistant& assistant, const Host& host, SetupChanges& changes) {
  const SetupChange change = changeBy(assistant, host);
  // What was there before the first time is what is put back.
  if (!isNoted(change, changes)) changes.add(change);
  static_cast<void>(registerIn(fileOf(assistant), {}, host));
}

// Whether an entry was replaced, and the file has not changed since.
bool canPutBack(const SetupChange& change, const Assistant& assistant, const Host& host) {
  const std::string& path = assistant.files.front();
  if (!change.before || !host.files.exists(path)) return false;
  const std::string text = host.files.read(path);
  return text == change.content || text == *change.before;
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
  const std::string& path = assistant->files.front();
  if (canPutBack(change, *assistant, host)) {
    return differenceLines(textDifference(path, host.files.read(path), change.before));
  }
  return differenceBy(unregisterFrom, *assistant, host);
}

std::string undoPlan(const SetupChange& change, const Host& host) {
  const auto assistant = assistantNamed(change.target, host.locations);
  if (!assistant) return "remove Tessum from " + change.target;
  const std::string name(assistant->name);
  return canPutBack(change, *assistant, host) ? "put back the entry that " + name + " had before"
                                              : "remove Tessum from " + name;
}

void takeBackRegistration(const SetupChange& change, const Host& host) {
  const auto assistant = assistantNamed(change.target, host.locations);
  if (!assistant) return;
  if (canPutBack(change, *assistant, host)) {
    return host.files.replace(assistant->files.front(), *change.before);
  }
  const auto taken = unregisterFrom(fileOf(*assistant), {}, host);
  if (taken.outcome == Outcome::refused) throw std::runtime_error(taken.problem);
}

std::vector<std::string> uninformedAssistants(const Host& host) {
  std::vector<std::string> names;
  for (const Assistant& assistant : uninformed(host)) names.emplace_back(assistant.name);
  return names;
}

}  // namespace tessum
