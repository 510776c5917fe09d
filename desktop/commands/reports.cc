#include "desktop/commands/commands.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <utility>

#include "core/base/limits.h"
#include "core/base/text.h"
#include "core/mcp/mcp_server.h"
#include "core/store/database.h"
#include "core/store/history.h"
#include "desktop/commands/arguments.h"
#include "desktop/commands/standard_output.h"
#include "desktop/commands/text_search.h"
#include "desktop/reports/day_report.h"
#include "desktop/reports/wall_clock.h"

namespace tessum {
namespace {

struct ReportOptions {
  std::string day;
  std::string query;
  std::int64_t limit = limits::kSearchResultsPerCall;
  bool isPlain = false;
};

void addPlainOption(CLI::App& command, ReportOptions& options, const std::string& tool) {
  command.add_flag("--plain", options.isPlain,
                   "print the text that assistants get from " + tool + ", with times in UTC");
}

// The text of an assistant's tool, from the same engine.
std::string toolText(const Host& host, const char* tool, const ToolArguments& arguments) {
  auto database = std::make_shared<Database>(historyPath(host.locations), host.calendar);
  MCPServer server(std::move(database), limits::kDefaultPort, host.clock, host.calendar);
  return server.callTool(tool, arguments).content.front().text + "\n";
}

using Report = std::string (*)(const DayHistory&, const Paper&);

// Prints `report` for the day, or the text of `tool`.
void showDay(const Host& host, const ReportOptions& options, Report report, const char* tool) {
  const Date day = dayArgument(options.day, host);
  History history(historyPath(host.locations), History::Access::read);
  const DayHistory content = readDay(history, host, day);
  if (options.isPlain) {
    printForeign(toolText(host, tool, {.date = dateText(day)}));
    return;
  }
  print(report(content, standardOutputPaper()));
}

void addDayReport(CLI::App& app, Host& host, const char* name, const char* description,
                  const char* examples, Report report, const char* tool) {
  auto* command = app.add_subcommand(name, description);
  const auto options = std::make_shared<ReportOptions>();
  addDayArgument(*command, options->day);
  addPlainOption(*command, *options, tool);
  command->footer(examples);
  command->callback([&host, options, report, tool] { showDay(host, *options, report, tool); });
}

}  // namespace

void addReportCommands(CLI::App& app, Host& host) {
  addDayReport(app, host, "day", "What was in front on a day, with its notes",
               "Examples:\n"
               "  Tessum day\n"
               "  Tessum day yesterday\n"
               "  Tessum day 2025-03-04 --plain",
               dayReport, "get_activities");
  addDayReport(app, host, "usage", "How long each application was in front on a day",
               "Examples:\n"
               "  Tessum usage\n"
               "  Tessum usage 2025-03-04",
               usageReport, "get_app_usage");
  addDayReport(app, host, "notes", "The notes of a day",
               "Examples:\n"
               "  Tessum notes\n"
               "  Tessum notes yesterday",
               notesReport, "get_annotations");

  auto* search = app.add_subcommand("search", "Sessions of all days by application or title");
  const auto options = std::make_shared<ReportOptions>();
  search
      ->add_option("TEXT", options->query,
                   "part of an application's name or a title, in capital or small letters; with "
                   "--plain, % and _ stand for any text and any character")
      ->type_name("")
      ->required();
  search->add_option("--limit", options->limit, "the most sessions to show")
      ->type_name("N")
      ->capture_default_str()
      ->check(CLI::Range(1, 1000000));
  addPlainOption(*search, *options, "search_activities");
  search->footer(
      "Examples:\n"
      "  Tessum search invoice\n"
      "  Tessum search \"pull request\" --limit 200");
  search->callback([&host, options] {
    const std::string query = validUtf8(options->query);
    History history(historyPath(host.locations), History::Access::read);
    const auto sessions = history.search(holding(query), options->limit);
    if (options->isPlain) {
      printForeign(toolText(host, "search_activities", {.limit = options->limit, .query = query}));
      return;
    }
    print(searchReport(sessions, host.clock.now(), standardOutputPaper()));
  });
}

}  // namespace tessum
