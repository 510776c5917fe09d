// The command `forget --hidden`.

#pragma once

#include "desktop/host/host.h"

namespace tessum {

// Deletes from the history what the rules of the settings hide; asks first unless `isSure`. Throws
// SettingsError, NoHistory and DatabaseError.
void forgetHidden(Host& host, bool isSure);

}  // namespace tessum
