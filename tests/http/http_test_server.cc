// http-test-server DATABASE [PORT]: serves a database over HTTP, on a free port unless one is
// given. It prints its address and ends when its standard input does.

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <string>

#include "core/mcp/mcp_server.h"
#include "core/platform/calendar.h"
#include "core/platform/clock.h"
#include "core/store/database.h"
#include "tests/http/loopback.h"

namespace tessum {
namespace {

int serve(const std::string& path, std::uint16_t port) {
  const SystemClock clock;
  const SystemCalendar calendar;
  MCPServer server(std::make_shared<Database>(path, calendar), port, clock, calendar);
  server.start();
  if (const auto error = server.listeningError()) {
    std::fprintf(stderr, "port %u: %s\n", unsigned{port}, error.message().c_str());
    return 1;
  }
  std::printf("%s\n", server.endpointURL().c_str());
  std::fflush(stdout);
  char byte = 0;
  while (read(STDIN_FILENO, &byte, 1) > 0) {
  }
  return 0;
}

}  // namespace
}  // namespace tessum

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: http-test-server DATABASE [PORT]\n");
    return 2;
  }
  try {
    const int port = argc > 2 ? std::atoi(argv[2]) : tessum::freePort();
    return tessum::serve(argv[1], static_cast<std::uint16_t>(port));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
