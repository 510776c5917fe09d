#include "desktop/command_line/plain_report.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <utility>

#include "core/base/limits.h"
#include "core/mcp/mcp_server.h"
#include "core/store/database.h"
#include "core/store/history.h"
#include "desktop/command_line/arguments.h"
#include "desktop/command_line/standard_output.h"
#include "desktop/periods/calendar_dates.h"
#include "desktop/usage/day_history.h"

namespace tessum {

void addPlainOption(CLI::App& command, bool& isPlain, const std::string& tool) {
  command.add_flag("--plain", isPlain,
                   "print the text that assistants get from " + tool + ", with times in UTC");
}

std::string toolText(const Host& host, const char* tool, const ToolArguments& arguments) {
  auto database = std::make_shared<Database>(historyPath(host.locations), host.calendar);
  MCPServer server(std::move(database), limits::kDefaultPort, host.clock, host.calendar);
  return server.callTool(tool, arguments).content.front().text + "\n";
}

void showPlain(const Host& host, const std::string& text, const char* tool) {
  const ReportDays days(host.calendar, 0);
  const Period period = periodArgument(text, host, days);
  if (dayCount(period) > 1) throw CLI::ValidationError("--plain is for one day");
  // The tools leave out what they cannot read; a person should be told.
  History history(historyPath(host.locations), History::Access::read);
  static_cast<void>(readDay(history, days, period.first, host.clock.now()));
  printForeign(toolText(host, tool, {.date = dateText(period.first)}));
}

}  // namespace tessum
