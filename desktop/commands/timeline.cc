#include "desktop/commands/commands.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

#include "core/platform/private_files.h"
#include "core/store/history.h"
#include "core/update/urls.h"
#include "desktop/commands/arguments.h"
#include "desktop/commands/standard_output.h"
#include "desktop/reports/day_report.h"
#include "desktop/reports/timeline.h"

namespace tessum {
namespace {

struct TimelineOptions {
  std::string period;
  std::string file;
};

void showTimeline(const Host& host, const TimelineOptions& options) {
  const ReportDays days = reportDays(host);
  const Period period = periodArgument(options.period, host, days);
  if (dayCount(period) > 1) throw CLI::ValidationError("the timeline is a picture of one day");
  History history(historyPath(host.locations), History::Access::read);
  const std::string page = timelinePage(readDay(history, days, period.first, host.clock.now()));
  if (!options.file.empty()) {
    if (std::filesystem::exists(options.file) && !std::filesystem::is_regular_file(options.file)) {
      throw std::runtime_error(options.file + " is not a file that can be replaced");
    }
    host.files.replace(options.file, page);
    print("The timeline is in " + options.file + ".\n");
    return;
  }
  const std::string path = timelinePath(host.locations);
  // The page keeps the rights of the one that it replaces.
  if (std::filesystem::exists(path)) closeToOthers(path);
  host.files.replace(path, page);
  print("The timeline is in " + path + ".\n");
  host.opener.open(fileUrl(path));
}

}  // namespace

void addTimelineCommand(CLI::App& app, Host& host) {
  auto* command = app.add_subcommand("timeline", "A picture of a day, in your browser");
  const auto options = std::make_shared<TimelineOptions>();
  addPeriodArgument(*command, options->period);
  command
      ->add_option("-o,--output", options->file,
                   "write the page to this file instead of opening it")
      ->type_name("FILE");
  command->footer(
      "Examples:\n"
      "  Tessum timeline\n"
      "  Tessum timeline yesterday\n"
      "  Tessum timeline 2025-03-04 -o tuesday.html");
  command->callback([&host, options] { showTimeline(host, *options); });
}

}  // namespace tessum
