// Command-line arguments that several commands share. An invalid one throws CLI::ValidationError,
// which ends the program with the status of a wrong command line.

#pragma once

#include <optional>
#include <string>

#include "core/platform/calendar.h"
#include "desktop/host/host.h"
#include "desktop/periods/period.h"
#include "desktop/periods/report_days.h"

namespace CLI {
class App;
}

namespace tessum {

// Adds the argument PERIOD, today unless it is given. `text` must live as long as `command`.
void addPeriodArgument(CLI::App& command, std::string& text);

// Whole days that a person gives as PERIOD, or as the first and the last with --from and --to. An
// empty `from` or `to` leaves that side open.
struct DaysOptions {
  std::optional<std::string> period;
  std::string from;
  std::string to;
};

// Adds all three to `command`; `options` must live as long.
void addDaysOptions(CLI::App& command, DaysOptions& options);

// The days of the reports, as the settings have them begin.
[[nodiscard]] ReportDays reportDays(const Host& host);

// The period that `text` means today.
[[nodiscard]] Period periodArgument(const std::string& text, const Host& host,
                                    const ReportDays& days);

// From the beginning of the first day to the end of the last one.
[[nodiscard]] DayRange daysArgument(const DaysOptions& options, const Host& host);

// Seconds of a duration such as 1h30m, 45m, 20s or 90, which are minutes.
[[nodiscard]] double durationArgument(const std::string& text);

}  // namespace tessum
