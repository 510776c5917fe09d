#include "desktop/commands/arguments.h"

#include <CLI/CLI.hpp>

#include "core/store/history.h"
#include "desktop/reports/wall_clock.h"
#include "desktop/settings/duration.h"

namespace tessum {

void addDayArgument(CLI::App& command, std::string& name) {
  name = "today";
  command.add_option("DATE", name, "a day such as 2025-03-04, today or yesterday")
      ->type_name("")
      ->capture_default_str();
}

Date dayArgument(const std::string& name, const Host& host) {
  const auto day = namedDay(name, host.clock, host.calendar);
  if (!day) {
    throw CLI::ValidationError("unknown date \"" + name +
                               "\"; write it as 2025-03-04, today or yesterday");
  }
  return *day;
}

DayRange daysArgument(const std::string& from, const std::string& to, const Host& host) {
  DayRange range = kAllTimes;
  if (!from.empty()) range.start = host.calendar.dayOf(dayArgument(from, host)).start;
  if (!to.empty()) range.end = host.calendar.dayOf(dayArgument(to, host)).end;
  if (range.start.secondsSince1970 >= range.end.secondsSince1970) {
    throw CLI::ValidationError("the first day, " + from + ", comes after the last, " + to);
  }
  return range;
}

double durationArgument(const std::string& text) {
  const auto seconds = plainDuration(text);
  if (!seconds) {
    throw CLI::ValidationError("unknown duration \"" + text + "\"; write it as 1h30m, 45m or 90");
  }
  return *seconds;
}

}  // namespace tessum
