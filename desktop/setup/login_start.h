// Starting the recorder with the user's desktop session, as the system does it: by systemd where
// the session runs graphical-session.target, else by an autostart entry; on macOS by launchd.

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "desktop/host/host.h"
#include "desktop/setup/setup_step.h"

namespace tessum {

// What starts the recorder at each login, such as "systemd"; absent when nothing does.
[[nodiscard]] std::optional<std::string> loginStart(const Host& host);

// What is left to do so that the recorder starts at each login to this kind of session, and so that
// it runs now; it starts now only if `startsNow`.
[[nodiscard]] std::vector<SetupStep> loginSteps(const Host& host, bool startsNow);

// What is left for the user to do so that this session starts the recorder at login, in a sentence;
// empty when that is nothing.
[[nodiscard]] std::string loginAdvice(const Host& host);

// Stops a service that a step has started. Does nothing if it does not run.
void stopService(const std::string& name);

// Tells the system that the files of services have changed.
void rereadServices();

}  // namespace tessum
