#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "core/store/history.h"
#include "desktop/command_line/arguments.h"
#include "desktop/command_line/standard_output.h"
#include "desktop/commands/commands.h"
#include "desktop/reports/usage_report.h"
#include "desktop/settings/settings_file.h"

namespace tessum {
namespace {

void tryCategories(const Host& host, const std::string& text) {
  const Settings settings = loadSettings(host.locations, host.files);
  const ReportDays days(host.calendar, settings.dayStarts.value);
  const Period period = periodArgument(text, host, days);
  History history(historyPath(host.locations), History::Access::read);
  const auto groups =
      readUsageOfRules(history, settings.rules, days.rangeOf(period), host.clock.now());
  print(ruleReport(groups, settings.rules, period, standardOutputPaper()));
}

}  // namespace

void addCategoryCommand(CLI::App& app, Host& host) {
  auto* command = app.add_subcommand("category", "What the rules for categories make of a period");
  auto* tryCommand = command->add_subcommand(
      "try", "What each rule takes, with its largest titles, and what none takes");
  const auto period = std::make_shared<std::string>();
  addPeriodArgument(*tryCommand, *period);
  tryCommand->callback([&host, period] { tryCategories(host, *period); });
  command->require_subcommand(1);
  command->footer(
      "Categories are rules of the settings and hold for all of the history, as it is read.\n\n"
      "Examples:\n"
      "  Tessum category try week\n"
      "  Tessum category try 2025-03");
}

}  // namespace tessum
