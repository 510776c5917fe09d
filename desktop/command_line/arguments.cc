#include "desktop/command_line/arguments.h"

#include <CLI/CLI.hpp>

#include "core/store/history.h"
#include "desktop/settings/duration.h"
#include "desktop/settings/settings_file.h"

namespace tessum {

namespace {

constexpr char kPeriodHelp[] =
    "days: today, yesterday, monday, 3d, week, last-week, month, last-month, year, 2025, 2025-03, "
    "2025-W10, 2025-03-04, 2025-03-04..2025-03-10, 2025-03-04.. or monday..today";

}  // namespace

void addPeriodArgument(CLI::App& command, std::string& text) {
  text = "today";
  command.add_option("PERIOD", text, kPeriodHelp)->type_name("")->capture_default_str();
}

void addDaysOptions(CLI::App& command, DaysOptions& options) {
  auto* period = command.add_option("PERIOD", options.period, kPeriodHelp)->type_name("");
  auto* from = command.add_option("--from", options.from, "the first day")->type_name("DATE");
  auto* to = command.add_option("--to", options.to, "the last day")->type_name("DATE");
  period->excludes(from, to);
}

ReportDays reportDays(const Host& host) {
  return {host.calendar, loadSettings(host.locations, host.files).dayStarts.value};
}

Period periodArgument(const std::string& text, const Host& host, const ReportDays& days) {
  try {
    return parsePeriod(text, days.dayOf(host.clock.now()));
  } catch (const PeriodError& error) {
    throw CLI::ValidationError(error.what());
  }
}

DayRange daysArgument(const DaysOptions& options, const Host& host) {
  const ReportDays days = reportDays(host);
  if (options.period) return days.rangeOf(periodArgument(*options.period, host, days));
  const auto rangeOf = [&](const std::string& text) {
    return text.empty() ? kAllTimes : days.rangeOf(periodArgument(text, host, days));
  };
  const DayRange range{rangeOf(options.from).start, rangeOf(options.to).end};
  if (range.start.secondsSince1970 >= range.end.secondsSince1970) {
    throw CLI::ValidationError("the first day, " + options.from + ", comes after the last, " +
                               options.to);
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
