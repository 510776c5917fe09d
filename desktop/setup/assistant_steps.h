// Registers Tessum with the assistants that are on this computer.

#pragma once

#include <string>
#include <vector>

#include "desktop/host/host.h"
#include "desktop/setup/setup_step.h"

namespace tessum {

// Registers with each assistant that is here and does not know of Tessum, or whose entry starts a
// program that is gone. An entry for the HTTP endpoint stays.
[[nodiscard]] std::vector<SetupStep> assistantSteps(const Host& host);

// What takeBackRegistration() does, for a person.
[[nodiscard]] std::string undoPlan(const SetupChange& change, const Host& host);

// What taking the registration back changes in the assistant's file, as SetupStep has it.
[[nodiscard]] std::vector<std::string> undoDifference(const SetupChange& change, const Host& host);

// Takes the registration back. An entry that ours replaced comes back with the file's bytes, unless
// the file has changed since; our entry then goes like any other. Throws std::system_error, and
// std::runtime_error when the assistant's file cannot be edited.
void takeBackRegistration(const SetupChange& change, const Host& host);

// The assistants that are here and do not know of Tessum, by their names for a person.
[[nodiscard]] std::vector<std::string> uninformedAssistants(const Host& host);

}  // namespace tessum
