// Command-line arguments that several commands share. An invalid one throws CLI::ValidationError,
// which ends the program with the status of a wrong command line.

#pragma once

#include <string>

#include "core/base/date.h"
#include "core/platform/calendar.h"
#include "desktop/command.h"

namespace CLI {
class App;
}

namespace tessum {

// Adds the argument DATE, which defaults to today. `name` must live as long as `command`.
void addDayArgument(CLI::App& command, std::string& name);

// A moment of the local day that `name` names.
[[nodiscard]] Date dayArgument(const std::string& name, const Host& host);

// From the start of the local day `from` to the end of the day `to`; an empty name leaves that side
// open.
[[nodiscard]] DayRange daysArgument(const std::string& from, const std::string& to,
                                    const Host& host);

// Seconds of a duration such as 1h30m, 45m, 20s or 90, which are minutes.
[[nodiscard]] double durationArgument(const std::string& text);

}  // namespace tessum
