// A program outside the project that embeds the core: it asks the engine for its tools.

#include <cstdio>
#include <memory>
#include <string>

#include "core/base/limits.h"
#include "core/json/reader.h"
#include "core/mcp/mcp_server.h"
#include "core/platform/calendar.h"
#include "core/platform/clock.h"
#include "core/store/database.h"

int main() {
  using namespace tessum;

  const SystemClock clock;
  const SystemCalendar calendar;
  const auto database = std::make_shared<Database>(":memory:", calendar);
  MCPServer server(database, limits::kDefaultPort, clock, calendar);
  const json::PaddedString message(R"({"jsonrpc":"2.0","id":1,"method":"tools/list"})");
  const auto answer = server.handleBody(message.view());
  std::printf("%s\n", answer.value_or("no answer").c_str());
  return answer && answer->find("get_activities") != std::string::npos ? 0 : 1;
}
