// The recorder as a process of its own.

#pragma once

#include <string>

#include "desktop/host/host.h"

namespace tessum {

// Starts "Tessum record" as a session would: without a terminal, in the home folder. Returns at
// once. Throws std::system_error, and std::runtime_error where the program's own file is unknown.
void startRecorder(const Host& host);

// Identifies the recorder that is running now; empty while none is. Throws std::system_error.
[[nodiscard]] std::string runningRecorder(const Host& host);

// Asks the running recorder to end, and waits for up to ten seconds. Returns whether none is
// running afterwards. Throws std::system_error.
[[nodiscard]] bool stopRecorder(const Host& host);

}  // namespace tessum
