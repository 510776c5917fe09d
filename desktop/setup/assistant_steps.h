// Telling the assistants that are on this computer of Tessum.

#pragma once

#include <string>
#include <vector>

#include "desktop/command.h"
#include "desktop/setup/setup_step.h"

namespace tessum {

// Registers with each assistant that is here and does not know of Tessum, or whose entry starts a
// program that is gone. An entry for the HTTP endpoint stays.
[[nodiscard]] std::vector<SetupStep> assistantSteps(const Host& host);

// The name of an assistant that was registered with, for a person.
[[nodiscard]] std::string assistantName(const SetupChange& change, const Host& host);

// What taking the registration back changes in the assistant's file, as lines of "diff -u".
[[nodiscard]] std::vector<std::string> undoDifference(const SetupChange& change, const Host& host);

// Takes the registration back. Throws std::system_error, and std::runtime_error when the
// assistant's file cannot be edited.
void takeBackRegistration(const SetupChange& change, const Host& host);

// The assistants that are here and do not know of Tessum, by their names for a person.
[[nodiscard]] std::vector<std::string> uninformedAssistants(const Host& host);

}  // namespace tessum
