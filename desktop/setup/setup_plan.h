// What "Tessum setup" does, and what its undoing does.

#pragma once

#include <string>
#include <vector>

#include "desktop/host/host.h"
#include "desktop/setup/setup_step.h"

namespace tessum {

// The steps that are left to do, in their order; none when everything is set up. Looks at the files
// of the user and at the session, and changes nothing.
[[nodiscard]] std::vector<SetupStep> setupSteps(const Host& host);

// The steps that take back what is noted in `changes`, in their order. They leave the history, and
// files that have been edited since.
[[nodiscard]] std::vector<SetupStep> undoSteps(const Host& host, const SetupChanges& changes);

// Removes the notes and the folders that are empty by now.
void finishUndo(const Host& host, SetupChanges& changes);

}  // namespace tessum
