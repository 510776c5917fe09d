#include "desktop/commands/arguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "core/mcp/duration_argument.h"
#include "core/store/history.h"
#include "desktop/reports/wall_clock.h"

namespace tessum {
namespace {

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

// Whether `text` is a number, or numbers that are each followed by one of the units h, m and s, in
// that order. Assistants may write more than that, but a person should not find 1.5h taken for 15
// hours.
bool isPlainDuration(std::string_view text) {
  if (!text.empty() && std::all_of(text.begin(), text.end(), isDigit)) return true;
  std::string_view units = "hms";
  bool hasNumber = false;
  for (const char c : text) {
    if (isDigit(c)) {
      hasNumber = true;
      continue;
    }
    const auto unit = units.find(c);
    if (!hasNumber || unit == std::string_view::npos) return false;
    units.remove_prefix(unit + 1);
    hasNumber = false;
  }
  return !text.empty() && !hasNumber;
}

}  // namespace

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
  const auto seconds = isPlainDuration(text) ? parseDuration(text) : std::nullopt;
  if (!seconds) {
    throw CLI::ValidationError("unknown duration \"" + text + "\"; write it as 1h30m, 45m or 90");
  }
  return static_cast<double>(*seconds);
}

}  // namespace tessum
