// The part of the command `forget` that follows the rules of the settings.

#pragma once

#include "desktop/command.h"

namespace tessum {

// Takes out of the history what the rules of the settings hide, after asking unless `isSure`.
// Throws SettingsError, NoHistory and DatabaseError.
void forgetHidden(Host& host, bool isSure);

}  // namespace tessum
