#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "core/base/text.h"
#include "core/store/history.h"
#include "desktop/command_line/arguments.h"
#include "desktop/command_line/data_options.h"
#include "desktop/command_line/filter_options.h"
#include "desktop/command_line/plain_report.h"
#include "desktop/command_line/standard_output.h"
#include "desktop/commands/commands.h"
#include "desktop/reports/usage_report.h"
#include "desktop/settings/settings_file.h"

namespace tessum {
namespace {

struct UsageOptions {
  std::string period;
  std::string by = "app";
  std::size_t most = 0;
  FilterOptions filter;
  DataOptions data;
  bool isPlain = false;
};

std::vector<Grouping> groupingsOf(const UsageOptions& options) {
  auto by = parseGroupings(lowerCaseAscii(options.by));
  if (by.empty()) {
    throw CLI::ValidationError("unknown grouping \"" + options.by + "\"; write one of " +
                               groupingNames() + ", or two of them such as day,category");
  }
  return by;
}

void showUsage(const Host& host, const UsageOptions& options) {
  if (options.isPlain) return showPlain(host, options.period, "get_app_usage");
  const auto by = groupingsOf(options);
  const Settings settings = loadSettings(host.locations, host.files);
  const ReportDays days(host.calendar, settings.dayStarts.value);
  const Period period = periodArgument(options.period, host, days);
  History history(historyPath(host.locations), History::Access::read);
  const Usage usage =
      readUsage(history, days, settings.rules,
                {.period = period, .by = by, .filter = filterOf(options.filter, settings.rules)},
                host.clock.now());
  if (const auto format = formatOf(options.data)) {
    printForeign(usageData(*format, usage, by, options.most));
    return;
  }
  print(usageReport(usage, by, options.most, standardOutputPaper()));
}

}  // namespace

void addUsageCommand(CLI::App& app, Host& host) {
  auto* command = app.add_subcommand("usage", "How long each application was in front");
  const auto options = std::make_shared<UsageOptions>();
  addPeriodArgument(*command, options->period);
  command
      ->add_option("--by", options->by,
                   "what to add up: " + groupingNames() + ", or two of them such as day,category")
      ->type_name("GROUPING")
      ->capture_default_str();
  command->add_option("--top", options->most, "only the largest groups, and the others in one line")
      ->type_name("N")
      ->check(CLI::Range(1, 1000000));
  addPlainOption(*command, options->isPlain, "get_app_usage");
  command->get_option("--plain")->excludes("--by", "--top");
  addFilterOptions(*command, options->filter);
  addDataOptions(*command, options->data);
  command->footer(
      "Examples:\n"
      "  Tessum usage\n"
      "  Tessum usage 2025-03-04\n"
      "  Tessum usage last-week --by category\n"
      "  Tessum usage 2025-03 --by day,app --top 3\n"
      "  Tessum usage month --by note --app Terminal\n"
      "  Tessum usage year --by category --json");
  command->callback([&host, options] { showUsage(host, *options); });
}

}  // namespace tessum
