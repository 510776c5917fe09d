// TessumMCP: the server that an assistant starts and talks to, one message per line.
//
// Nothing is caught here: when startup, input or output fails, the process ends with the error's
// description on standard error and never with a successful status.

#include <unistd.h>

#include <cerrno>
#include <memory>
#include <string>
#include <system_error>

#include "core/base/limits.h"
#include "core/mcp/mcp_server.h"
#include "core/platform/calendar.h"
#include "core/platform/clock.h"
#include "core/platform/descriptor.h"
#include "core/platform/locations.h"
#include "core/platform/private_files.h"
#include "core/store/database.h"
#include "core/store/history_path.h"
#include "server/line_reader.h"
#include "server/standard_streams.h"

int main() {
  using namespace tessum;

  fillClosedStandardStreams();
  const SystemClock clock;
  const SystemCalendar calendar;
  const SystemLocations locations;
  createPrivateFolders(locations.dataFolder());
  const auto database = std::make_shared<Database>(historyPath(locations), calendar);
  MCPServer server(database, limits::kDefaultPort, clock, calendar);

  LineReader input(STDIN_FILENO);
  while (const auto line = input.next()) {
    if (line->text().empty()) continue;
    auto response = server.handleBody(*line);
    if (!response) continue;
    *response += '\n';
    if (writeAll(STDOUT_FILENO, *response) != 0) {
      throw std::system_error(errno, std::generic_category(), "Cannot write standard output");
    }
  }
  return 0;
}
