// Definitions that the host program's commands share.

#pragma once

#include "core/platform/calendar.h"
#include "core/platform/clock.h"
#include "core/platform/files.h"
#include "core/platform/locations.h"
#include "core/platform/url_opener.h"

namespace tessum {

// Exit statuses that scripts can rely on.
inline constexpr int kSuccess = 0;
inline constexpr int kFailure = 1;  // the command failed; standard error says why
inline constexpr int kUsage = 2;    // the command line or the settings were wrong

// The interfaces to the system, owned by main(), and the exit status that the command sets.
struct Host {
  const Clock& clock;
  const Calendar& calendar;
  const Locations& locations;
  const Files& files;
  const SystemUrlOpener& opener;
  int status = kSuccess;
};

}  // namespace tessum
